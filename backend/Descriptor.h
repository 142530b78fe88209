// Owns a file descriptor and closes it on destruction.
#pragma once

#include <unistd.h>
#include <utility>

namespace Kest::Settings {

class Descriptor {
public:
    Descriptor() = default;
    /// Takes ownership of an open descriptor. A negative number, for example the result of a failed call,
    /// means no descriptor.
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor()
    {
        if (number >= 0)
            close(number);
    }
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    /// Exchanges the descriptors of both objects, so the destructor of `other` closes the previous one.
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number, other.number);
        return *this;
    }

    /// Returns the descriptor and passes its ownership to the caller; a negative number if there is none.
    int release() { return std::exchange(number, -1); }
    int get() const { return number; }
    explicit operator bool() const { return number >= 0; }

private:
    int number = -1;
};

} // namespace Kest::Settings
