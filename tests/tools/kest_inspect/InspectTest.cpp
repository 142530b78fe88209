// What is read of a host's segments and told of them, and what the doctor finds, in a place of the test's
// own.
#include "backend/AgentLock.h"
#include "tests/support/TestPlace.h"
#include "tools/kest_inspect/Changes.h"
#include "tools/kest_inspect/Checks.h"
#include "tools/kest_inspect/Words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <random>
#include <sys/stat.h>

namespace KestInspect {
namespace {

namespace fs = std::filesystem;
using Kest::Test::RawSegment;
using testing::ElementsAre;
using testing::HasSubstr;

class Inspect : public testing::Test {
protected:
    static std::size_t agent(std::size_t offset)
    {
        return RawSegment::slot(Kest::Test::TestPlace::kAgentSlot) + offset;
    }

    /// The JSON of a reading. It and the text are checked to be fit for a terminal.
    nlohmann::json printedJson(const Reading& reading, std::string& text)
    {
        const auto isControl = [](unsigned char byte) { return byte < 0x20 && byte != '\n'; };
        text = printed(reading).text;
        EXPECT_TRUE(std::ranges::none_of(text, isControl)) << text;
        EXPECT_THAT(text, testing::Not(HasSubstr("\xC2\x9B")));
        const auto json = jsonDocument(printed(reading).json);
        EXPECT_TRUE(
            std::ranges::none_of(json, [&](unsigned char byte) { return isControl(byte) || byte >= 0x7F; }));
        return nlohmann::json::parse(json);
    }

    Kest::Test::TestPlace place;
    const std::string marker = "/tmp/LIPC_" + place.paths.sessionSegment;
};

TEST_F(Inspect, LooksWithoutATrace)
{
    EXPECT_FALSE(readHost(place.paths).session);
    EXPECT_FALSE(fs::exists(marker)) << "the look has made a marker";

    auto& raw = place.startHost();
    Kest::Test::writeFile(marker, "not ours to empty");
    const auto before = std::string(reinterpret_cast<const char*>(raw.bytes()), RawSegment::kSessionBytes);
    const auto reading = readHost(place.paths);
    ASSERT_TRUE(reading.session && reading.session->agent);
    EXPECT_EQ(reading.versionWord, 64);
    EXPECT_EQ(reading.session->agent->slot, 3);
    EXPECT_EQ(raw.attachments(), 1);
    EXPECT_EQ(Kest::Test::readFile(marker), "not ours to empty");
    EXPECT_TRUE(before == std::string(reinterpret_cast<const char*>(raw.bytes()), RawSegment::kSessionBytes));
}

TEST_F(Inspect, TellsAnyBytesAsTextAndAsJson)
{
    auto& raw = place.startHost();
    std::string label;
    for (int byte = 1; byte <= 64; ++byte) // with a bell, an escape and a quote, and without a terminator
        label += static_cast<char>(byte % 2 == 0 ? 256 - byte : byte);
    raw.putBus(1023, std::string(64, '\x9B'), label);
    raw.putText(3458152, std::string(64, '\x9B'));
    raw.putFloat(agent(144 + 4 * 39), -6.6F);
    raw.putFloat(agent(144 + 4 * 40), NAN);
    raw.putFloat(agent(144 + 4 * 41), 0.1F);
    std::memcpy(raw.bytes() + agent(656 + 8), "a\xC2\x9B\xFF", 5);
    raw.putInt(agent(656 + 272 + 264), 7); // no slot

    std::string text;
    const auto session = printedJson(readHost(place.paths), text)["session"];
    EXPECT_THAT(text, HasSubstr("No volume information is received"));
    EXPECT_THAT(text, HasSubstr("a\\xC2\\x9B\xEF\xBF\xBD"));
    const auto bus = session["clients"][1];
    EXPECT_EQ(bus["slot"], 1023);
    EXPECT_EQ(bus["type"], "KBUS");
    EXPECT_EQ(bus["label"], nameInUtf8(label));
    EXPECT_EQ(session["defaultBus"]["label"], bus["label"]);
    for (const auto& parameter : session["agent"]["parameters"]) {
        const auto& value = parameter["value"];
        EXPECT_EQ(parameter["name"] == "LatencyCompensationControl", value.is_null());
        EXPECT_EQ(parameter["name"] == "PhysMonConfig", value == 0.1);
    }

    std::mt19937 random(1);
    for (std::size_t i = 0; i < RawSegment::kSessionBytes; ++i)
        raw.bytes()[i] = static_cast<unsigned char>(random());
    EXPECT_GT(printedJson(readHost(place.paths), text)["session"]["clients"].size(), 1000);
}

TEST_F(Inspect, TellsEachChangeOnce)
{
    Reading known;
    const auto news = [&] {
        std::vector<std::string> lines;
        auto now = readHost(place.paths);
        for (const auto& change : changesBetween(known, now)) {
            lines.push_back(change.text);
            EXPECT_TRUE(Json::parse(jsonLine(change.json))["event"].is_string());
        }
        known = std::move(now);
        return lines;
    };
    EXPECT_EQ(changesUpTo(known).at(0).text, "host down");
    auto& raw = place.startHost();
    EXPECT_THAT(news(),
                testing::AllOf(testing::Contains("host up"), testing::Contains("parameter 4 SoloMode: 0"),
                               testing::Not(testing::Contains(HasSubstr("message")))));
    EXPECT_THAT(news(), ElementsAre());

    raw.putBus(7, "bus-1", "Dialog");
    raw.putText(3458152, "bus-1");
    raw.putFloat(agent(144 + 4 * 39), -7);
    raw.putFloat(agent(144 + 4 * 41), NAN);
    raw.putText(agent(656 + 8), "Studio A");
    EXPECT_THAT(news(), ElementsAre("client KBUS bus-1 \"Dialog\" came",
                                    "message -7 (No volume information is received)",
                                    "parameter 41 PhysMonConfig: nan (no such configuration)",
                                    "text 0 Facility: \"Studio A\"", "default bus Dialog (id bus-1)"));
    raw.putText(RawSegment::slot(7) + 72, "Speech");
    EXPECT_THAT(news(), ElementsAre("client KBUS bus-1 \"Speech\" renamed, was \"Dialog\""));
    raw.putText(RawSegment::slot(7), "bus-2"); // another one in its place
    EXPECT_THAT(news(),
                ElementsAre("client KBUS bus-1 \"Speech\" went", "client KBUS bus-2 \"Speech\" came"));
    raw.removeClient(7);
    EXPECT_THAT(news(), ElementsAre("client KBUS bus-2 \"Speech\" went"));
    place.stopHost();
    place.startHost(32);
    EXPECT_THAT(news(), testing::AllOf(testing::Contains("host down"), testing::Contains("version word 32")));
    place.stopHost();
    EXPECT_THAT(news(), ElementsAre("host down"));
}

class Doctor : public Inspect {
protected:
    /// The rank of a subject, with its text; "none" when it is not spoken of.
    std::string finding(const std::string& subject) const
    {
        for (const auto& found : examine(place.paths))
            if (found.subject == subject) {
                EXPECT_EQ(found.remedy.empty(), found.rank == Rank::ok) << subject;
                return rankName(found.rank) + " " + found.text;
            }
        return "none";
    }
    void putFile(const std::string& path, const std::string& text) const
    {
        fs::create_directories(fs::path(path).parent_path());
        Kest::Test::writeFile(path, text);
    }
    const std::string settings = place.paths.settingsFile();
};

TEST_F(Doctor, FindsWhatIsWrongWithTheHost)
{
    EXPECT_EQ(finding("session segment"), "none");
    auto& raw = place.startHost();
    EXPECT_THAT(finding("host"), HasSubstr("ok process " + std::to_string(getpid()) + ", 64 bit"));
    EXPECT_THAT(finding("session segment"), HasSubstr("1 attached"));
    EXPECT_THAT(finding("agent's record"), HasSubstr("ok slot 3"));
    std::memset(raw.bytes() + agent(0), 0, 65);
    EXPECT_THAT(finding("agent's record"), HasSubstr("wrong"));
    place.stopHost();
    place.startHost(0);
    EXPECT_THAT(finding("host"), HasSubstr("version word is not published yet"));
    place.publish(32);
    EXPECT_THAT(finding("host"), HasSubstr("wrong runs in 32 bit"));
    EXPECT_THAT(finding("session marker"), HasSubstr("ok"));
    Kest::Test::writeFile(marker, "data");
    EXPECT_THAT(finding("session marker"), HasSubstr("note"));
    fs::rename(marker, marker + ".away"); // while the host runs
    EXPECT_THAT(finding("host"), HasSubstr("wrong"));
    fs::create_symlink("/dev/null", marker);
    EXPECT_THAT(finding("session marker"), HasSubstr("is a link"));
    fs::rename(marker + ".away", marker);
    place.stopHost();
    const RawSegment small(place.paths.sessionSegment, 100);
    EXPECT_THAT(finding("session segment"), HasSubstr("wrong 100 bytes of 3458217"));
}

TEST_F(Doctor, FindsTheAgentAndWhoReadsItsPipe)
{
    const auto& fifo = place.paths.encodingProgressFifo;
    EXPECT_THAT(finding("agent"), HasSubstr("note"));
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("ok none"));
    EXPECT_FALSE(fs::exists(place.paths.settingsFolder)) << "looking for the lock has made it";
    putFile(fifo, "percentage");
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("note"));

    const Kest::Settings::AgentLock lock(place.paths.settingsFolder);
    EXPECT_THAT(finding("agent"), HasSubstr("ok process " + std::to_string(getpid()) + " (inspect_test)"));
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("wrong"));
    fs::remove(fifo);
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("wrong the agent runs, but there is no"));
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("nobody reads"));
    const int pathOnly = open(fifo.c_str(), O_PATH | O_CLOEXEC);
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("nobody reads"));
    close(pathOnly);
    const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("note"));
    chmod(fifo.c_str(), 0666);
    const int writer = open(fifo.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("read by process " + std::to_string(getpid())));
    close(reader);
    EXPECT_THAT(finding("encoders' pipe"), HasSubstr("nobody reads")) << "a writing end reads nothing";
    close(writer);
}

TEST_F(Doctor, FindsWhatIsWrongWithFiles)
{
    EXPECT_THAT(finding("settings file"), HasSubstr("ok none yet"));
    putFile(settings, "<PROPERTIES><VALUE name=\"a");
    EXPECT_THAT(finding("settings file"), HasSubstr("wrong"));
    putFile(settings, "<PROPERTIES/>");
    EXPECT_THAT(finding("settings file"), HasSubstr("13 bytes"));
    putFile(settings + ".bad", "");
    EXPECT_THAT(finding("settings file"), HasSubstr("note"));
    fs::remove(settings);
    fs::create_directory(settings);
    EXPECT_THAT(finding("settings file"), HasSubstr("wrong"));

    EXPECT_THAT(finding("facilities"), HasSubstr("note none"));
    fs::create_directories(place.paths.facilitiesFolder + "/Studio A");
    EXPECT_THAT(finding("facilities"), HasSubstr("ok 1 in"));
    fs::remove_all(place.paths.facilitiesFolder);
    putFile(place.paths.facilitiesFolder, "");
    EXPECT_THAT(finding("facilities"), HasSubstr("wrong"));

    putFile(place.paths.lastUserMarker, "ada\nsecond line");
    EXPECT_EQ(finding("last user"), "ok ada");
    fs::remove(place.paths.lastUserMarker);
    fs::create_symlink(settings, place.paths.lastUserMarker);
    EXPECT_THAT(finding("last user"), HasSubstr("wrong"));
}

} // namespace
} // namespace KestInspect
