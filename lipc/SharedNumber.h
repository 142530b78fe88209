// Numbers in memory that another process reads and writes at the same time.
#pragma once

namespace LIPC {

/// Reads a number atomically, with acquire ordering. `shared` must be naturally aligned and have at most the
/// size of a machine word.
template <typename Number>
Number loadShared(const Number& shared)
{
    Number value;
    __atomic_load(&shared, &value, __ATOMIC_ACQUIRE);
    return value;
}

/// Writes a number atomically, with release ordering: a process that has read this value with `loadShared`
/// also sees all that this thread wrote before it. `shared` must meet the requirements of `loadShared`.
template <typename Number>
void storeShared(Number& shared, Number value)
{
    __atomic_store(&shared, &value, __ATOMIC_RELEASE);
}

} // namespace LIPC
