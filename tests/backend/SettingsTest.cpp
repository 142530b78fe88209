// The user's choices: in the settings file first, then in their slot of the host's session.
#include "backend/SettingsFileCheck.h"
#include "tests/backend/BackendFixture.h"

namespace {

std::function<void()> beforeRename;

} // namespace

// The settings file gets into its place by a rename: this is the moment at which a choice is in the file.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the library's are reserved names
extern "C" int rename(const char* from, const char* to) noexcept(noexcept(rename(from, to)))
{
    if (beforeRename)
        beforeRename();
    return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;
using Kest::Settings::Backend;
using testing::HasSubstr;

struct Choice {
    std::string key;
    std::size_t byte; // in the agent's record
    int chosen;
    int stored;
    std::function<void(Backend&, int)> set;
    std::function<int(const Backend&)> get;

    std::string row() const { return "<VALUE name=\"" + key + "\" val=\"" + std::to_string(stored) + "\"/>"; }
};

// clang-format off
const Choice kChoices[] = {
    {"SoloMode", 160, 7, 7, &Backend::setSoloMode, &Backend::getSoloMode},
    {"HdxAuxTrackDelaySetting", 272, 2, 2, &Backend::setHdxAuxTrackDelay, &Backend::getHdxAuxTrackDelay},
    {"DAWLinkControlSetting", 276, 1, 1, &Backend::setDAW_LinkControl, &Backend::getDAW_LinkControl},
    {"defaultPannerObjects", 292, 1, 1, &Backend::setDefaultPannerObjects, &Backend::getDefaultPannerObjects},
    {"defaultPannerObjects", 292, 0, 0, &Backend::setDefaultPannerObjects, &Backend::getDefaultPannerObjects},
    {"LatencyCompensationControlSetting", 304, -3, -3,
     &Backend::setLatencyCompensationControl, &Backend::getLatencyCompensationControl},
    {"PhysMonConfig", 308, 4, 16, &Backend::setPhysMonConfig, &Backend::getPhysMonConfig},
};
// clang-format on

class SettingsStore : public BackendTest {
protected:
    void TearDown() override { beforeRename = nullptr; }

    /// Makes every choice and finds it in the file and nowhere else.
    void expectOnlyInFile()
    {
        fs::remove(file);
        const auto before = place.session ? sessionBytes() : "";
        for (const auto& choice : kChoices) {
            choice.set(*backend, choice.chosen);
            EXPECT_THAT(readFile(file), HasSubstr(choice.row()));
        }
        backend->setFacility("Studio B");
        EXPECT_THAT(readFile(file), HasSubstr("\"Studio B\""));
        EXPECT_TRUE(before == (place.session ? sessionBytes() : "")) << "the session was written";
    }

    const std::string file = place.paths.settingsFile();
};

TEST_F(SettingsStore, WritesEachChoiceIntoTheFileAndThenIntoItsSlotAlone)
{
    auto& session = place.startHost();
    start();
    for (const auto& choice : kChoices) {
        const auto slot = agentByte(choice.byte);
        session.putFloat(slot, -99);
        auto wanted = sessionBytes();
        const auto value = static_cast<float>(choice.stored);
        std::memcpy(&wanted[slot], &value, sizeof value);
        float slotAtSaving = 0;
        beforeRename = [&] { slotAtSaving = session.floatAt(slot); };

        choice.set(*backend, choice.chosen);
        EXPECT_EQ(slotAtSaving, -99) << choice.key << " was not saved before the host knew";
        EXPECT_THAT(readFile(file), HasSubstr(choice.row()));
        EXPECT_TRUE(sessionBytes() == wanted) << choice.key;
        start();
        EXPECT_EQ(choice.get(*backend), choice.chosen) << choice.key;
    }
    const auto before = sessionBytes();
    for (const int none : {-1, 12, 26})
        backend->setPhysMonConfig(none);
    EXPECT_TRUE(sessionBytes() == before);
    EXPECT_EQ(backend->getPhysMonConfig(), 4);
}

TEST_F(SettingsStore, WritesOnlyTheFileUntilAHostHasARecordForIt)
{
    start();
    expectOnlyInFile();
    place.startHost().putText(agentByte(0), "AnotherAgent");
    expectOnlyInFile();
    for (const int mode : {1, 7}) { // and again after a restart of the host
        place.stopHost();
        place.startHost();
        backend->setSoloMode(mode);
        EXPECT_EQ(place.session->floatAt(agentByte(160)), static_cast<float>(mode));
    }
}

TEST_F(SettingsStore, WritesOnlyTheFileWithAHostOf32Bits)
{
    place.startHost(32).putBus(10, "bus-1", "Dialog");
    const auto threads = threadCount();
    testing::internal::CaptureStdout();
    start();
    EXPECT_EQ(threadCount(), threads + 1) << "the reader of the pipe, and no monitor";
    backend->setDefaultKestBus("Dialog");
    EXPECT_EQ(place.session->textAt(3458152), "");
    EXPECT_EQ(occurrences(testing::internal::GetCapturedStdout(),
                          "K3DHost running in wrong architecture (32 bits : should be 64 )"),
              1);
    expectOnlyInFile();
    EXPECT_FALSE(fs::exists(place.paths.lastUserMarker));
}

TEST_F(SettingsStore, HasDefaultsForAFreshUser)
{
    start();
    EXPECT_EQ(backend->getSoloMode(), 0);
    EXPECT_EQ(backend->getHdxAuxTrackDelay(), 0);
    EXPECT_FALSE(backend->getDefaultPannerObjects());
    EXPECT_EQ(backend->getDAW_LinkControl(), 0);
    EXPECT_EQ(backend->getLatencyCompensationControl(), 1);
    EXPECT_EQ(backend->getPhysMonConfig(), 11); // layout 26
    EXPECT_EQ(backend->getFacility(), "Standard-Surround");
    EXPECT_TRUE(fs::is_empty(place.paths.settingsFolder)) << "asking saves nothing";

    EXPECT_TRUE(backend->getFacilityList().isEmpty());
    fs::create_directories(place.paths.facilitiesFolder + "/.Studio/inner");
    writeFile(place.paths.facilitiesFolder + "/notes.txt", "");
    EXPECT_EQ(backend->getFacilityList().joinIntoString("|"), ".Studio");
}

TEST_F(SettingsStore, PublishesTheFacilitysBytes)
{
    auto& session = place.startHost();
    start();
    const auto umlauts = juce::String::repeatedString(juce::CharPointer_UTF8("\xC3\xBC"), 100).toStdString();
    int slot = 0;
    for (const auto& name : {"St" + umlauts.substr(0, 2) + "dio A", std::string(130, 'x'), umlauts}) {
        backend->setFacility(juce::String::fromUTF8(name.c_str()));
        slot = 1 - slot;
        EXPECT_EQ(session.intAt(agentByte(656 + 264)), slot);
        EXPECT_EQ(session.textAt(agentByte(656 + 8 + 128 * static_cast<std::size_t>(slot))),
                  name.substr(0, 127));
        start();
        EXPECT_EQ(backend->getFacility().toStdString(), name);
    }
}

TEST_F(SettingsStore, KeepsWhatItHasWhenATextLooksLikeMarkup)
{
    start();
    backend->setSoloMode(7);
    backend->setFacility("Studio \"A\" & <B>");
    testing::internal::CaptureStderr();
    backend->setFacility(" <Studio>A</Studio>");
    start();
    EXPECT_EQ(backend->getFacility(), "Studio \"A\" & <B>");
    EXPECT_EQ(backend->getSoloMode(), 7);
    EXPECT_EQ(occurrences(testing::internal::GetCapturedStderr(), "<ERRO>"), 1);
}

TEST_F(SettingsStore, SetsADamagedFileAsideBeforeAnythingIsSaved)
{
    start();
    backend->setSoloMode(7);
    const auto whole = readFile(file);
    for (const auto& damaged :
         {std::string(), whole.substr(0, whole.find("val=")), whole.substr(0, whole.size() - 4),
          std::string(whole).replace(whole.find('7'), 1, 1, '\0')}) {
        writeFile(file, damaged);
        start();
        testing::internal::CaptureStderr();
        backend->setDAW_LinkControl(1);
        EXPECT_EQ(occurrences(testing::internal::GetCapturedStderr(), file + " is damaged"), 1) << damaged;
        EXPECT_EQ(readFile(file + ".bad"), damaged);
        EXPECT_EQ(backend->getDAW_LinkControl(), 1);
        EXPECT_EQ(backend->getSoloMode(), 0);
    }
}

TEST_F(SettingsStore, TakesAFileThatWasEditedByHandForWell)
{
    const std::string row = R"(<VALUE name="SoloMode" val="7"/>)";
    const std::string header = R"(<?xml version="1.0" encoding="UTF-8"?>)";
    for (const auto& body :
         {row, "\n<!-- solo -->\n" + row, std::string("<VALUE name='SoloMode' val='7'></VALUE>")}) {
        const auto text = "<PROPERTIES>" + body + "</PROPERTIES>";
        EXPECT_TRUE(Kest::Settings::isSettingsText(text)) << text;
        EXPECT_TRUE(Kest::Settings::isSettingsText(header + text)) << text;
    }
}

} // namespace
