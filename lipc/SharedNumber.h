// Numbers in memory that another process reads and writes at the same time.
#pragma once

namespace LIPC {

/// Reads a number in one access. A naturally aligned 32-bit value is never torn.
template <typename Number>
Number loadShared(const Number& shared)
{
    Number value;
    __atomic_load(&shared, &value, __ATOMIC_ACQUIRE);
    return value;
}

/// Writes a number in one access, after everything that was written before it.
template <typename Number>
void storeShared(Number& shared, Number value)
{
    __atomic_store(&shared, &value, __ATOMIC_RELEASE);
}

} // namespace LIPC
