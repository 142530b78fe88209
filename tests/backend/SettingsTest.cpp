// The user's choices: in the settings file first, then in the agent's record of the host's session.
#include "tests/backend/BackendFixture.h"

#include <fcntl.h>

namespace {

std::function<void()> beforeRename;
std::string diskCalls; // the renames and flushes so far, in order

} // namespace

// A rename puts the settings file at its path: then a choice is in the file.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the library's are reserved names
extern "C" int rename(const char* from, const char* to) noexcept(noexcept(rename(from, to)))
{
    if (beforeRename)
        beforeRename();
    diskCalls += "rename " + std::filesystem::path(to).extension().string() + ", ";
    return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

extern "C" int fsync(int file)
{
    struct stat status {};
    fstat(file, &status);
    diskCalls += S_ISDIR(status.st_mode) ? "flush folder, " : "flush file, ";
    return 0; // tests need not wait for the disk
}

namespace {

using namespace Kest::Test;
using Kest::Settings::Backend;

struct Choice {
    std::string key;
    std::size_t byte; // in the agent's record
    int initial;
    int chosen;
    int stored;
    std::function<void(Backend&, int)> set;
    std::function<int(const Backend&)> get;

    std::string row() const { return "<VALUE name=\"" + key + "\" val=\"" + std::to_string(stored) + "\"/>"; }
};

// clang-format off
const Choice kChoices[] = {
    {"SoloMode", 160, 0, 7, 7, &Backend::setSoloMode, &Backend::getSoloMode},
    {"HdxAuxTrackDelaySetting", 272, 0, 2, 2, &Backend::setHdxAuxTrackDelay, &Backend::getHdxAuxTrackDelay},
    {"DAWLinkControlSetting", 276, 0, 1, 1, &Backend::setDAW_LinkControl, &Backend::getDAW_LinkControl},
    {"defaultPannerObjects", 292, 0, 1, 1, &Backend::setDefaultPannerObjects, &Backend::getDefaultPannerObjects},
    {"LatencyCompensationControlSetting", 304, 1, -3, -3,
     &Backend::setLatencyCompensationControl, &Backend::getLatencyCompensationControl},
    {"PhysMonConfig", 308, 11, 4, 16, &Backend::setPhysMonConfig, &Backend::getPhysMonConfig},
};
// clang-format on

class SettingsStore : public BackendTest {
protected:
    void TearDown() override { beforeRename = nullptr; }
};

TEST_F(SettingsStore, WritesEachChoiceIntoTheFileAndThenIntoItsParameterAlone)
{
    auto& session = place.startHost();
    start();
    for (const auto& choice : kChoices) {
        SCOPED_TRACE(choice.key);
        const auto slot = agentByte(choice.byte);
        session.putFloat(slot, -99);
        auto wanted = sessionBytes();
        const auto value = static_cast<float>(choice.stored);
        std::memcpy(&wanted[slot], &value, sizeof value);
        EXPECT_EQ(choice.get(*backend), choice.initial);
        std::optional<float> slotAtSaving; // of the first rename: the backup comes later
        beforeRename = [&] { slotAtSaving = slotAtSaving.value_or(session.floatAt(slot)); };

        choice.set(*backend, choice.chosen);
        EXPECT_EQ(slotAtSaving, -99) << "not saved before the host got it";
        EXPECT_THAT(readFile(file), HasSubstr(choice.row()));
        EXPECT_TRUE(sessionBytes() == wanted);
        start();
        EXPECT_EQ(choice.get(*backend), choice.chosen);
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
    for (const bool hasHost : {false, true}) {
        if (hasHost)
            place.startHost().putText(agentByte(0), "AnotherAgent");
        const auto before = hasHost ? sessionBytes() : "";
        fs::remove(file);
        for (const auto& choice : kChoices) {
            choice.set(*backend, choice.chosen);
            EXPECT_THAT(readFile(file), HasSubstr(choice.row()));
        }
        backend->setFacility("Studio B");
        EXPECT_THAT(readFile(file), HasSubstr("\"Studio B\""));
        EXPECT_TRUE(before == (hasHost ? sessionBytes() : "")) << "the session was written";
    }
    for (const int mode : {1, 7}) { // and again after a restart of the host
        place.startHost();
        backend->setSoloMode(mode);
        EXPECT_EQ(place.session->floatAt(agentByte(160)), static_cast<float>(mode));
    }
}

TEST_F(SettingsStore, SetsADamagedFileAsideAndUsesItsBackup)
{
    start();
    backend->setSoloMode(7);
    const auto whole = readFile(file);
    for (const auto& damaged : {""s, whole.substr(0, whole.find("val="))}) {
        writeFile(file, damaged);
        start();
        captureErrors();
        diskCalls.clear();
        EXPECT_EQ(backend->getSoloMode(), 7);
        EXPECT_EQ(diskCalls, "") << "a getter changes no file";
        backend->setDAW_LinkControl(1);
        EXPECT_THAT(capturedErrors(), HasSubstr(file + " is damaged"));
        EXPECT_EQ(readFile(file + ".bad"), damaged);
        EXPECT_EQ(backend->getDAW_LinkControl(), 1);
        EXPECT_EQ(backend->getSoloMode(), 7);
    }
    fs::remove(file + ".bad");
    fs::create_directory(file + ".bad");
    fs::remove(file + ".last");
    writeFile(file, "<PROPERTIES><VALUE");
    captureErrors();
    {
        start();
        const Backend::OneReport report(*backend); // of the choices
        for (int i = 0; i < 3; ++i)
            backend->setSoloMode(i);
    }
    const auto logged = capturedErrors();
    EXPECT_EQ(std::ranges::count(logged, '\n'), 2) << logged;
    EXPECT_THAT(logged, HasSubstr("is damaged and cannot be set aside as .bad: Is a directory"));
}

TEST_F(SettingsStore, FlushesTheFolderAfterEachRename)
{
    start();
    diskCalls.clear();
    backend->setSoloMode(7);
    EXPECT_THAT(diskCalls,
                testing::EndsWith("rename .xml, flush file, flush folder, flush file, rename .last, "
                                  "flush folder, "));
}

TEST_F(SettingsStore, KeepsAChoiceThatCannotBeSavedUntilItCan)
{
    start();
    backend->setSoloMode(7);
    const auto whole = readFile(file);
    fs::remove(file);
    fs::create_directory(file); // exists, and cannot be read
    backend->setSoloMode(1);
    EXPECT_EQ(backend->getSoloMode(), 1);
    EXPECT_TRUE(fs::is_directory(file));

    fs::remove(file);
    writeFile(file, whole);
    backend->setDAW_LinkControl(1);
    EXPECT_THAT(readFile(file), HasSubstr("\"SoloMode\" val=\"1\""));
}

TEST_F(SettingsStore, WritesThroughALinkAndRemovesStaleFiles)
{
    const auto stale = place.folder / "dotfiles_temp1f.xml";
    fs::create_directories(place.paths.settingsFolder);
    fs::create_symlink("../dotfiles.xml", file);
    writeFile(stale, "<PROP");
    for (const int mode : {7, 1}) {
        start();
        backend->setSoloMode(mode);
        EXPECT_THAT(readFile(place.folder / "dotfiles.xml"),
                    HasSubstr("val=\"" + std::to_string(mode) + "\""));
        EXPECT_TRUE(fs::is_symlink(file));
    }
    EXPECT_FALSE(fs::exists(stale));
}

} // namespace
