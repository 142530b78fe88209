// Settings files of any bytes: what the check lets pass, the store's parser reads without harm and as
// settings.
#include "backend/SettingsFileCheck.h"
#include "fuzz/Input.h"

#include <juce_core/juce_core.h>

namespace {

/// The bytes as the store gets them from a file.
struct Source : juce::InputSource {
    explicit Source(const std::string& ofText) : text(ofText) {}
    juce::InputStream* createInputStream() override
    {
        return new juce::MemoryInputStream(text.data(), text.size(), false);
    }
    juce::InputStream* createInputStreamFor(const juce::String&) override { return nullptr; }
    juce::int64 hashCode() const override { return 0; }

    const std::string& text;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using Kest::Fuzz::require;
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (!Kest::Settings::isSettingsText(text))
        return 0;
    juce::XmlDocument document{juce::String()};
    document.setInputSource(new Source(text));
    const auto root = document.getDocumentElementIfTagMatches("PROPERTIES");
    require(root != nullptr, "what passes is a settings file");
    for (const auto* value : root->getChildIterator())
        require(value->hasTagName("VALUE") && value->hasAttribute("name") && value->hasAttribute("val"),
                "and holds settings alone");
    return 0;
}
