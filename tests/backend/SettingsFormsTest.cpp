// Settings files as other programs and users write them, and damaged ones.
#include "backend/FileText.h"
#include "backend/SettingsFileCheck.h"
#include "tests/backend/BackendFixture.h"

namespace {

using namespace Kest::Test;

const auto kSolo = "<VALUE name=\"SoloMode\" val=\"1\"/>"s;
const auto kOther = "<VALUE name=\"Other\" val=\"Caf\xc3\xa9 &amp; &lt;B&gt;\"/>"s;
const auto kBoth = kSolo + kOther;

std::string root(const std::string& content) { return "<PROPERTIES>" + content + "</PROPERTIES>"; }

std::string other(const std::string& value) { return "<VALUE name='Other' val='" + value + "'/>"; }

std::string declared(const std::string& encoding, const std::string& text)
{
    return "<?xml version='1.0' encoding='" + encoding + "'?>\n" + text;
}

std::string utf16(const std::string& ascii)
{
    std::string wide = "\xff\xfe";
    for (const char c : ascii)
        wide += {c, '\0'};
    return wide;
}

std::string nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text.insert(0, "<a>").append("</a>");
    return text;
}

struct Form {
    const char* name;
    std::string text;
    std::string other = "Caf\xc3\xa9 & <B>"; // the value of a key that the agent does not know
};

const Form kForms[] = {
    {"as xmllint writes it",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + root("\n  " + kBoth + "\n") + "\n"},
    {"as Python's ElementTree writes it",
     declared("utf-8", root("<VALUE name=\"SoloMode\" val=\"1\" />" + kOther))},
    {"val before name", root("<VALUE val=\"1\" name=\"SoloMode\"/>" + kOther)},
    {"single quotes", root("<VALUE name='SoloMode' val='1'/>" + kOther)},
    {"encoding that no standard has", declared("utf8", root(kBoth))},
    {"encoding of its bytes, all ASCII",
     declared("us-ascii", root(kSolo + other("Caf&#233; &amp; &lt;B&gt;")))},
    {"standalone", declared("UTF-8' standalone='yes", root(kBoth))},
    {"no declaration", root(kBoth)},
    {"byte order mark", "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + root(kBoth)},
    {"two bytes a character", utf16(root(kSolo + other("Coffee"))), "Coffee"},
    {"other attributes", "<PROPERTIES version=\"2\"><VALUE name=\"SoloMode\" type=\"int\" val=\"1\"/>" +
                             kOther + "</PROPERTIES>"},
    {"another element", root("<META><a b='c'>text</a></META>" + kBoth)},
    {"text beside the values", root("mine: " + kBoth)},
    {"value in lower case", root("<value name=\"SoloMode\" val=\"1\"/>" + kOther)},
    {"opened and closed", root("<VALUE name=\"SoloMode\" val=\"1\"></VALUE>" + kOther)},
    {"comments",
     "<!-- mine -->\n\n" + root("\n\n<!-- 1 --> " + kSolo + " <!-- 2\n-->" + kOther + "\n") + "<!-- end -->"},
    {"tabs and line ends", "<PROPERTIES\n>\r\n\t<VALUE\r\n\tname = \"SoloMode\"\n\tval = \"1\"\n/>" + kOther +
                               "\r\n</PROPERTIES >"},
    {"character references",
     root("<VALUE name=\"Solo&#77;ode\" val=\"&#x31;\"/>" + other("Caf&#xE9; &#38; &#60;B&#62;"))},
    {"a key twice, the last one counts", root("<VALUE name=\"SoloMode\" val=\"0\"/>" + kBoth)},
    {"value as text", root("<VALUE name=\"SoloMode\">1</VALUE>" + kOther)},
    {"value as CDATA", root("<VALUE name=\"SoloMode\"><![CDATA[1]]></VALUE>" + kOther)},
    {"value with a line end", root(kSolo + other("a\nb")), "a\nb"},
    {"value that is XML",
     root(kSolo + "\n<VALUE name=\"Other\">\n  <a b=\"&lt;\">\n    <c/>x &amp; y</a>\n</VALUE>"),
     "<a b=\"&lt;\"><c/>x &amp; y</a>"},
    {"value that is XML, as an attribute", root(kSolo + other("&lt;a  b=\"1\"/&gt;")), "<a b=\"1\"/>"},
    {"value that is XML with text", root("<VALUE name=\"Other\"><p>a <b c=\"d\">e</b>.</p></VALUE>" + kSolo),
     "<p>a <b c=\"d\">e</b>.</p>"},
};

const Form kDamaged[] = {
    {"empty", ""},
    {"cut", root(kBoth).substr(0, 60)},
    {"text behind its end", root(kBoth) + "x"},
    {"other root", "<SETTINGS>" + kBoth + "</SETTINGS>"},
    {"root in lower case", "<properties>" + kBoth + "</properties>"},
    {"unknown entity", root(other("&b;"))},
    {"entity that XML does not have", root(other("&AMP;"))},
    {"character that XML does not have", root(other("&#1;"))},
    {"key twice in an element", root("<VALUE name=\"a\" name=\"b\" val=\"1\"/>")},
    {"document type", "<!DOCTYPE PROPERTIES [<!ENTITY b SYSTEM \"c\">]>" + root(kBoth)},
    {"processing instruction", root("<?a?>" + kBoth)},
    {"processing instruction on which the store hangs", root("<?a?>text")},
    {"processing instruction at the end", root(kBoth) + "<?a?>"},
    {"too deep", root(kBoth + nested(16))},
    {"too large", root(kBoth) + std::string(70000, ' ')},
    {"a root that the store does not find", "<!--" + std::string(9000, ' ') + "-->" + root(kBoth)},
    {"not UTF-8", root(other("\xe9"))},
    {"Latin-1", declared("ISO-8859-1", root(other("\xe9")))},
    {"Latin-1 that the store reads as UTF-8", declared("ISO-8859-1", root(other("\xc3\xa9")))},
    {"a reference that the store reads otherwise", root(other("&#x0000000031;"))},
    {"elements within text on which the store crashes",
     root("<VALUE name=\"Other\"><a>b<c><d/></c></a></VALUE>" + kSolo)},
    {"a cut character of two bytes each", utf16(root(kSolo)) + "x"},
    {"zero", root(kSolo + "\0"s)},
};

class SettingsForms : public BackendTest {
protected:
    void startWith(const Form& form)
    {
        backend.reset();
        fs::remove_all(place.paths.settingsFolder);
        start();
        writeFile(file, form.text);
        captureErrors();
    }
};

// All releases of the store write the same bytes: users exchange files between systems.
TEST_F(SettingsForms, AreWrittenInOneForm)
{
    start();
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

TEST_F(SettingsForms, EveryFormOfAWholeFileIsReadAndKeptWhenAChoiceIsSaved)
{
    for (const auto& form : kForms) {
        SCOPED_TRACE(form.name);
        startWith(form);
        EXPECT_EQ(backend->getSoloMode(), 1);
        backend->setDAW_LinkControl(1);
        backend->setDAW_LinkControl(0);
        start();
        EXPECT_EQ(backend->getSoloMode(), 1);
        EXPECT_EQ(backend->getDAW_LinkControl(), 0);
        EXPECT_EQ(Kest::Settings::readSettingsText(readFile(file)).value().getValue("Other"),
                  juce::String::fromUTF8(form.other.c_str()));
        EXPECT_EQ(capturedErrors(), "");
        EXPECT_FALSE(fs::exists(file + ".bad"));
    }
}

TEST_F(SettingsForms, DamagedFilesAreSetAside)
{
    for (const auto& form : kDamaged) {
        SCOPED_TRACE(form.name);
        startWith(form);
        backend->setDAW_LinkControl(1);
        EXPECT_THAT(capturedErrors(), HasSubstr("is damaged: set aside as .bad"));
        EXPECT_EQ(readFile(file + ".bad"), form.text);
    }
}

// The store cuts this value when it writes it, and would hang on the other one.
TEST_F(SettingsForms, AValueThatTheStoreCannotWriteKeepsTheFileFromBeingSaved)
{
    for (const auto* value : {"&lt;a/>b", "&lt;a>&lt;?b?>c"}) {
        const auto text = root(other(value) + kSolo);
        startWith({value, text});
        backend->setDAW_LinkControl(1);
        EXPECT_THAT(capturedErrors(),
                    HasSubstr("not saved (the store cannot write the value of Other): DAW Link Control; "));
        EXPECT_EQ(readFile(file), text);
        EXPECT_EQ(backend->getSoloMode(), 1);
    }
}

TEST_F(SettingsForms, AFacilityIsKeptUnlessTheFileCannotContainIt)
{
    const auto& session = place.startHost();
    start();
    int count = 0; // of texts in the host's record, which has two buffers for them
    for (const auto* name : {"<Studio>", "<Studio & Sons>", "<Studio> B", "<a/>", "a<b>&\"' \xc3\xa8\n"}) {
        backend->setFacility(juce::String::fromUTF8(name));
        EXPECT_EQ(session.textAt(agentByte(656) + 8 + (count++ % 2 == 0 ? 128 : 0)), name);
        start();
        EXPECT_EQ(backend->getFacility(), juce::String::fromUTF8(name));
    }
    const auto before = sessionBytes();
    const auto kept = backend->getFacility();
    const auto whole = readFile(file);
    for (const auto& name : {"<a />"s, "<Studio"s, "< 3"s, " <b"s, "<a/>b"s, "<a><?x?>b"s, "<a b=\"&#x"s,
                             "a\x01"s, std::string(70000, 'x'), nested(40), nested(15)}) {
        captureErrors();
        backend->setFacility(name);
        EXPECT_THAT(capturedErrors(), HasSubstr("not saved (the file cannot contain this text): "
                                                "Monitoring Facility; the choice before stays in effect; "));
        EXPECT_EQ(backend->getFacility(), kept);
        EXPECT_EQ(readFile(file), whole);
        EXPECT_TRUE(sessionBytes() == before) << "the host got it: " << name;
    }
}

} // namespace
