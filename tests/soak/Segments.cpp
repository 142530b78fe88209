// The host's segments in every state that they can be in, while the agent works with them.
#include "backend/Backend.h"
#include "tests/soak/Part.h"
#include "tests/support/Eventually.h"
#include "tests/support/TestPlace.h"

#include <cstdio>
#include <functional>
#include <random>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;

constexpr std::size_t kNeeded = RawSegment::kSessionBytes;
constexpr std::size_t kDefaultBus = 3458152;

/// A host's session; what the agent may not change in it is compared with what it was.
class Segment {
public:
    Segment(const std::string& marker, std::size_t bytes)
    {
        std::ofstream(marker, std::ios::app).close();
        id = shmget(ftok(marker.c_str(), 1), bytes, IPC_CREAT | IPC_EXCL | 0666);
        memory = static_cast<unsigned char*>(shmat(id, nullptr, 0));
        size = bytes;
    }
    ~Segment()
    {
        shmctl(id, IPC_RMID, nullptr);
        shmdt(memory);
    }
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    void fillRandomly()
    {
        std::mt19937 random(1);
        for (std::size_t i = 0; i < size; ++i)
            memory[i] = static_cast<unsigned char>(random());
    }
    void addAgent()
    {
        if (size < kNeeded)
            return;
        std::memcpy(memory + RawSegment::slot(3), "KestSettings", 13);
        std::memcpy(memory + RawSegment::slot(9), "bus-1", 6);
        std::memcpy(memory + RawSegment::slot(9) + 72, "Dialog", 7);
        std::memcpy(memory + RawSegment::slot(9) + 68, "SUBK", 4);
    }
    void remember() { before.assign(memory, memory + size); }
    void remove() const { shmctl(id, IPC_RMID, nullptr); }
    void setMode(unsigned short mode, uid_t owner) const
    {
        shmid_ds status{};
        status.shm_perm.uid = owner;
        status.shm_perm.mode = mode;
        shmctl(id, IPC_SET, &status);
    }

    long foreignBytesChanged() const
    {
        long changed = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const auto inRecord = i - RawSegment::slot(3);
            const bool isOwn =
                (inRecord >= 144 && inRecord < 144 + 512) || (inRecord >= 656 && inRecord < 656 + 272);
            changed += memory[i] != before[i] && !isOwn && (i < kDefaultBus || i >= kDefaultBus + 65) ? 1 : 0;
        }
        return changed;
    }
    bool hasNoAttachmentLeft() const
    {
        return eventually([this] {
            shmid_ds status{};
            return shmctl(id, IPC_STAT, &status) == 0 && status.shm_nattch == 1;
        });
    }

private:
    int id = -1;
    std::size_t size = 0;
    unsigned char* memory = nullptr;
    std::vector<unsigned char> before;
};

/// One state: how the session is made, and what happens to it during the operations.
struct State {
    const char* name;
    std::size_t bytes; // 0 for no segment
    std::function<void(Segment&, const std::string& marker)> prepare = [](auto&, auto&) {};
    bool isReplaced = false;
    bool isRemoved = false;
};

void operate(Kest::Settings::Backend& backend, int i)
{
    switch (i % 4) {
    case 0:
        return backend.setSoloMode(i);
    case 1:
        return backend.setFacility(juce::String::repeatedString("f", i % 200));
    case 2:
        return backend.setPhysMonConfig(i % 12);
    default:
        return backend.setDefaultKestBus("Dialog");
    }
}

/// `replace` is called with sizes of another session to come under the same key.
void operateAll(const TestPlace& place, int operations, const std::function<void(std::size_t)>& replace,
                const State& state, const Segment* segment)
{
    const std::size_t sizes[] = {kNeeded, 1, 4096, kNeeded - 1};
    Kest::Settings::Backend backend(place.paths, std::chrono::milliseconds(1));
    for (int i = 0; i < operations; ++i) {
        operate(backend, i);
        if (state.isReplaced && i % 20 == 19)
            replace(sizes[i / 20 % 4]);
        if (state.isRemoved && i == operations / 2)
            segment->remove();
    }
}

// Root would be permitted everything.
bool becomeSomebody(const TestPlace& place, const std::string& marker, const Segment& segment)
{
    constexpr uid_t kNobody = 65534;
    if (geteuid() != 0) {
        segment.setMode(0, geteuid());
        return true;
    }
    segment.setMode(0, kNobody);
    return chown(place.folder.path().c_str(), kNobody, kNobody) == 0 &&
           chown(marker.c_str(), kNobody, kNobody) == 0 && setresuid(kNobody, kNobody, kNobody) == 0;
}

/// In a process of its own. Its exit status: 0 when all is well.
int play(const State& state, int operations)
{
    TestPlace place;
    const auto marker = "/tmp/LIPC_" + place.paths.sessionSegment;
    std::unique_ptr<Segment> segment;
    const auto make = [&](std::size_t bytes) {
        segment.reset();
        if (bytes == 0)
            return;
        segment = std::make_unique<Segment>(marker, bytes);
        state.prepare(*segment, marker);
        segment->remember();
    };
    make(state.bytes);
    const bool isForbidden = std::string(state.name) == "no permission";
    if (isForbidden && !becomeSomebody(place, marker, *segment))
        return 2;
    std::freopen("/dev/null", "w", stdout); // where there is no key, each operation says so
    std::freopen("/dev/null", "w", stderr);

    long changed = 0;
    bool areDetached = true;
    const auto check = [&] {
        areDetached = areDetached && (segment == nullptr || segment->hasNoAttachmentLeft());
        changed += segment == nullptr ? 0 : segment->foreignBytesChanged();
    };
    operateAll(
        place, operations,
        [&](std::size_t bytes) {
            check();
            make(bytes);
        },
        state, segment.get());
    if (isForbidden)
        segment->setMode(0600, geteuid());
    check();
    fs::remove_all(marker);
    fs::remove_all(marker + ".moved");
    return changed == 0 && areDetached ? 0 : 1;
}

std::vector<State> states()
{
    const auto agent = [](Segment& segment, const std::string&) { segment.addAgent(); };
    const auto moved = [](const std::function<void(const std::string&)>& putThere) {
        return [putThere](Segment& segment, const std::string& marker) {
            segment.addAgent();
            fs::rename(marker, marker + ".moved");
            putThere(marker);
        };
    };
    return {
        {"none", 0},
        {"one byte", 1},
        {"one page", 4096},
        {"one byte too small", kNeeded - 1},
        {"exact", kNeeded, agent},
        {"larger", kNeeded + 100000, agent},
        {"all zeros", kNeeded},
        {"random bytes", kNeeded,
         [](Segment& segment, const std::string&) {
             segment.fillRandomly();
             segment.addAgent();
         }},
        {"removed while attached", kNeeded, agent, false, true},
        {"replaced under its key", kNeeded, agent, true},
        {"no permission", kNeeded, agent},
        {"marker moved", kNeeded, moved([](auto&) {})},
        {"marker a link", kNeeded,
         moved([](auto& marker) { fs::create_symlink(marker + ".moved", marker); })},
        {"marker a folder", kNeeded, moved([](auto& marker) { fs::create_directory(marker); })},
    };
}

} // namespace

int main(int argc, char** argv)
{
    Part part(argc, argv);
    const int operations = part.count(1000, 40);
    int signals = 0;
    int failures = 0;
    const auto all = states();
    for (const auto& state : all) {
        const pid_t child = fork();
        if (child == 0)
            std::_Exit(play(state, operations));
        int status = 0;
        waitpid(child, &status, 0);
        signals += WIFSIGNALED(status) ? 1 : 0;
        failures += WIFEXITED(status) && WEXITSTATUS(status) != 0 ? 1 : 0;
        if (status != 0)
            std::fprintf(stderr, "segment %s: status %x\n", state.name, static_cast<unsigned>(status));
    }
    part.row("segment states", "12 states x 1,000 operations: 0 signals, 0 foreign bytes, 0 attachments left",
             std::to_string(all.size()) + " states x " + std::to_string(operations) +
                 " operations: " + std::to_string(signals) + " signals, " + std::to_string(failures) +
                 " with foreign bytes or attachments left",
             signals + failures == 0);
    return part.exitStatus();
}
