// The content of XML without its formatting.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Settings {

/// Contains the names and values of a document in their order; compare with `==`.
class XmlOutline {
public:
    void beginElement(std::string_view tag);
    void addAttribute(std::string_view name, std::string_view value);
    /// Adds a piece of text; adjacent pieces are one text. Ignores blanks, tabs and line ends, in which XML
    /// parsers differ.
    void addText(std::string_view text);
    void endElement();

    bool operator==(const XmlOutline&) const = default;

private:
    std::string content;
};

struct XmlDocumentText {
    std::string root;           // its tag
    std::size_t rootTagEnd = 0; // index of the byte after the root's start tag
    XmlOutline outline;
};

/// Parses standard XML. Returns nullopt if it is not well-formed, has a document type or a processing
/// instruction, or is nested deeper than 16. Treats an unknown encoding as UTF-8. Any thread.
std::optional<XmlDocumentText> readXml(std::string_view text);

} // namespace Kest::Settings
