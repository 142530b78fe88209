// A segment of the host's shared memory as bytes. Tests give offsets as literal numbers, to check the layouts
// independently of the structures of lipc.
#pragma once

#include <cstdint>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <unistd.h>

namespace Kest::Test {

/// Removes the key file of the segment `name` on destruction. Must outlive the segment: after the removal,
/// the key file of another test may get the same inode and so the same key.
struct KeyFileRemover {
    explicit KeyFileRemover(const std::string& name) : path("/tmp/LIPC_" + name) {}
    ~KeyFileRemover() { unlink(path.c_str()); }
    KeyFileRemover(const KeyFileRemover&) = delete;
    KeyFileRemover& operator=(const KeyFileRemover&) = delete;

    const std::string path;
};

class RawSegment {
public:
    static constexpr std::size_t kSessionBytes = 3458217;

    /// Creates the segment `name` of `bytes` zero bytes. Throws on failure.
    RawSegment(const std::string& name, std::size_t bytes)
    {
        const auto keyFile = "/tmp/LIPC_" + name;
        std::ofstream(keyFile, std::ios::app).close();
        id = shmget(ftok(keyFile.c_str(), 1), bytes, IPC_CREAT | IPC_EXCL | 0666);
        void* const none = reinterpret_cast<void*>(-1);
        void* attached = shmat(id, freshAddress(bytes), 0);
        if (attached == none) // another thread has taken the address
            attached = shmat(id, nullptr, 0);
        if (attached == none)
            throw std::runtime_error("no segment " + name);
        memory = static_cast<unsigned char*>(attached);
    }
    /// Removes the segment, but does not detach it, so that nothing else gets the address.
    ~RawSegment() { shmctl(id, IPC_RMID, nullptr); }
    RawSegment(const RawSegment&) = delete;
    RawSegment& operator=(const RawSegment&) = delete;

    static std::size_t slot(int index) { return 1120 + 3376 * static_cast<std::size_t>(index); }

    /// Writes a 32-bit number in one access, as a host in another process does.
    template <typename Number>
    void put(std::size_t offset, Number value)
    {
        static_assert(sizeof value == 4);
        __atomic_store(reinterpret_cast<Number*>(memory + offset), &value, __ATOMIC_RELEASE);
    }
    /// Reads a number in one access.
    template <typename Number>
    Number at(std::size_t offset) const
    {
        Number value = 0;
        __atomic_load(reinterpret_cast<const Number*>(memory + offset), &value, __ATOMIC_ACQUIRE);
        return value;
    }
    /// Writes a text and its terminator.
    void putText(std::size_t offset, const std::string& text)
    {
        std::memcpy(memory + offset, text.c_str(), text.size() + 1);
    }
    std::string textAt(std::size_t offset) const { return reinterpret_cast<const char*>(memory + offset); }
    unsigned char* bytes() { return memory; }

    /// Writes a bus plug-in's record into slot `index`. Writes its type, the bytes "SUBK", last, because a
    /// monitor may be reading.
    void putBus(int index, const std::string& busId, const std::string& label)
    {
        putText(slot(index), busId);
        putText(slot(index) + 72, label);
        put(slot(index) + 68, 0x4B425553);
    }
    void putAgentRecord(int index) { putText(slot(index), "KestSettings"); }
    void removeClient(int index) { put(slot(index) + 68, 0); } // clears the type
    int attachments() const
    {
        shmid_ds status{};
        shmctl(id, IPC_STAT, &status);
        return static_cast<int>(status.shm_nattch);
    }

private:
    // Returns an address at which `bytes` are free. The agent may have read another segment there and
    // detached it. The thread sanitizer, which does not know shmdt, would report a race with these reads;
    // munmap makes it forget them.
    static void* freshAddress(std::size_t bytes)
    {
        void* address = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        munmap(address, bytes);
        return address;
    }

    int id = -1;
    unsigned char* memory = nullptr;
};

} // namespace Kest::Test
