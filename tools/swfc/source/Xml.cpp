#include "swfc/source/Xml.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <limits>

namespace swfc::source
{
namespace
{

/// Builds our own tree from the parser's events: its own nodes keep lines in 16 bits and no columns.
struct Builder {
    xmlParserCtxtPtr parser = nullptr;
    Diagnostics* diagnostics = nullptr;
    int file = 0;
    std::unique_ptr<Element> root;
    std::vector<Element*> open;
    bool failed = false;

    [[nodiscard]] Position here() const
    {
        if (parser == nullptr || parser->input == nullptr) return {file, 1, 1};
        return {file, parser->input->line, parser->input->col};
    }
    void fail(Position where, const std::string& message)
    {
        if (!failed) diagnostics->error(where, message);
        failed = true;
        xmlStopParser(parser);
    }
};

std::string text(const xmlChar* bytes)
{
    return bytes == nullptr ? "" : reinterpret_cast<const char*>(bytes);
}

void startElement(void* context, const xmlChar* name, const xmlChar*, const xmlChar*, int, const xmlChar**,
                  int attributeCount, int, const xmlChar** attributes)
{
    auto& builder = *static_cast<Builder*>(context);
    auto element = std::make_unique<Element>();
    element->name = text(name);
    // The parser has read up to the bracket that ends the tag.
    element->where = element->textStart = builder.here();
    ++element->textStart.column;
    for (int i = 0; i < attributeCount; ++i) {
        const xmlChar** a = attributes + 5 * static_cast<std::ptrdiff_t>(i);
        element->attributes.push_back({text(a[0]), std::string(reinterpret_cast<const char*>(a[3]),
                                                               static_cast<std::size_t>(a[4] - a[3]))});
    }
    Element* made = element.get();
    if (builder.open.empty())
        builder.root = std::move(element);
    else
        builder.open.back()->children.push_back(std::move(element));
    builder.open.push_back(made);
}

void endElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*)
{
    auto& builder = *static_cast<Builder*>(context);
    if (!builder.open.empty()) builder.open.pop_back();
}

void characters(void* context, const xmlChar* bytes, int length)
{
    auto& builder = *static_cast<Builder*>(context);
    if (builder.open.empty()) return;
    builder.open.back()->text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

void cdata(void* context, const xmlChar* bytes, int length)
{
    auto& builder = *static_cast<Builder*>(context);
    if (builder.open.empty()) return;
    Element& element = *builder.open.back();
    constexpr int kMarkBytes = 9; // <![CDATA[
    // Columns count where the text really starts when nothing but the mark stands before it.
    if (element.text.empty()) element.textStart.column += kMarkBytes;
    element.text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

void documentType(void* context, const xmlChar*, const xmlChar*, const xmlChar*)
{
    auto& builder = *static_cast<Builder*>(context);
    builder.fail(builder.here(), "expected an element, found a document type");
}

/// Only the five entities of the language itself, which need no declaration.
xmlEntityPtr entity(void*, const xmlChar* name) { return xmlGetPredefinedEntity(name); }

void structuredError(void* context, xmlErrorPtr error)
{
    auto& builder = *static_cast<Builder*>(context);
    std::string message = error->message == nullptr ? "damaged" : error->message;
    while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
    builder.fail({builder.file, std::max(1, error->line), std::max(1, error->int2)},
                 "expected well-formed XML: " + message);
}

} // namespace

std::unique_ptr<Element> parseXml(std::string_view bytes, int file, Diagnostics& diagnostics)
{
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        diagnostics.error({file, 1, 1}, "expected a file of less than 2 GB");
        return nullptr;
    }
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = startElement;
    handler.endElementNs = endElement;
    handler.characters = characters;
    handler.ignorableWhitespace = characters;
    handler.cdataBlock = cdata;
    handler.internalSubset = documentType;
    handler.getEntity = entity;
    handler.serror = structuredError;
    Builder builder;
    builder.diagnostics = &diagnostics;
    builder.file = file;
    const xmlParserCtxtPtr parser = xmlCreatePushParserCtxt(&handler, &builder, nullptr, 0, nullptr);
    if (parser == nullptr) return nullptr;
    builder.parser = parser;
    xmlCtxtUseOptions(parser, XML_PARSE_NONET | XML_PARSE_NOENT);
    // The parser's own limits stay on: depth 256, ten million bytes of text in a row.
    xmlParseChunk(parser, bytes.data(), static_cast<int>(bytes.size()), 1);
    if (parser->wellFormed == 0) builder.fail({file, 1, 1}, "expected well-formed XML");
    xmlFreeParserCtxt(parser);
    if (builder.failed) return nullptr;
    return std::move(builder.root);
}

} // namespace swfc::source
