// A file descriptor that its owner closes.
#pragma once

#include <unistd.h>
#include <utility>

namespace Kest::Settings {

class Descriptor {
public:
    Descriptor() = default;
    /// Takes ownership of an open descriptor; a negative number, the result of a failed call, means none.
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

    /// Returns the descriptor without closing it; the caller owns it.
    int release() { return std::exchange(number, -1); }
    int get() const { return number; }
    explicit operator bool() const { return number >= 0; }

private:
    int number = -1;
};

} // namespace Kest::Settings
