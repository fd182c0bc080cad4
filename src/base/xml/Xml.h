#pragma once

#include "base/ByteReader.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct _xmlDoc;
struct _xmlNode;

// base/xml/: XML documents as the program's own files use them. All texts are UTF-8. Nothing outside the
// document is ever read: no network, no external entities.

namespace base::xml
{

/// An element of a document; lives as long as the document does.
class Element
{
public:
    [[nodiscard]] std::string name() const;
    /// @returns nothing when the attribute is missing; names are compared exactly
    [[nodiscard]] std::optional<std::string> attribute(std::string_view name) const;
    /// All text below the element, as it stands.
    [[nodiscard]] std::string text() const;
    /// Child elements in document order; texts, comments and instructions are passed over.
    [[nodiscard]] std::vector<Element> children() const;
    /// @returns the first child element of that name
    [[nodiscard]] std::optional<Element> child(std::string_view name) const;
    /// The element as it would be written, everything below it included.
    /// @param limitBytes longer texts are cut there, at a character's border
    [[nodiscard]] std::string source(std::size_t limitBytes) const;

    /// The line of the file that its start tag ends in, from 1.
    [[nodiscard]] int line() const;

    /// @returns false, with nothing changed, for a text that no XML document can hold: control characters,
    ///          broken UTF-8
    bool setAttribute(std::string_view name, std::string_view value);
    /// Replaces all that is below the element, unless its text is the same already.
    /// @returns false as setAttribute does
    bool setText(std::string_view text);

private:
    friend class Document;
    explicit Element(_xmlNode* node) : m_node(node) {}
    _xmlNode* m_node;
};

/// A whole document. As long as neither elements nor attributes are added or removed, everything that is not
/// changed survives a save byte for byte. Otherwise, and in UTF-16, attribute order, white space between
/// tags, comments, the declared encoding, the byte order mark and the line ends (those of the first line for
/// all) do; quotation marks, white space within tags and the two spellings of an empty element do not.
/// Characters that the encoding lacks are written as references.
class Document
{
public:
    /// Reads UTF-8 and UTF-16 by mark or declaration and whatever 8-bit encoding the declaration names. Bytes
    /// that are not the UTF-8 they claim to be are taken for windows-1251, as old files are.
    /// @errors SyntaxError with the line in `what`; Denied for documents that declare entities
    static Result<Document> parse(Bytes bytes);

    [[nodiscard]] Element root() const;
    /// @returns the document's bytes in its declared encoding
    [[nodiscard]] std::vector<std::uint8_t> bytes() const;

private:
    struct Free {
        void operator()(_xmlDoc* document) const;
    };
    explicit Document(_xmlDoc* document) : m_document(document) {}
    /// The document as the library writes it, in its encoding, with plain line feeds.
    [[nodiscard]] std::string written() const;
    [[nodiscard]] std::string withSourceForm(const std::string& body) const;

    std::unique_ptr<_xmlDoc, Free> m_document;
    std::string m_source; ///< what was read; empty for a new document
    std::string m_asRead; ///< written() right after reading
    // What the tree does not hold of the source's form.
    bool m_declaration = true;
    bool m_utf8Mark = false;
    bool m_crLf = false;
};

} // namespace base::xml
