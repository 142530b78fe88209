// A file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>
#include <utility>

namespace Kest::Settings {

class Descriptor {
public:
    Descriptor() = default;
    /// Takes over an open descriptor; a negative one, as a failed call returns it, is none.
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor()
    {
        if (number >= 0)
            close(number);
    }
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number, other.number);
        return *this;
    }

    /// Gives it away, to be closed by somebody else.
    int release() { return std::exchange(number, -1); }
    int get() const { return number; }
    explicit operator bool() const { return number >= 0; }

private:
    int number = -1;
};

} // namespace Kest::Settings
