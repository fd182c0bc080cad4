#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// XML as movies read it: with the genuine player's forgiveness, which documents that other programs write may
// rely on. Splits a text into pieces; trees, namespaces and which end belongs to which start are the business
// of a script machine's classes.
namespace flash::net
{

/// Why reading ended, in the numbers of a document's property `status`.
enum class XmlStatus : int {
    Ok = 0,
    CdataNotEnded = -2,
    DeclarationNotEnded = -3,
    DoctypeNotEnded = -4,
    CommentNotEnded = -5,
    ElementMalformed = -6,
    AttributeNotEnded = -8,
    StartWithoutEnd = -9,
    EndWithoutStart = -10,
};

struct XmlAttribute {
    std::u16string_view name;
    std::u16string_view value; ///< between the quotes, entities as they stand
};

/// Views into the scanner's text.
struct XmlToken {
    enum class Kind : std::uint8_t {
        Text,        ///< `text`: up to the next angle bracket, entities as they stand
        Cdata,       ///< `text`: what stands within
        Comment,     ///< likewise
        Instruction, ///< likewise; the declaration is one
        Doctype,     ///< `text`: the whole, with declarations of its own
        Start,       ///< `text`: the name
        Empty,       ///< as Start, with its end
        End,         ///< `text`: the name
        Finish,      ///< nothing is left
        Damage,      ///< nothing is left that could be read; status() tells what is wrong
    };
    Kind kind = Kind::Finish;
    std::u16string_view text;
    std::u16string_view whole; ///< as it stands, with its brackets
};

class XmlScanner
{
public:
    /// @param text is kept alive by the caller
    explicit XmlScanner(std::u16string_view text) : m_text(text) {}

    XmlToken next();
    /// Of the last Start or Empty, in their order; names may stand twice.
    [[nodiscard]] const std::vector<XmlAttribute>& attributes() const { return m_attributes; }
    [[nodiscard]] XmlStatus status() const { return m_status; }

private:
    XmlToken upTo(XmlToken::Kind kind, std::u16string_view end, std::size_t skip, XmlStatus missing);
    XmlToken doctype();
    XmlToken endTag();
    XmlToken startTag();
    XmlToken damage(XmlStatus status);
    void skipSpace();
    std::u16string_view word(std::u16string_view stops);

    std::u16string_view m_text;
    std::size_t m_at = 0;
    std::vector<XmlAttribute> m_attributes;
    XmlStatus m_status = XmlStatus::Ok;
};

[[nodiscard]] constexpr bool isXmlSpace(char16_t unit)
{
    return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n';
}
[[nodiscard]] bool isXmlSpace(std::u16string_view text);

/// Which entities a class knows besides the five that XML has.
enum class XmlEntities : std::uint8_t { HardBlank, Numbers };
std::u16string decodeXml(std::u16string_view text, XmlEntities known);

} // namespace flash::net
