#include "backend/SettingsFileCheck.h"

#include "backend/XmlOutline.h"
#include "text/Utf8.h"

#include <algorithm>
#include <memory>

namespace Kest::Settings {
namespace {

constexpr char kRoot[] = "PROPERTIES";
constexpr std::size_t kStoreReadsForRoot = 8192; // bytes; where they end within a tag, it reads beyond them

/// A file's bytes for the store's parser, which decodes those of a file otherwise than a text.
class FileBytes : public juce::InputSource {
public:
    explicit FileBytes(std::string_view ofFile) : bytes(ofFile) {}
    juce::InputStream* createInputStream() override
    {
        return new juce::MemoryInputStream(bytes.data(), bytes.size(), false);
    }
    juce::InputStream* createInputStreamFor(const juce::String&) override { return nullptr; }
    juce::int64 hashCode() const override { return 0; }

private:
    const std::string_view bytes;
};

std::string_view view(const juce::String& text) { return {text.toRawUTF8(), text.getNumBytesAsUTF8()}; }

void addTo(XmlOutline& outline, const juce::XmlElement& element)
{
    if (element.isTextElement())
        return outline.addText(view(element.getText()));
    outline.beginElement(view(element.getTagName()));
    for (int i = 0; i < element.getNumAttributes(); ++i)
        outline.addAttribute(view(element.getAttributeName(i)), view(element.getAttributeValue(i)));
    for (const auto* child : element.getChildIterator())
        addTo(outline, *child);
    outline.endElement();
}

bool means(const juce::XmlElement& element, const XmlOutline& outline)
{
    XmlOutline own;
    addTo(own, element);
    return own == outline;
}

bool hasElements(const juce::XmlElement& element)
{
    const auto children = element.getChildIterator();
    return std::any_of(children.begin(), children.end(), [](const auto* c) { return !c->isTextElement(); });
}

// The store crashes where it writes such XML in one line: there it begins lines within an element behind
// text.
bool crashesStore(const juce::XmlElement& element)
{
    bool isBehindText = false;
    for (const auto* child : element.getChildIterator()) {
        if (isBehindText && (child->getNumAttributes() > 1 || hasElements(*child)))
            return true;
        if (crashesStore(*child))
            return true;
        isBehindText = child->isTextElement();
    }
    return false;
}

bool isUtf16(std::string_view text) { return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"); }

// Text in which the store's decoder finds the end.
bool isDecodable(std::string_view text)
{
    if (isUtf16(text))
        return text.size() <= kStoreReadsForRoot; // it uses no more of it
    return text.find('\0') == std::string_view::npos && Text::isUtf8(text);
}

std::unique_ptr<juce::XmlElement> readAsStore(std::string_view text)
{
    if (text.size() > kLongestSettings || !isDecodable(text))
        return nullptr;
    const auto checked = readXml(text);
    if (!checked || checked->root != kRoot || checked->rootTagEnd > kStoreReadsForRoot)
        return nullptr;
    juce::XmlDocument document{juce::String()};
    document.setInputSource(new FileBytes(text));
    auto root = document.getDocumentElementIfTagMatches(kRoot);
    return root != nullptr && means(*root, checked->outline) ? std::move(root) : nullptr;
}

// What is in the element goes before its attribute: the store writes a value so that is XML itself.
juce::String valueIn(const juce::XmlElement& row)
{
    const auto* inside = row.getFirstChildElement();
    return inside == nullptr ? row.getStringAttribute("val")
                             : inside->toString(juce::XmlElement::TextFormat().singleLine().withoutHeader());
}

// Not well-formed, but without what the store's parser hangs on, or reads on behind the text's end.
bool isHarmless(std::string_view text)
{
    constexpr std::ptrdiff_t kMaxTags = 16;
    for (const auto* risk : {"<?", "<!", "&#"})
        if (text.find(risk) != std::string_view::npos)
            return false;
    return std::ranges::count(text, '<') <= kMaxTags;
}

} // namespace

std::optional<juce::PropertySet> readSettingsText(std::string_view text)
{
    const auto root = readAsStore(text);
    if (root == nullptr)
        return std::nullopt;
    juce::PropertySet values;
    for (const auto* row : root->getChildWithTagNameIterator("VALUE"))
        if (const auto& name = row->getStringAttribute("name"); name.isNotEmpty()) {
            if (const auto* inside = row->getFirstChildElement(); inside != nullptr && crashesStore(*inside))
                return std::nullopt;
            values.setValue(name, valueIn(*row));
        }
    return values;
}

bool canBeWritten(const juce::String& value)
{
    if (!value.trimStart().startsWithChar('<')) // the store's parser reads no further
        return true;
    const auto text = view(value);
    if (text.size() > kLongestSettings)
        return false;
    if (const auto checked = readXml(text)) {
        const auto element = juce::parseXML(value);
        return element != nullptr && means(*element, checked->outline) && !crashesStore(*element);
    }
    return isHarmless(text) && juce::parseXML(value) == nullptr;
}

std::string settingsText(const juce::StringPairArray& values)
{
    juce::XmlElement root(kRoot);
    for (const auto& key : values.getAllKeys()) {
        auto* row = root.createNewChildElement("VALUE");
        row->setAttribute("name", key);
        if (auto inside = juce::parseXML(values[key]))
            row->addChildElement(inside.release());
        else
            row->setAttribute("val", values[key]);
    }
    return root.toString().toStdString();
}

} // namespace Kest::Settings
