// The encoders' pipe under attack: lost and replaced, flooded, and used by eight at once.
#include "backend/Backend.h"
#include "tests/soak/Part.h"
#include "tests/support/Eventually.h"
#include "tests/support/TestPlace.h"

#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kAsked = 4711; // the encoder whose lines are timed

double secondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

std::string line(int pid, const std::string& rest)
{
    return "pid: " + std::to_string(pid) + " , " + rest + "\n";
}

/// A Backend as it is, with its one-second pass.
struct Listener {
    Listener()
    {
        backend.messageContext = this;
        backend.messageCallback = [](void* context, int number, int pid, const char*) {
            auto& self = *static_cast<Listener*>(context);
            ++self.messages;
            if (pid == kAsked)
                self.heard = number;
        };
    }
    /// Waits for the pipe; -1 when there is none in time.
    int open() const
    {
        int file = -1;
        eventually(
            [&] {
                struct stat status {};
                const bool isPipe = lstat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
                return isPipe && (file = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOFOLLOW)) >= 0;
            },
            5s);
        fcntl(file, F_SETFL, 0);
        return file;
    }
    /// Writes and waits for the message: the seconds that it took, or 99.
    double timeOf(int file, const std::string& before, int percentage)
    {
        const auto text = before + line(kAsked, "P: " + std::to_string(percentage));
        const auto begin = Clock::now();
        const bool sent = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        while (sent && heard != percentage && secondsSince(begin) < 5)
            std::this_thread::sleep_for(100us);
        return heard == percentage ? secondsSince(begin) : 99;
    }

    TestPlace place;
    const std::string path = place.paths.encodingProgressFifo;
    std::atomic<int> heard = -1;
    std::atomic<long> messages = 0;
    Kest::Settings::Backend backend{place.paths};
};

void lose(const std::string& path, int kind)
{
    fs::remove(path);
    if (kind == 1)
        writeFile(path, "another's");
    else if (kind == 2)
        fs::create_symlink("/dev/null", path);
    else if (kind == 3)
        mkfifo(path.c_str(), 0600);
    else if (kind == 4)
        fs::create_directory(path);
}

/// How long until a line is heard through the path after each loss; several agents at once.
void loseAndWait(Part& part)
{
    constexpr int kAgents = 20;
    const int losses = part.count(5, 1);
    std::vector<double> worst(kAgents, 0);
    std::vector<std::thread> agents;
    std::atomic<int> back = 0;
    for (int agent = 0; agent < kAgents; ++agent)
        agents.emplace_back([&, agent] {
            Listener listener;
            close(listener.open());
            for (int i = 0; i < losses; ++i) {
                lose(listener.path, (agent + i) % 5);
                const auto begin = Clock::now();
                const int file = listener.open();
                const auto time = listener.timeOf(file, "", i + 1) + secondsSince(begin);
                close(file);
                worst[static_cast<std::size_t>(agent)] =
                    std::max(worst[static_cast<std::size_t>(agent)], time);
                back += time <= 2 ? 1 : 0;
            }
        });
    for (auto& agent : agents)
        agent.join();
    char text[100];
    std::snprintf(text, sizeof text, "%d of %d, the slowest after %.2f s", back.load(), kAgents * losses,
                  *std::ranges::max_element(worst));
    part.row("FIFO lost or replaced", "100 of 100 back within 2 s", text, back == kAgents * losses);
}

double residentMegabytes()
{
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

struct Worst {
    double seconds = 0;
    double megabytes = 0;
};

/// While `flood` runs, a line every few milliseconds. `before` ends whatever the flood has begun.
Worst measureDuring(Listener& listener, const std::string& before, const std::function<void(int file)>& flood)
{
    const int file = listener.open();
    const int own = listener.open();
    listener.timeOf(own, "\n", 1);
    const auto base = residentMegabytes();
    std::atomic<bool> isDone = false;
    std::thread writer([&] {
        flood(file);
        isDone = true;
    });
    Worst worst;
    for (int percentage = 0; !isDone; percentage = (percentage + 1) % 90) {
        worst.seconds = std::max(worst.seconds, listener.timeOf(own, before, percentage));
        worst.megabytes = std::max(worst.megabytes, residentMegabytes() - base);
        std::this_thread::sleep_for(5ms);
    }
    writer.join();
    worst.seconds = std::max(worst.seconds, listener.timeOf(own, "\n", 99));
    close(file);
    close(own);
    return worst;
}

void writeAll(int file, const std::string& text)
{
    for (std::size_t done = 0; done < text.size();) {
        const auto count = write(file, text.data() + done, text.size() - done);
        if (count <= 0)
            return;
        done += static_cast<std::size_t>(count);
    }
}

void flood(Part& part)
{
    const int megabytes = part.count(1000, 50);
    const int pids = part.count(1000000, 100000);
    Listener listener;
    const auto endless = measureDuring(listener, "\n", [&](int file) {
        const std::string piece(4000, 'x'); // whole writes, so that lines of others are not cut
        for (long bytes = 0; bytes < megabytes * 1000000L; bytes += 4000)
            writeAll(file, piece);
    });
    const auto many = measureDuring(listener, "", [&](int file) {
        for (int pid = 100000; pid < 100000 + pids; ++pid) {
            const auto name = std::to_string(pid);
            const auto path =
                "/Volumes/Out/" + name + std::string(static_cast<std::size_t>(pid % 500), 'p') + "/";
            writeAll(file, line(pid, "path: " + path + name + ".wav") +
                               line(pid, "P: " + std::to_string(pid % 101)));
        }
    });
    const auto seconds = std::max(endless.seconds, many.seconds);
    const auto more = std::max(endless.megabytes, many.megabytes);
    char text[200];
    std::snprintf(
        text, sizeof text,
        "%d MB without a line end: %.1f MB more, a line in %.0f ms; %d process ids: %.1f MB more, %.0f ms",
        megabytes, endless.megabytes, endless.seconds * 1e3, pids, many.megabytes, many.seconds * 1e3);
    part.row("hostile writer", "at most 8 MB more memory, a valid line within 100 ms meanwhile", text,
             more <= 8 && seconds <= 0.1);
}

/// One process each; the lines are those of an encoder, all at once.
void encode(int file, int pid, int steps)
{
    const auto name = "Reel_" + std::to_string(pid);
    writeAll(file, line(pid, "path: /Volumes/Out/" + name + "/" + name + ".wav"));
    writeAll(file, line(pid, "enc_type: Main"));
    for (int step = 0; step < steps; ++step)
        writeAll(file, line(pid, "P: " + std::to_string(step * 100 / steps)));
    writeAll(file, line(pid, "ERROR: "));
    writeAll(file, line(pid, "P: 100"));
}

void encodeAtOnce(Part& part)
{
    constexpr int kEncoders = 8;
    const int steps = part.count(100000, 5000);
    Listener listener;
    const int file = listener.open();
    std::vector<pid_t> encoders;
    for (int i = 0; i < kEncoders; ++i) {
        encoders.push_back(fork());
        if (encoders.back() == 0) {
            encode(file, getpid(), steps);
            _exit(0);
        }
    }
    int whole = 0;
    for (const auto pid : encoders) {
        waitpid(pid, nullptr, 0);
        eventually([&] { return listener.backend.getEncodingStatus(pid).percentage == 100; });
        const auto known = listener.backend.getEncodingStatus(pid);
        const auto name = "Reel_" + std::to_string(pid);
        whole += known.pid == pid && known.percentage == 100 && known.errorCount == -1 &&
                         known.encType == "Main" && known.name == name &&
                         known.path == "/Volumes/Out/" + name + "/" + name + ".wav"
                     ? 1
                     : 0;
    }
    close(file);
    const long wanted = static_cast<long>(kEncoders) * (steps + 2);
    part.row("8 encoders at once", "nothing lost",
             std::to_string(whole) + " of 8 records whole, " + std::to_string(listener.messages) + " of " +
                 std::to_string(wanted) + " messages",
             whole == kEncoders && listener.messages == wanted);
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    Part part(argc, argv);
    encodeAtOnce(part);
    flood(part);
    loseAndWait(part);
    return part.exitStatus();
}
