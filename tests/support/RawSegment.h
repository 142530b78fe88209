// A host's segment as nothing but bytes: the second, independent witness of the layouts. Knows no structure
// of the library; offsets in the tests that use it are literal numbers.
#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <unistd.h>

namespace Kest::Test {

/// Removes a segment's key file. Outlives the segment: the file's place on the disk, which the key is made
/// of, may be another test's a moment later.
class MarkerRemover {
public:
    explicit MarkerRemover(const std::string& name) : marker("/tmp/LIPC_" + name) {}
    ~MarkerRemover() { unlink(marker.c_str()); }
    MarkerRemover(const MarkerRemover&) = delete;
    MarkerRemover& operator=(const MarkerRemover&) = delete;

private:
    const std::string marker;
};

class RawSegment {
public:
    static constexpr std::size_t kSessionBytes = 3458217;
    static constexpr std::size_t kFirstSlot = 1120;
    static constexpr std::size_t kSlotBytes = 3376;

    /// Makes the segment of that name, all zeros.
    RawSegment(const std::string& name, std::size_t bytes)
        : marker("/tmp/LIPC_" + name), id(make(marker, bytes))
    {
        void* attached = id < 0 ? nullptr : shmat(id, freshAddress(bytes), 0);
        if (reinterpret_cast<std::intptr_t>(attached) == -1) // another thread was faster
            attached = shmat(id, nullptr, 0);
        if (id < 0 || reinterpret_cast<std::intptr_t>(attached) == -1)
            throw std::runtime_error("no segment " + name);
        memory = static_cast<unsigned char*>(attached);
    }
    /// Stays attached until the process ends, so that nothing else gets the address.
    ~RawSegment() { shmctl(id, IPC_RMID, nullptr); }
    RawSegment(const RawSegment&) = delete;
    RawSegment& operator=(const RawSegment&) = delete;

    static std::size_t slot(int index) { return kFirstSlot + kSlotBytes * static_cast<std::size_t>(index); }

    // Single accesses, as another process that the agent's threads run beside makes them.
    void putInt(std::size_t offset, std::int32_t value)
    {
        __atomic_store(reinterpret_cast<std::int32_t*>(memory + offset), &value, __ATOMIC_RELEASE);
    }
    void putFloat(std::size_t offset, float value)
    {
        __atomic_store(reinterpret_cast<float*>(memory + offset), &value, __ATOMIC_RELEASE);
    }
    std::int32_t intAt(std::size_t offset) const
    {
        std::int32_t value = 0;
        __atomic_load(reinterpret_cast<const std::int32_t*>(memory + offset), &value, __ATOMIC_ACQUIRE);
        return value;
    }
    float floatAt(std::size_t offset) const
    {
        float value = 0;
        __atomic_load(reinterpret_cast<const float*>(memory + offset), &value, __ATOMIC_ACQUIRE);
        return value;
    }
    /// With its terminator.
    void putText(std::size_t offset, const std::string& text)
    {
        std::memcpy(memory + offset, text.c_str(), text.size() + 1);
    }
    std::string textAt(std::size_t offset) const { return reinterpret_cast<const char*>(memory + offset); }
    unsigned char* bytes() { return memory; }

    /// A bus plug-in: type "KBUS", its bytes in memory in reverse order. Call while no monitor is looking, or
    /// put the type last, as here.
    void putBus(int index, const std::string& busId, const std::string& label)
    {
        putText(slot(index), busId);
        putText(slot(index) + 72, label);
        putInt(slot(index) + 68, 0x4B425553);
    }
    void putAgentRecord(int index) { putText(slot(index), "KestSettings"); }
    void removeClient(int index) { putInt(slot(index) + 68, 0); }
    int attachments() const
    {
        shmid_ds status{};
        shmctl(id, IPC_STAT, &status);
        return static_cast<int>(status.shm_nattch);
    }

private:
    // The thread sanitizer does not know shmdt, and takes what a thread read in an earlier segment at the
    // same address for a race. It knows munmap, and forgets what was read there.
    static void* freshAddress(std::size_t bytes)
    {
        void* address = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        munmap(address, bytes);
        return address;
    }
    // Where a killed test has left a segment with the same key behind, the marker file is made again with
    // another inode, which the key is made of.
    static int make(const std::string& marker, std::size_t bytes)
    {
        const std::string occupied = marker + "_occupied";
        for (int attempt = 0; attempt < 2; ++attempt) {
            std::ofstream(marker, std::ios::app).close();
            const int made = shmget(ftok(marker.c_str(), 1), bytes, IPC_CREAT | IPC_EXCL | 0666);
            unlink(occupied.c_str());
            if (made >= 0 || errno != EEXIST)
                return made;
            rename(marker.c_str(), occupied.c_str());
        }
        unlink(occupied.c_str());
        return -1;
    }

    std::string marker;
    int id;
    unsigned char* memory = nullptr;
};

} // namespace Kest::Test
