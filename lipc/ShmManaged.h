// Short-lived attachments to the host's segments.
#pragma once

#include "lipc/ShmKey.h"

#include <cstddef>
#include <sys/types.h>

namespace LIPC {

/// What every attachment has. Made from a segment's name, whose key it derives at once.
class ShmManaged {
public:
    explicit ShmManaged(const char* name);
    virtual ~ShmManaged() = default;
    ShmManaged(const ShmManaged&) = delete;
    ShmManaged& operator=(const ShmManaged&) = delete;

    key_t key;               // -1 when the key could not be derived
    int id = -1;             // the segment's identifier; negative when there is none
    void* address = nullptr; // where it is attached; null when it is absent or too small

protected:
    enum class Access { readWrite, readOnly };

    /// For a key that is derived already.
    explicit ShmManaged(key_t derived) : key(derived) {}
    /// Attaches an existing segment of at least `bytes` bytes.
    void attach(std::size_t bytes, Access access);
    void detach();
    /// Maps the attached pages for reading at once, where the system can do that. Otherwise each is mapped
    /// when it is read first, which takes almost twice as long.
    void mapPages(std::size_t bytes) const;
};

/// Attaches to an existing segment for the life of this object, which is that of one operation. Never
/// creates, resizes or removes a segment, and never throws. `Layout` is the form of the segment's contents
/// and tells in `kSegmentBytes` how long a segment must be. May be used on any thread.
template <typename Layout>
class ShmManagedOpen : public ShmManaged {
public:
    explicit ShmManagedOpen(const char* name) : ShmManaged(name)
    {
        attach(Layout::kSegmentBytes, Access::readWrite);
    }
    ~ShmManagedOpen() override { detach(); }

    /// The segment's contents, null when it is absent. Valid as long as this object is.
    Layout* contents() const { return static_cast<Layout*>(address); }
    /// For an operation that looks at all of it.
    void populate() const { mapPages(Layout::kSegmentBytes); }
};

/// The same for one who only looks: the system lets nothing be written through it, and the marker file stays
/// as it is, or missing.
template <typename Layout>
class ShmManagedLook : public ShmManaged {
public:
    explicit ShmManagedLook(const char* name) : ShmManaged(existingShmKey(name))
    {
        attach(Layout::kSegmentBytes, Access::readOnly);
    }
    ~ShmManagedLook() override { detach(); }

    /// The segment's contents, null when it is absent. Valid as long as this object is.
    const Layout* contents() const { return static_cast<const Layout*>(address); }
};

} // namespace LIPC
