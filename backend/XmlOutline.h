// The content of an XML document without its formatting, for comparisons.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Settings {

/// Contains the names, attributes and texts of a document; call the functions in the order of the document.
/// Blanks, tabs and line ends in texts and attribute values are left out, because XML parsers treat them
/// differently. Compare two outlines with `==`.
class XmlOutline {
public:
    void beginElement(std::string_view tag);
    void addAttribute(std::string_view name, std::string_view value);
    /// Adds text. The texts of successive calls are joined.
    void addText(std::string_view text);
    void endElement();

    bool operator==(const XmlOutline&) const = default;

private:
    std::string content;
};

struct XmlDocumentText {
    std::string root;           // the tag of the root element
    std::size_t rootTagEnd = 0; // index of the byte after the root's start tag
    XmlOutline outline;
};

/// Parses XML. Returns nullopt if `text` is not well-formed, contains a document type or a processing
/// instruction, or is nested deeper than 16 levels. If the declared encoding is unknown, reads `text` as
/// UTF-8. Any thread.
std::optional<XmlDocumentText> readXml(std::string_view text);

} // namespace Kest::Settings
