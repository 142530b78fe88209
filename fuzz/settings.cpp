// Settings files of any bytes: what the check accepts, the store's parser reads and writes without harm and
// as an XML parser does. And values of any text: what may be written is read as what it means.
#include "backend/SettingsFileCheck.h"
#include "backend/XmlOutline.h"
#include "fuzz/Input.h"
#include "text/Utf8.h"

#include <algorithm>

namespace {

using namespace Kest::Settings;
using Kest::Fuzz::require;

// Written once, values have the form that they keep.
void checkSave(const juce::StringPairArray& values)
{
    if (!std::ranges::all_of(values.getAllValues(), canBeWritten))
        return;
    const auto text = settingsText(values);
    auto kept = readSettingsText(text);
    if (!kept) { // too large, or with a character that XML cannot contain
        require(!readXml(text) || text.size() > kMaxSettingsBytes);
        return;
    }
    const auto& again = kept->getAllProperties();
    require(again.size() == values.size());
    require(std::ranges::all_of(again.getAllValues(), canBeWritten));
    auto last = readSettingsText(settingsText(again));
    require(last && last->getAllProperties() == again);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (auto values = readSettingsText(text)) {
        const auto document = readXml(text);
        require(document && document->root == "PROPERTIES");
        checkSave(values->getAllProperties());
    }
    if (Kest::Text::isUtf8(text)) {
        juce::StringPairArray one(false);
        one.set("value", juce::String::fromUTF8(text.c_str()));
        checkSave(one);
    }
    return 0;
}
