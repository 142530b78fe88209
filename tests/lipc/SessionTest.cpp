#include "lipc/Numeric.h"
#include "lipc/SessionBuffer.h"
#include "lipc/ShmKey.h"
#include "lipc/ShmManaged.h"
#include "lipc/VersionBuffer.h"
#include "tests/support/Captured.h"
#include "tests/support/RawSegment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <climits>
#include <cmath>

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;

class Segment : public testing::Test {
protected:
    const std::string name = "TEST_SEGMENT_" + std::to_string(getpid());
    const KeyFileRemover remover{name};
    const std::string& keyFile = remover.path;
    const TemporaryFolder folder;
};

TEST_F(Segment, HasTheKeyOfAFileThatIsEmptiedAndRefreshed)
{
    const key_t key = LIPC::shmKey(name.c_str());
    EXPECT_TRUE(key != -1 && key == ftok(keyFile.c_str(), 1));
    writeFile(keyFile, "data");
    EXPECT_EQ(LIPC::shmKey(name.c_str()), key);
    EXPECT_EQ(fs::file_size(keyFile), 0u);
    const auto secondsOld = [&](int before) {
        const auto now = fs::file_time_type::clock::now();
        fs::last_write_time(keyFile, now - std::chrono::seconds(before));
        EXPECT_EQ(LIPC::shmKey(name.c_str()), key);
        return (now - fs::last_write_time(keyFile)) / std::chrono::seconds(1);
    };
    EXPECT_EQ(secondsOld(3000), 3000) << "an empty file was written again";
    EXPECT_LT(secondsOld(7200), 60) << "programs that clean /tmp remove it";
}

TEST_F(Segment, HasNoKeyOfALink)
{
    writeFile(folder / "target", "kept");
    captureErrors();
    for (const auto* target : {"target", "missing"}) {
        fs::remove(keyFile);
        fs::create_symlink(folder / target, keyFile);
        const LIPC::ShmManagedOpen<LIPC::VersionBuffer> open(name.c_str());
        EXPECT_TRUE(open.key == -1 && open.id == -1 && open.address == nullptr);
    }
    EXPECT_THAT(capturedErrors(), // once: it fails each second while the link is there
                testing::MatchesRegex("[^\n]*shmKey Could not create key for shm object .ftok. ." + name +
                                      ".: [^\n]*\n"));
    fs::remove(keyFile);
    fs::create_hard_link(folder / "target", keyFile);
    EXPECT_NE(LIPC::shmKey(name.c_str()), -1);
    EXPECT_EQ(readFile(folder / "target"), "kept");
    EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST_F(Segment, IsAttachedIfItHoldsItsLayoutAndIsNotCreated)
{
    using Session = LIPC::ShmManagedOpen<LIPC::SessionBuffer>;
    captureErrors();
    EXPECT_EQ(Session(name.c_str()).address, nullptr);
    EXPECT_EQ(capturedErrors(), "");
    EXPECT_EQ(shmget(LIPC::shmKey(name.c_str()), 0, 0), -1);
    for (const std::size_t bytes : {7u, 8u, 3458216u, 3458217u, 4000000u}) {
        const RawSegment raw(name, bytes);
        const auto before = raw.attachments();
        if (const Session open(name.c_str()); true) {
            EXPECT_GE(open.id, 0);
            EXPECT_EQ(open.contents() != nullptr, bytes >= 3458217) << bytes;
            EXPECT_EQ(raw.attachments() - before, bytes >= 3458217 ? 1 : 0) << bytes;
        }
        EXPECT_EQ(raw.attachments(), before) << bytes;
        const LIPC::ShmManagedOpen<LIPC::VersionBuffer> version(name.c_str());
        EXPECT_EQ(version.contents() != nullptr, bytes >= 8) << bytes;
    }
}

class SessionBuffer : public Segment {
protected:
    /// Writes a record with a different value in every field, by offset.
    void fill(int index)
    {
        const auto slot = RawSegment::slot(index);
        raw.putText(slot, "bus-7");
        raw.put(slot + 68, 0x4B425553);
        raw.putText(slot + 72, std::string(64, 'L')); // its terminator is overwritten: it has none
        raw.put(slot + 136, 0x11223344);
        raw.put(slot + 140, 0x77885566);
        for (std::size_t n = 0; n < 128; ++n)
            raw.put(slot + 144 + 4 * n, static_cast<float>(n) + 0.5F);
        for (std::size_t k = 0; k < 10; ++k) {
            raw.putText(slot + 656 + 272 * k + 8 + 128, "text " + std::to_string(k));
            raw.put(slot + 656 + 272 * k + 264, 1);
        }
    }
    static std::string bytesOf(const LIPC::ClientEntry& client)
    {
        return {reinterpret_cast<const char*>(&client), 3376};
    }

    RawSegment raw{name, RawSegment::kSessionBytes};
    const LIPC::ShmManagedOpen<LIPC::SessionBuffer> open{name.c_str()};
    LIPC::SessionBuffer& session{*open.contents()};
};

TEST_F(SessionBuffer, HasTheLayoutOfTheHost)
{
    for (const int index : {0, 517, 1023}) {
        fill(index);
        auto& client = session.clients[index];
        EXPECT_EQ(client.labelText(), std::string(64, 'L'));
        EXPECT_EQ(client.strings[9].text(), "text 9");
        const auto wanted = bytesOf(client);
        std::fill_n(raw.bytes() + 1120 + 3376 * index, 3376, static_cast<unsigned char>(0));
        client.id = LIPC::ClientID("bus-7");
        client.type = LIPC::kBusType;
        std::ranges::fill(client.label, 'L');
        client.aux32 = 0x11223344;
        client.auxA16 = 0x5566;
        client.auxB16 = 0x7788;
        for (int n = 0; n < 128; ++n)
            client.params[n] = static_cast<float>(n) + 0.5F;
        for (std::size_t k = 0; k < 10; ++k)
            client.strings[k].put(("text " + std::to_string(k)).c_str(), 6);
        EXPECT_TRUE(bytesOf(client) == wanted) << index;
    }
    session.defaultBus = LIPC::ClientID("bus-7");
    EXPECT_EQ(raw.textAt(3458152), "bus-7");
    EXPECT_EQ(LIPC::kMixEngineType, 0x4B4D4958);
}

TEST_F(SessionBuffer, FindsTheFirstRecordOfAName)
{
    for (const int index : {1023, 4}) {
        EXPECT_NE(session.getClientEntry("KestSettings"), &session.clients[index]);
        raw.putAgentRecord(index);
        EXPECT_EQ(session.getClientEntry("KestSettings"), &session.clients[index]);
    }
    raw.putText(RawSegment::slot(9), std::string(80, 'n')); // no terminator within the field
    for (const auto length : {64u, 65u, 70u})
        EXPECT_EQ(session.getClientEntry(std::string(length, 'n').c_str()), &session.clients[9]) << length;
    for (const auto& none : {std::string("KestSetting"), std::string("KestSettings2"), std::string(63, 'n')})
        EXPECT_EQ(session.getClientEntry(none.c_str()), nullptr) << none;
}

TEST_F(SessionBuffer, CopiesTheRecordsOfATypeInSlotOrderWithoutLeavingTheirFields)
{
    raw.putBus(1023, "last", "");
    raw.put(RawSegment::slot(7) + 68, 0x4B4D4958); // of another type
    fill(2);
    fill(3);
    const auto text = RawSegment::slot(3) + 656;
    std::fill_n(raw.bytes() + text + 8, 128, 't'); // slot 0 of text 0, without a terminator
    raw.put(text + 264, 0);
    raw.put(text + 272 + 264, 99); // the index of text 1

    std::deque<LIPC::ClientEntry> buses(5); // is replaced
    ASSERT_EQ(session.getClientEntries(LIPC::kBusType, buses), 3);
    ASSERT_EQ(buses.size(), 3u);
    EXPECT_TRUE(bytesOf(buses[0]) == bytesOf(session.clients[2])) << "slot 1 has each text";
    EXPECT_EQ(buses[1].strings[0].text(), std::string(128, 't'));
    EXPECT_EQ(buses[1].strings[1].text(), "");
    EXPECT_EQ(buses[2].id.text(), "last");
    EXPECT_EQ(session.getClientEntries(-1, buses), 0);
}

/// A text in the memory of another process, with guards on both sides; all that is not set is 0xEE.
struct Field {
    explicit Field(std::int32_t current)
    {
        std::memset(bytes, 0xEE, sizeof bytes);
        std::memcpy(&bytes[16 + 264], &current, sizeof current);
    }
    LIPC::SHMString& text() { return *reinterpret_cast<LIPC::SHMString*>(&bytes[16]); }
    std::string all() const { return {bytes, sizeof bytes}; }

    alignas(8) char bytes[16 + 272 + 16] = {};
};

TEST(SHMString, IsCutAtAWholeCharacterAndWrittenIntoTheOtherSlotAlone)
{
    const std::string x(200, 'x');
    const struct {
        std::string text;
        int length; // as the caller counts
        std::size_t published;
    } texts[] = {{"", 0, 0},
                 {x.substr(0, 127), 127, 127},
                 {x.substr(0, 128), 128, 128},
                 {x.substr(0, 128), 129, 127},
                 {x, 100, 127},
                 {std::string(129, '\x80'), 129, 127},
                 {x.substr(0, 126) + "éx", 128, 126},
                 {x.substr(0, 124) + "七xx", 127, 127},
                 {x.substr(0, 124) + "🎧x", 126, 124}};
    for (const int before : {0, 1, 2, 7, -1, -2, INT_MAX, INT_MIN})
        for (const auto& [text, length, published] : texts) {
            const int after = before % 2 == 0 ? 1 : 0;
            Field field(before);
            Field wanted(after);
            // The terminator of 128 bytes is behind the slot: in the other one, or where the index is.
            const auto end = published + (after == 1 && published == 128 ? 0 : 1);
            std::memcpy(&wanted.bytes[16 + 8 + 128 * after], text.substr(0, published).c_str(), end);
            field.text().put(text.c_str(), length);
            EXPECT_EQ(field.all(), wanted.all()) << before << ' ' << text << ' ' << length;
        }
    for (const int current : {-1, 0, 1, 2, INT_MAX, INT_MIN}) {
        const bool isSlot = current == 0 || current == 1;
        EXPECT_EQ(Field(current).text().text(), std::string(isSlot ? 128 : 0, '\xEE')) << current;
    }
}

TEST(Decibels, AreSilentFromMinus144Down)
{
    EXPECT_FLOAT_EQ(LIPC::db2amplitude(-20.0F), 0.1F);
    EXPECT_GT(LIPC::db2amplitude(-143.9F), 0.0F);
    for (const float silent : {-144.0F, -1e9F, NAN})
        EXPECT_EQ(LIPC::db2amplitude(silent), 0.0F) << silent;
}

} // namespace
