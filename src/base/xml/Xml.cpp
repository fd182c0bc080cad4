#include "base/xml/Xml.h"

#include "base/Ascii.h"
#include "base/TextCodes.h"
#include "base/xml/InPlace.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlsave.h>

#include <algorithm>
#include <climits>

namespace base::xml
{
namespace
{

const xmlChar* in(const std::string& text) { return reinterpret_cast<const xmlChar*>(text.c_str()); }

std::string take(xmlChar* text)
{
    if (text == nullptr) return {};
    std::string result(reinterpret_cast<const char*>(text));
    xmlFree(text);
    return result;
}

bool startsWith(std::string_view bytes, std::string_view mark)
{
    return bytes.substr(0, mark.size()) == mark;
}

/// @returns the encoding to force on the parser, or null to let the document speak
const char* forcedEncoding(std::string_view bytes)
{
    using namespace std::string_view_literals;
    if (startsWith(bytes, "\xFF\xFE"sv) || startsWith(bytes, "\xFE\xFF"sv)) return nullptr;
    if (startsWith(bytes, "<\0"sv) || startsWith(bytes, "\0<"sv)) return nullptr; // UTF-16 without a mark
    if (isUtf8(bytes)) return nullptr;
    std::string head(bytes.substr(0, std::min(bytes.find('>'), std::size_t{256})));
    std::transform(head.begin(), head.end(), head.begin(), [](char c) { return asciiLower(c); });
    const bool declaresOther =
        head.find("encoding") != std::string::npos && head.find("utf-8") == std::string::npos;
    return declaresOther ? nullptr : "windows-1251";
}

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// @returns whether the text is UTF-8 of characters that XML allows
bool isXmlText(std::string_view text)
{
    if (!isUtf8(text) || text.find("\xEF\xBF\xBE") != text.npos || text.find("\xEF\xBF\xBF") != text.npos)
        return false;
    return std::none_of(text.begin(), text.end(),
                        [](unsigned char c) { return c < 0x20 && c != '\t' && c != '\n' && c != '\r'; });
}

bool declaresEntities(const xmlDoc& document)
{
    return document.intSubset != nullptr && document.intSubset->entities != nullptr;
}

} // namespace

void Document::Free::operator()(_xmlDoc* document) const { xmlFreeDoc(document); }

Result<Document> Document::parse(Bytes bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.size() > INT_MAX) return fail(ErrorCode::LimitReached, "XML document longer than 2 GiB");
    const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxt*)> parser(xmlNewParserCtxt(),
                                                                          xmlFreeParserCtxt);
    // Entities are not substituted and no DTD is loaded, which is what is left out here.
    constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    Document document(xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()), nullptr,
                                        forcedEncoding(text), kOptions));
    if (!document.m_document || xmlDocGetRootElement(document.m_document.get()) == nullptr) {
        const xmlError* error = xmlCtxtGetLastError(parser.get());
        std::string what = "XML document without a root element";
        if (error != nullptr && error->message != nullptr) {
            what = "XML line " + std::to_string(error->line) + ": " + error->message;
            while (!what.empty() && (what.back() == '\n' || what.back() == '\r')) what.pop_back();
        }
        return fail(ErrorCode::SyntaxError, what);
    }
    if (declaresEntities(*document.m_document))
        return fail(ErrorCode::Denied, "XML document declares entities of its own, which are not read");
    const bool hasMark = startsWith(text, kUtf8Mark);
    document.m_utf8Mark = hasMark;
    document.m_declaration =
        text.find('\0') != text.npos || startsWith(text.substr(hasMark ? kUtf8Mark.size() : 0), "<?xml");
    const std::size_t lineEnd = text.find('\n');
    document.m_crLf = lineEnd != text.npos && lineEnd > 0 && text[lineEnd - 1] == '\r';
    document.m_source = text;
    document.m_asRead = document.written();
    return document;
}

Element Document::root() const { return Element(xmlDocGetRootElement(m_document.get())); }

std::string Document::written() const
{
    const auto* declared = reinterpret_cast<const char*>(m_document->encoding);
    const std::unique_ptr<xmlBuffer, void (*)(xmlBuffer*)> buffer(xmlBufferCreate(), xmlBufferFree);
    xmlSaveCtxt* saving = xmlSaveToBuffer(buffer.get(), declared != nullptr ? declared : "UTF-8",
                                          m_declaration && declared != nullptr ? 0 : XML_SAVE_NO_DECL);
    xmlSaveDoc(saving, m_document.get());
    xmlSaveClose(saving);
    return {reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
            static_cast<std::size_t>(xmlBufferLength(buffer.get()))};
}

std::string Document::withSourceForm(const std::string& body) const
{
    std::string text;
    if (m_utf8Mark) text += kUtf8Mark;
    if (m_declaration && m_document->encoding == nullptr) text += "<?xml version=\"1.0\"?>\n";
    text += body;
    // UTF-16 has zero bytes and keeps its plain line feeds.
    if (!m_crLf || body.find('\0') != body.npos) return text;
    std::string converted;
    converted.reserve(text.size() + text.size() / 16);
    for (const char c : text) {
        if (c == '\n') converted += '\r';
        converted += c;
    }
    return converted;
}

std::vector<std::uint8_t> Document::bytes() const
{
    const std::string body = written();
    std::string text = withSourceForm(body);
    if (!m_source.empty() && m_source.find('\0') == m_source.npos) {
        if (auto updated = updatedInPlace(m_source, m_asRead, body)) {
            // What the source's spelling hides from this way of updating shows when it is read again.
            const auto again =
                parse({reinterpret_cast<const std::uint8_t*>(updated->data()), updated->size()});
            if (again && again->m_asRead == body) text = std::move(*updated);
        }
    }
    return {text.begin(), text.end()};
}

std::string Element::name() const { return reinterpret_cast<const char*>(m_node->name); }

std::optional<std::string> Element::attribute(std::string_view name) const
{
    const std::string key(name);
    if (xmlHasNsProp(m_node, in(key), nullptr) == nullptr) return std::nullopt;
    return take(xmlGetNoNsProp(m_node, in(key)));
}

int Element::line() const { return static_cast<int>(xmlGetLineNo(m_node)); }

std::string Element::text() const { return take(xmlNodeGetContent(m_node)); }

std::vector<Element> Element::children() const
{
    std::vector<Element> result;
    for (xmlNode* node = xmlFirstElementChild(m_node); node != nullptr; node = xmlNextElementSibling(node))
        result.push_back(Element(node));
    return result;
}

std::optional<Element> Element::child(std::string_view name) const
{
    for (xmlNode* node = xmlFirstElementChild(m_node); node != nullptr; node = xmlNextElementSibling(node))
        if (reinterpret_cast<const char*>(node->name) == name) return Element(node);
    return std::nullopt;
}

std::string Element::source(std::size_t limitBytes) const
{
    const std::unique_ptr<xmlBuffer, void (*)(xmlBuffer*)> buffer(xmlBufferCreate(), xmlBufferFree);
    if (xmlNodeDump(buffer.get(), m_node->doc, m_node, 0, 0) < 0) return {};
    std::string result(reinterpret_cast<const char*>(xmlBufferContent(buffer.get())));
    if (result.size() <= limitBytes) return result;
    std::size_t end = limitBytes;
    while (end > 0 && (static_cast<unsigned char>(result[end]) & 0xC0U) == 0x80U) --end;
    result.resize(end);
    return result;
}

bool Element::setAttribute(std::string_view name, std::string_view value)
{
    if (!isXmlText(value)) return false;
    return xmlSetProp(m_node, in(std::string(name)), in(std::string(value))) != nullptr;
}

bool Element::setText(std::string_view text)
{
    if (!isXmlText(text)) return false;
    if (this->text() == text) return true;
    xmlNodeSetContent(m_node, nullptr);
    const std::string copy(text);
    xmlNodeAddContent(m_node, in(copy)); // escapes by itself, which setting the content does not
    return true;
}

} // namespace base::xml
