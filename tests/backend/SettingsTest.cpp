#include "backend/SettingsFileCheck.h"
#include "tests/backend/BackendFixture.h"

namespace {

std::function<void()> beforeRename;
std::string diskCalls; // the renames and flushes so far, in order
int failingFlush = 0;  // 1 for the next one

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
    return --failingFlush == 0 ? -1 : 0; // tests need not wait for the disk
}

namespace {

using namespace Kest::Test;
using Kest::Settings::Setting;
using Kest::Settings::setting;

// What is chosen for each parameter, and its byte in the agent's record.
const struct {
    const Setting& setting;
    std::size_t byte;
    int initial, chosen;
} kChoices[] = {
    {setting("SoloMode"), 160, 0, 7},
    {setting("HdxAuxTrackDelaySetting"), 272, 0, 2},
    {setting("DAWLinkControlSetting"), 276, 0, 1},
    {setting("defaultPannerObjects"), 292, 0, 1},
    {setting("LatencyCompensationControlSetting"), 304, 1, -3},
    {setting("PhysMonConfig"), 308, 26, 16},
};

std::string row(const Setting& setting, int value)
{
    return "<VALUE name=\""s + setting.key + "\" val=\"" + std::to_string(value) + "\"/>";
}

class SettingsStore : public BackendTest {
protected:
    SettingsStore() { start(); }
    ~SettingsStore() override { beforeRename = nullptr; }

    /// Starts with a settings file of this text, and nothing else in its folder.
    void startWith(const std::string& text)
    {
        fs::remove_all(system.paths.settingsFolder);
        start();
        writeFile(file, text);
    }
    std::string errorsOfAChoice() const
    {
        captureErrors();
        backend->setDAW_LinkControl(1);
        return capturedErrors();
    }
};

TEST_F(SettingsStore, WritesEachChoiceIntoTheFileAndThenIntoItsParameterAlone)
{
    auto& session = system.startHost();
    for (const auto& [setting, byte, initial, chosen] : kChoices) {
        SCOPED_TRACE(setting.key);
        const auto slot = agentByte(byte);
        session.put(slot, -99.0F);
        auto wanted = sessionBytes();
        const auto value = static_cast<float>(chosen);
        std::memcpy(&wanted[slot], &value, sizeof value);
        EXPECT_EQ(backend->value(setting), initial);
        std::optional<float> slotAtSaving; // of the first rename: the backup comes later
        beforeRename = [&] { slotAtSaving = slotAtSaving.value_or(session.at<float>(slot)); };
        diskCalls.clear();

        backend->setValue(setting, chosen);
        EXPECT_EQ(slotAtSaving, -99) << "not saved before the host got it";
        EXPECT_THAT(diskCalls, testing::EndsWith("rename .xml, flush file, flush folder, flush file, "
                                                 "rename .last, flush folder, "));
        EXPECT_THAT(readFile(file), HasSubstr(row(setting, chosen)));
        EXPECT_TRUE(sessionBytes() == wanted);
        start();
        EXPECT_EQ(backend->value(setting), chosen);
    }
    for (const int configuration : {4, -1, 12, 26}) // of which only the first exists
        backend->setPhysMonConfig(configuration);
    EXPECT_EQ(session.at<float>(agentByte(308)), 16);
    EXPECT_EQ(backend->getPhysMonConfig(), 4);
}

TEST_F(SettingsStore, WritesOnlyTheFileUntilAHostHasARecordForIt)
{
    for (const bool hasHost : {false, true}) {
        if (hasHost)
            system.startHost().putText(agentByte(0), "AnotherAgent");
        const auto before = hasHost ? sessionBytes() : "";
        for (const int mode : {7, 1}) {
            backend->setSoloMode(mode);
            EXPECT_THAT(readFile(file), HasSubstr(row(setting("SoloMode"), mode)));
        }
        EXPECT_TRUE(before == (hasHost ? sessionBytes() : "")) << "the session was written";
    }
    for (const int mode : {1, 7}) { // and again after a restart of the host
        system.startHost();
        backend->setSoloMode(mode);
        EXPECT_EQ(system.session->at<float>(agentByte(160)), static_cast<float>(mode));
    }
}

TEST_F(SettingsStore, UsesTheBackupOfADamagedFile)
{
    backend->setSoloMode(7);
    failingFlush = 4; // of a new backup
    backend->setSoloMode(1);
    EXPECT_THAT(readFile(file + ".last"), HasSubstr(row(setting("SoloMode"), 7)));
    backend->setSoloMode(7);
    for (const auto& damaged : {""s, readFile(file).substr(0, 80)}) {
        writeFile(file, damaged);
        start();
        diskCalls.clear();
        EXPECT_EQ(backend->getSoloMode(), 7);
        EXPECT_EQ(diskCalls, "") << "a getter changes no file";
        EXPECT_THAT(errorsOfAChoice(), HasSubstr(file + " is damaged"));
        EXPECT_TRUE(backend->getDAW_LinkControl() == 1 && backend->getSoloMode() == 7);
    }
}

TEST_F(SettingsStore, KeepsAChoiceThatCannotBeSavedUntilItCan)
{
    backend->setSoloMode(7);
    fs::rename(file, file + ".moved");
    writeFile(file, "<PROPERTIES><VALUE");
    fs::create_directory(file + ".bad");
    EXPECT_THAT(errorsOfAChoice(), HasSubstr("is damaged and cannot be renamed to .bad: Is a directory"));
    EXPECT_THAT(errorsOfAChoice(), testing::Not(HasSubstr("is damaged"))) << "once";
    fs::remove(file);
    fs::create_directory(file); // exists, and cannot be read
    backend->setSoloMode(1);
    EXPECT_EQ(backend->getSoloMode(), 1);
    EXPECT_TRUE(fs::is_directory(file));
    fs::remove(file);
    fs::rename(file + ".moved", file);
    backend->setDAW_LinkControl(1);
    EXPECT_THAT(readFile(file), HasSubstr("\"SoloMode\" val=\"1\""));
}

TEST_F(SettingsStore, WritesThroughALinkAndRemovesStaleFiles)
{
    const auto target = system.folder / "dotfiles.xml";
    const auto stale = system.folder / "dotfiles_temp1f.xml";
    fs::create_symlink("../dotfiles.xml", file);
    writeFile(stale, "<PROP");
    for (const int mode : {7, 1}) {
        start();
        backend->setSoloMode(mode);
        EXPECT_THAT(readFile(target), HasSubstr("val=\"" + std::to_string(mode) + "\""));
    }
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_FALSE(fs::exists(stale));
}

const auto kSolo = "<VALUE name=\"SoloMode\" val=\"1\"/>"s;

std::string root(const std::string& content) { return "<PROPERTIES>" + content + "</PROPERTIES>"; }
std::string other(const std::string& value) { return "<VALUE name='Other' val='" + value + "'/>"; }

std::string nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text.insert(0, "<a>").append("</a>");
    return text;
}

/// Returns the inputs of fuzz/settings whose names begin so.
std::vector<fs::path> inputs(const std::string& begin)
{
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(KEST_CORPORA "/settings"))
        if (entry.path().filename().string().starts_with(begin))
            found.push_back(entry.path());
    EXPECT_GT(found.size(), 20U);
    return found;
}

std::string valueOf(const std::string& key, const std::string& text)
{
    const auto values = Kest::Settings::readSettingsText(text);
    return values ? values->getValue(key).toStdString() : "no settings file";
}

// All releases of the store write the same bytes: users exchange files between systems.
TEST_F(SettingsStore, WritesOneForm)
{
    writeFile(file, root("<VALUE name=\"Other\" val=\"Caf\xc3\xa9 &amp; &lt;B&gt; &quot;'&#10;\"/>"
                         "<VALUE name=\"Nested\"><a b=\"c\"><d/>text</a></VALUE>"));
    backend->setSoloMode(1);
    backend->setFacility(juce::String::fromUTF8("<Studio> & S\xc3\xb6hne"));
    EXPECT_EQ(readFile(file), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n"
                              "<PROPERTIES>\r\n"
                              "  <VALUE name=\"Other\" val=\"Caf&#233; &amp; &lt;B&gt; &quot;'&#10;\"/>\r\n"
                              "  <VALUE name=\"Nested\">\r\n"
                              "    <a b=\"c\">\r\n"
                              "      <d/>text</a>\r\n"
                              "  </VALUE>\r\n"
                              "  <VALUE name=\"SoloMode\" val=\"1\"/>\r\n"
                              "  <VALUE name=\"Facility\" val=\"&lt;Studio&gt; &amp; S&#246;hne\"/>\r\n"
                              "</PROPERTIES>\r\n");
}

TEST_F(SettingsStore, ReadsAndKeepsEveryValidForm)
{
    for (const auto& input : inputs("valid_")) {
        SCOPED_TRACE(input);
        startWith(readFile(input));
        EXPECT_EQ(backend->getSoloMode(), 1);
        EXPECT_EQ(errorsOfAChoice(), "");
        EXPECT_EQ(valueOf("SoloMode", readFile(file)) + valueOf("DAWLinkControlSetting", readFile(file)),
                  "11");
        EXPECT_THAT(valueOf("Other", readFile(file)),
                    testing::AnyOf("Caf\xc3\xa9 & <B>", "Coffee", "a\nb", "<a b=\"1\"/>",
                                   "<a b=\"&lt;\"><c/>x &amp; y</a>", "<p>a <b c=\"d\">e</b>.</p>"));
    }
}

TEST_F(SettingsStore, QuarantinesEveryDamagedFile)
{
    for (const auto& input : inputs("damaged_")) {
        startWith(readFile(input));
        EXPECT_THAT(errorsOfAChoice(), HasSubstr("is damaged: renamed to .bad")) << input;
        EXPECT_EQ(readFile(file + ".bad"), readFile(input));
    }
}

// The store cuts this value when it writes it, and would hang on the other one.
TEST_F(SettingsStore, SavesNoFileWithAValueThatTheStoreCannotWrite)
{
    for (const auto* value : {"&lt;a/>b", "&lt;a>&lt;?b?>c"}) {
        const auto text = root(other(value) + kSolo);
        writeFile(file, text);
        EXPECT_THAT(errorsOfAChoice(),
                    HasSubstr("not saved (the store cannot write the value of Other): DAW Link Control; "));
        EXPECT_EQ(readFile(file), text);
        EXPECT_EQ(backend->getSoloMode(), 1);
    }
}

TEST_F(SettingsStore, ListsAFacilityWhoseNameIsNotUtf8)
{
    std::string halfWidthKatakana; // in Shift-JIS; as UTF-8 two bytes for a character of one
    for (int i = 0; i < 20; ++i)
        halfWidthKatakana += "\xC1\xAE";
    fs::create_directories(system.paths.facilitiesFolder + "/" + halfWidthKatakana);
    const auto names = backend->getFacilityList();
    ASSERT_EQ(names.size(), 1);
    EXPECT_EQ(names[0].length(), 40);
}

TEST_F(SettingsStore, KeepsAFacilityUnlessTheFileCannotContainIt)
{
    const auto& session = system.startHost();
    int count = 0; // of texts in the host's record, which has two buffers for them
    for (const auto* name : {"<Studio>", "<Studio & Sons>", "<Studio> B", "<a/>", "a<b>&\"' \xc3\xa8\n"}) {
        backend->setFacility(juce::String::fromUTF8(name));
        EXPECT_EQ(session.textAt(agentByte(656) + 8 + (count++ % 2 == 0 ? 128 : 0)), name);
        start();
        EXPECT_EQ(backend->getFacility(), juce::String::fromUTF8(name));
    }
    const auto before = sessionBytes() + readFile(file);
    const auto kept = backend->getFacility();
    for (const auto& name : {"<a />"s, "<Studio"s, "< 3"s, " <b"s, "<a/>b"s, "<a><?x?>b"s, "<a b=\"&#x"s,
                             "a\x01"s, std::string(70000, 'x'), nested(40), nested(15)}) {
        captureErrors();
        backend->setFacility(name);
        EXPECT_THAT(capturedErrors(),
                    HasSubstr("not saved (the file cannot contain this text): "
                              "Monitoring Facility; the previous choice stays in effect; "));
        EXPECT_EQ(backend->getFacility(), kept);
        EXPECT_TRUE(sessionBytes() + readFile(file) == before) << name;
    }
}

} // namespace
