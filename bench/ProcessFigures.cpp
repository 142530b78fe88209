#include "bench/ProcessFigures.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace Kest::Bench {
namespace {

constexpr double kKilo = 1024.0;
constexpr double kNanosecondsInMs = 1e6;

} // namespace

Memory memoryOf(pid_t process)
{
    Memory memory;
    std::ifstream maps("/proc/" + std::to_string(process) + "/smaps");
    bool isSegment = false;
    for (std::string line; std::getline(maps, line);) {
        const auto colon = line.find(':');
        const auto key = line.substr(0, colon);
        const bool isHead = key.find('-') != std::string::npos; // "7f12-7f34 r--p 00000000 00"
        if (isHead) {
            isSegment = line.find("/SYSV") != std::string::npos;
        } else if (key == "Pss" || key == "Private_Clean" || key == "Private_Dirty") {
            const double mb = std::stod(line.substr(colon + 1)) / kKilo;
            (key == "Pss" ? memory.proportionalMb : memory.privateMb) += mb;
            if (isSegment && key == "Pss")
                memory.segmentMb += mb;
        }
    }
    return memory;
}

Activity activityOf(pid_t process)
{
    Activity activity;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        double nanoseconds = 0;
        std::ifstream(task.path() / "schedstat") >> nanoseconds;
        activity.cpuMs += nanoseconds / kNanosecondsInMs;
        std::ifstream status(task.path() / "status");
        for (std::string word; status >> word;)
            if (word == "voluntary_ctxt_switches:") {
                double switches = 0;
                status >> switches;
                activity.wakeUps += switches;
            }
    }
    return activity;
}

} // namespace Kest::Bench
