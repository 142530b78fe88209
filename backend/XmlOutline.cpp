#include "backend/XmlOutline.h"

#include <expat.h>
#include <memory>

namespace Kest::Settings {
namespace {

constexpr int kMaxDepth = 16;

// Characters that XML text cannot contain.
constexpr char kElement = '\1';
constexpr char kAttribute = '\2';
constexpr char kValue = '\3';
constexpr char kEnd = '\4'; // of an element and of an attribute's value

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

struct Reader {
    XML_Parser parser = nullptr;
    XmlDocumentText document;
    int depth = 0;

    void stop() const { XML_StopParser(parser, XML_FALSE); }
};

void onElement(void* context, const XML_Char* tag, const XML_Char** attributes)
{
    auto& reader = *static_cast<Reader*>(context);
    if (++reader.depth > kMaxDepth)
        return reader.stop();
    if (reader.depth == 1) {
        reader.document.root = tag;
        reader.document.rootTagEnd = static_cast<std::size_t>(XML_GetCurrentByteIndex(reader.parser) +
                                                              XML_GetCurrentByteCount(reader.parser));
    }
    reader.document.outline.beginElement(tag);
    for (; *attributes != nullptr; attributes += 2)
        reader.document.outline.addAttribute(attributes[0], attributes[1]);
}

void onElementEnd(void* context, const XML_Char*)
{
    auto& reader = *static_cast<Reader*>(context);
    --reader.depth;
    reader.document.outline.endElement();
}

void onText(void* context, const XML_Char* text, int length)
{
    static_cast<Reader*>(context)->document.outline.addText({text, static_cast<std::size_t>(length)});
}

void onDocumentType(void* context, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    static_cast<Reader*>(context)->stop();
}

void onInstruction(void* context, const XML_Char*, const XML_Char*) { static_cast<Reader*>(context)->stop(); }

// If `encoding` is null, the text's declaration is used.
XML_Error read(std::string_view text, const char* encoding, XmlDocumentText& document)
{
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(encoding),
                                                                              XML_ParserFree);
    if (parser == nullptr)
        return XML_ERROR_NO_MEMORY;
    Reader reader;
    reader.parser = parser.get();
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), onElement, onElementEnd);
    XML_SetCharacterDataHandler(parser.get(), onText);
    XML_SetStartDoctypeDeclHandler(parser.get(), onDocumentType);
    XML_SetProcessingInstructionHandler(parser.get(), onInstruction);
    if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK)
        return XML_GetErrorCode(parser.get());
    document = std::move(reader.document);
    return XML_ERROR_NONE;
}

} // namespace

void XmlOutline::beginElement(std::string_view tag) { content.append(1, kElement).append(tag); }

void XmlOutline::addAttribute(std::string_view name, std::string_view value)
{
    content.append(1, kAttribute).append(name).append(1, kValue);
    addText(value);
    content += kEnd;
}

void XmlOutline::addText(std::string_view text)
{
    for (const char c : text)
        if (!isBlank(c))
            content += c;
}

void XmlOutline::endElement() { content += kEnd; }

std::optional<XmlDocumentText> readXml(std::string_view text)
{
    XmlDocumentText document;
    auto error = read(text, nullptr, document);
    if (error == XML_ERROR_UNKNOWN_ENCODING)
        error = read(text, "UTF-8", document);
    return error == XML_ERROR_NONE ? std::optional(std::move(document)) : std::nullopt;
}

} // namespace Kest::Settings
