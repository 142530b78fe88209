// Keys and their marker files, and attachments to segments of every size.
#include "lipc/ShmManaged.h"

#include "lipc/SessionBuffer.h"
#include "lipc/ShmKey.h"
#include "lipc/VersionBuffer.h"
#include "tests/support/Captured.h"
#include "tests/support/RawSegment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;

class Segment : public testing::Test {
protected:
    /// Whether a segment of that size is attached. Counts its attachments meanwhile and afterwards.
    template <typename Layout>
    bool attachesTo(std::size_t bytes)
    {
        const RawSegment raw(name, bytes); // itself an attachment
        bool attached = false;
        {
            const LIPC::ShmManagedOpen<Layout> open(name.c_str());
            attached = open.contents() != nullptr;
            EXPECT_GE(open.id, 0);
            EXPECT_EQ(raw.attachments(), attached ? 2 : 1) << bytes;
        }
        EXPECT_EQ(raw.attachments(), 1) << bytes;
        return attached;
    }

    const std::string name = "TEST_SEGMENT_" + std::to_string(getpid());
    const MarkerRemover remover{name};
    const std::string& marker = remover.marker;
    const TemporaryFolder folder;
};

TEST_F(Segment, HasAKeyOfAMarkerFileThatIsEmptiedAndRefreshed)
{
    const key_t key = LIPC::shmKey(name.c_str());
    EXPECT_NE(key, -1);
    EXPECT_EQ(key, ftok(marker.c_str(), 1));
    writeFile(marker, "data");
    EXPECT_EQ(LIPC::shmKey(name.c_str()), key);
    EXPECT_EQ(fs::file_size(marker), 0u);

    const auto secondsOld = [&](int before) {
        const auto now = fs::file_time_type::clock::now();
        fs::last_write_time(marker, now - std::chrono::seconds(before));
        EXPECT_EQ(LIPC::shmKey(name.c_str()), key);
        return (now - fs::last_write_time(marker)) / std::chrono::seconds(1);
    };
    EXPECT_EQ(secondsOld(3000), 3000) << "an empty file was written again";
    EXPECT_LT(secondsOld(7200), 60) << "programs that clean /tmp remove it";
}

TEST_F(Segment, HasNoKeyOfALink)
{
    writeFile(folder / "target", "kept");
    captureErrors();
    for (const auto* target : {"target", "missing"}) {
        fs::remove(marker);
        fs::create_symlink(folder / target, marker);
        const LIPC::ShmManagedOpen<LIPC::VersionBuffer> open(name.c_str());
        EXPECT_TRUE(open.key == -1 && open.id == -1 && open.address == nullptr);
    }
    const auto line = capturedErrors();
    EXPECT_THAT(line,
                testing::HasSubstr("shmKey Could not create key for shm object (ftok) (" + name + "): "));
    EXPECT_EQ(std::ranges::count(line, '\n'), 1) << "it fails once a second while the link is there";
    fs::remove(marker);
    fs::create_hard_link(folder / "target", marker);
    EXPECT_NE(LIPC::shmKey(name.c_str()), -1);
    EXPECT_EQ(readFile(folder / "target"), "kept");
    EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST_F(Segment, IsAttachedIfItHoldsItsLayoutAndIsNotMade)
{
    captureErrors();
    EXPECT_EQ(LIPC::ShmManagedOpen<LIPC::SessionBuffer>(name.c_str()).address, nullptr);
    EXPECT_EQ(capturedErrors(), "");
    EXPECT_FALSE(attachesTo<LIPC::VersionBuffer>(7)); // throws if there is a segment already
    for (const auto bytes : {8, 10000})
        EXPECT_TRUE(attachesTo<LIPC::VersionBuffer>(bytes));
    EXPECT_FALSE(attachesTo<LIPC::SessionBuffer>(3458216));
    for (const auto bytes : {3458217, 4000000})
        EXPECT_TRUE(attachesTo<LIPC::SessionBuffer>(bytes));
}

} // namespace
