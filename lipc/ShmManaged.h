// Short-lived attachments to the host's segments.
#pragma once

#include "lipc/ShmKey.h"

#include <cstddef>
#include <sys/types.h>

namespace LIPC {

/// The base of every attachment. Derives the key from the segment's name when it is constructed.
class ShmManaged {
public:
    explicit ShmManaged(const char* name);
    virtual ~ShmManaged() = default;
    ShmManaged(const ShmManaged&) = delete;
    ShmManaged& operator=(const ShmManaged&) = delete;

    key_t key;               // -1 when the key could not be derived
    int id = -1;             // the segment's identifier; negative when there is none
    void* address = nullptr; // of the attachment; null when the segment is absent or too small

protected:
    enum class Access { readWrite, readOnly };

    /// Uses a key that was derived before.
    explicit ShmManaged(key_t derived) : key(derived) {}
    /// Attaches an existing segment of at least `bytes` bytes.
    void attach(std::size_t bytes, Access access);
    void detach();
    /// Maps all attached pages for reading, if the system supports it. Otherwise each page is mapped on first
    /// use, which takes almost twice as long.
    void mapPages(std::size_t bytes) const;
};

/// Attaches to an existing segment for the life of this object, which is that of one operation. Never
/// creates, resizes or removes a segment, and never throws. `Layout` describes the segment's contents, and
/// `Layout::kSegmentBytes` is the minimum size. Any thread.
template <typename Layout>
class ShmManagedOpen : public ShmManaged {
public:
    explicit ShmManagedOpen(const char* name) : ShmManaged(name)
    {
        attach(Layout::kSegmentBytes, Access::readWrite);
    }
    ~ShmManagedOpen() override { detach(); }

    /// Returns the segment's contents, null when it is absent. Valid for the life of this object.
    Layout* contents() const { return static_cast<Layout*>(address); }
    /// Maps all pages, for an operation that reads the whole segment.
    void populate() const { mapPages(Layout::kSegmentBytes); }
};

/// Attaches read-only: writing through it faults, and the key file is neither changed nor created.
template <typename Layout>
class ShmManagedReadOnly : public ShmManaged {
public:
    explicit ShmManagedReadOnly(const char* name) : ShmManaged(existingShmKey(name))
    {
        attach(Layout::kSegmentBytes, Access::readOnly);
    }
    ~ShmManagedReadOnly() override { detach(); }

    /// Returns the segment's contents, null when it is absent. Valid for the life of this object.
    const Layout* contents() const { return static_cast<const Layout*>(address); }
};

} // namespace LIPC
