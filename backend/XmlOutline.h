// What XML says, without the form in which it is written.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Settings {

/// Names and values of a document in their order, comparable with `==`.
class XmlOutline {
public:
    void beginElement(std::string_view tag);
    void addAttribute(std::string_view name, std::string_view value);
    /// Adds a piece of text; neighbouring pieces are one text. Blanks, tabs and line ends do not count: XML
    /// readers differ in them.
    void addText(std::string_view text);
    void endElement();

    bool operator==(const XmlOutline&) const = default;

private:
    std::string content;
};

struct XmlDocumentText {
    std::string root;           // its tag
    std::size_t rootTagEnd = 0; // the byte behind the root's start tag
    XmlOutline outline;
};

/// Reads XML as the standard has it. Returns nullopt where it is not well-formed, has a document type or a
/// processing instruction, or nests deeper than 16. An unknown encoding is taken for UTF-8. Any thread.
std::optional<XmlDocumentText> readXml(std::string_view text);

} // namespace Kest::Settings
