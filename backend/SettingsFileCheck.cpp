#include "backend/SettingsFileCheck.h"

#include "backend/XmlOutline.h"
#include "text/Utf8.h"

#include <algorithm>
#include <memory>

namespace Kest::Settings {
namespace {

constexpr char kRoot[] = "PROPERTIES";
constexpr std::size_t kStoreReadsForRoot = 8192; // bytes; if they end within a tag, it reads beyond them

/// Passes a file's bytes to the store's parser, which decodes a file differently from a text.
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

// The store crashes if it writes such XML in one line: it begins new lines in an element after text.
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

// Returns whether the store's decoder finds the end of the text.
bool isDecodable(std::string_view text)
{
    if (isUtf16(text))
        return text.size() <= kStoreReadsForRoot; // it ignores the rest
    return text.find('\0') == std::string_view::npos && Text::isUtf8(text);
}

std::unique_ptr<juce::XmlElement> readAsStore(std::string_view text)
{
    if (text.size() > kMaxSettingsBytes || !isDecodable(text))
        return nullptr;
    const auto checked = readXml(text);
    if (!checked || checked->root != kRoot || checked->rootTagEnd > kStoreReadsForRoot)
        return nullptr;
    juce::XmlDocument document{juce::String()};
    document.setInputSource(new FileBytes(text));
    auto root = document.getDocumentElementIfTagMatches(kRoot);
    return root != nullptr && means(*root, checked->outline) ? std::move(root) : nullptr;
}

// The element's content overrides its attribute: the store writes values that are XML as content.
juce::String valueIn(const juce::XmlElement& row)
{
    const auto* inside = row.getFirstChildElement();
    return inside == nullptr ? row.getStringAttribute("val")
                             : inside->toString(juce::XmlElement::TextFormat().singleLine().withoutHeader());
}

// Returns whether text that is not well-formed is safe for the store's parser, which hangs on some texts and
// reads beyond the end of others.
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
    if (!value.trimStart().startsWithChar('<')) // the store does not parse it
        return true;
    const auto text = view(value);
    if (text.size() > kMaxSettingsBytes)
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
