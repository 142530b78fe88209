// Settings files of any bytes: what the check accepts, the store's parser reads and writes without harm and
// as an XML parser does. And values of any text: what may be written is read as what it means.
#include "backend/SettingsFileCheck.h"
#include "backend/XmlOutline.h"
#include "fuzz/Input.h"

#include <algorithm>

namespace {

using namespace Kest::Settings;
using Kest::Fuzz::require;

bool areWritable(const juce::StringPairArray& values)
{
    return std::ranges::all_of(values.getAllValues(), [](const auto& value) { return canBeWritten(value); });
}

// Written once, a value has the form that it keeps.
void checkSave(const juce::StringPairArray& values)
{
    if (!areWritable(values))
        return;
    const auto text = settingsText(values);
    auto kept = readSettingsText(text);
    if (!kept) { // too large, or with a character that XML cannot contain
        require(!readXml(text) || text.size() > kLongestSettings, "what the store writes is read again");
        return;
    }
    require(kept->getAllProperties().size() == values.size(), "every value is kept");
    require(areWritable(kept->getAllProperties()), "and can be written again");
    const auto again = readSettingsText(settingsText(kept->getAllProperties()));
    require(again && juce::PropertySet(*again).getAllProperties() == kept->getAllProperties(),
            "in the same form");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (auto values = readSettingsText(text)) {
        const auto document = readXml(text);
        require(document && document->root == "PROPERTIES", "what passes is a settings file");
        checkSave(values->getAllProperties());
    }
    if (juce::CharPointer_UTF8::isValidString(text.data(), static_cast<int>(text.size()))) {
        juce::StringPairArray one(false);
        one.set("value", juce::String::fromUTF8(text.c_str()));
        checkSave(one);
    }
    return 0;
}
