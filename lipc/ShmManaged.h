// Short-lived attachments to the host's segments.
#pragma once

#include "lipc/ShmKey.h"

#include <cstddef>
#include <sys/types.h>

namespace LIPC {

/// The base class of all attachments. Its constructors only set `key`; subclasses attach and detach.
class ShmManaged {
public:
    explicit ShmManaged(const char* name);
    virtual ~ShmManaged() = default;
    ShmManaged(const ShmManaged&) = delete;
    ShmManaged& operator=(const ShmManaged&) = delete;

    key_t key;               // -1 if the key file yields no key, see `shmKey`
    int id = -1;             // the segment's identifier, even if not attached; -1 if none is accessible
    void* address = nullptr; // of the segment's contents; null if not attached

protected:
    enum class Access { readWrite, readOnly };

    /// Uses the key that the caller has derived.
    explicit ShmManaged(key_t derived) : key(derived) {}
    /// Attaches the existing segment with `key` and sets `id` and `address`. `address` stays null if `key` is
    /// -1, if this user has no `access` to a segment with the key, if the segment has fewer than `bytes`
    /// bytes, or if `shmat` fails. Prints a line on standard error only if `shmat` fails.
    void attach(std::size_t bytes, Access access);
    void detach();
    /// Maps the pages of the first `bytes` bytes at once, which takes about half the time of mapping each
    /// page on its first use. Does nothing without an attachment, or if the system does not support it.
    void mapPages(std::size_t bytes) const;
};

/// Keeps an existing segment attached for reading and writing while this object exists. Never creates,
/// resizes or removes a segment, but may create or change the key file, see `shmKey`. `Layout` describes the
/// contents; `Layout::kSegmentBytes` is the minimum size. Any thread.
template <typename Layout>
class ShmManagedOpen : public ShmManaged {
public:
    explicit ShmManagedOpen(const char* name) : ShmManaged(name)
    {
        attach(Layout::kSegmentBytes, Access::readWrite);
    }
    ~ShmManagedOpen() override { detach(); }

    /// Returns the segment's contents; null if the segment is missing, too small or cannot be attached. Valid
    /// while this object exists.
    Layout* contents() const { return static_cast<Layout*>(address); }
    /// Maps all pages at once, which saves time before an operation that reads the whole segment.
    void populate() const { mapPages(Layout::kSegmentBytes); }
};

/// Keeps an existing segment attached for reading only: writing to the contents causes a segmentation fault.
/// Neither creates nor changes the key file. Otherwise like `ShmManagedOpen`. Any thread.
template <typename Layout>
class ShmManagedReadOnly : public ShmManaged {
public:
    explicit ShmManagedReadOnly(const char* name) : ShmManaged(existingShmKey(name))
    {
        attach(Layout::kSegmentBytes, Access::readOnly);
    }
    ~ShmManagedReadOnly() override { detach(); }

    /// Returns the segment's contents; null if the segment is missing, too small or cannot be attached. Valid
    /// while this object exists.
    const Layout* contents() const { return static_cast<const Layout*>(address); }
};

} // namespace LIPC
