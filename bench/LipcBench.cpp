// What the agent does with the host's session, beside the least that can be done with it.
#include "bench/NaivePass.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/ShmManaged.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <stdexcept>
#include <string>
#include <sys/ipc.h>
#include <vector>

namespace {

using LIPC::SessionBuffer;

constexpr char kName[] = "BENCH";

/// A session of the benchmark, with the agent's record in its tenth slot and some buses behind it.
class Session {
public:
    explicit Session(int buses)
        : id(shmget(LIPC::shmKey(kName), SessionBuffer::kSegmentBytes, IPC_CREAT | IPC_EXCL | 0600)),
          contents(static_cast<SessionBuffer*>(shmat(id, nullptr, 0)))
    {
        if (id < 0)
            throw std::runtime_error("no segment for the benchmark");
        std::memset(static_cast<void*>(contents), 0, SessionBuffer::kSegmentBytes);
        contents->clients[10].id = LIPC::ClientID(LIPC::kSettingsClientName);
        const int first = buses > 1000 ? 0 : 20;
        for (int i = first; i < first + buses; ++i) {
            auto& bus = contents->clients[i];
            bus.type = LIPC::kBusType;
            std::strcpy(bus.label, ("Bus " + std::to_string(i)).c_str());
        }
    }
    ~Session()
    {
        shmdt(contents);
        shmctl(id, IPC_RMID, nullptr);
    }

    const int id;
    SessionBuffer* const contents;
};

void naivePass(benchmark::State& state)
{
    const Session session(8);
    for (auto _ : state)
        Kest::Bench::naivePass(kName);
}
BENCHMARK(naivePass);

void monitorPass(benchmark::State& state)
{
    const Session session(8);
    for (auto _ : state) {
        const LIPC::ShmManagedOpen<SessionBuffer> attached(kName);
        attached.populate();
        benchmark::DoNotOptimize(attached.contents()->getClientEntry(LIPC::kSettingsClientName));
        std::deque<LIPC::ClientEntry> buses;
        attached.contents()->getClientEntries(LIPC::kBusType, buses);
        benchmark::DoNotOptimize(buses.size());
    }
}
BENCHMARK(monitorPass);

void stridedTouch(benchmark::State& state)
{
    const Session session(0);
    for (auto _ : state) {
        unsigned sum = 0;
        for (const auto& client : session.contents->clients) {
            sum += *reinterpret_cast<const unsigned char*>(&client.id);
            sum += static_cast<unsigned>(client.type);
            benchmark::DoNotOptimize(sum);
        }
    }
}
BENCHMARK(stridedTouch);

void hotScan(benchmark::State& state)
{
    const Session session(0);
    std::deque<LIPC::ClientEntry> buses;
    for (auto _ : state) {
        benchmark::DoNotOptimize(session.contents->getClientEntry("nobody"));
        benchmark::DoNotOptimize(session.contents->getClientEntries(LIPC::kBusType, buses));
    }
}
BENCHMARK(hotScan);

void memcpyOfAll(benchmark::State& state)
{
    const Session session(1024);
    std::vector<unsigned char> warm(sizeof session.contents->clients);
    for (auto _ : state) {
        std::memcpy(warm.data(), session.contents->clients, warm.size());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(memcpyOfAll);

void entriesOfAll(benchmark::State& state)
{
    const Session session(1024);
    std::deque<LIPC::ClientEntry> entries;
    for (auto _ : state) {
        session.contents->getClientEntries(LIPC::kBusType, entries);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(entriesOfAll);

} // namespace
