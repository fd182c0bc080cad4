#include "flash/net/XmlScanner.h"

#include "base/Ascii.h"

#include <algorithm>
#include <array>
#include <optional>

namespace flash::net
{
namespace
{

using Kind = XmlToken::Kind;

struct Entity {
    std::u16string_view name;
    char16_t character;
};
constexpr std::array<Entity, 5> kEntities = {
    {{u"lt", u'<'}, {u"gt", u'>'}, {u"amp", u'&'}, {u"quot", u'"'}, {u"apos", u'\''}}};
constexpr Entity kHardBlank = {u"nbsp", u'\u00A0'};
constexpr char32_t kMaxCodePoint = 0x10FFFF;

/// @param digits what stands between "&#" and ";"
std::optional<char32_t> codePoint(std::u16string_view digits)
{
    const bool isHex = digits.starts_with(u'x');
    if (isHex) digits.remove_prefix(1);
    char32_t code = 0;
    for (const char16_t unit : digits) {
        const int digit = base::hexDigit(unit), radix = isHex ? 16 : 10;
        if (digit < 0 || digit >= radix) return {};
        code = code * static_cast<char32_t>(radix) + static_cast<char32_t>(digit);
        if (code > kMaxCodePoint) return {};
    }
    if (digits.empty() || code == 0) return {};
    return code;
}

void append(std::u16string& out, char32_t code)
{
    constexpr char32_t kFirstPair = 0x10000;
    if (code < kFirstPair) {
        out += static_cast<char16_t>(code);
        return;
    }
    out += static_cast<char16_t>(0xD800 + ((code - kFirstPair) >> 10U));
    out += static_cast<char16_t>(0xDC00 + ((code - kFirstPair) & 0x3FFU));
}

std::optional<char32_t> characterOf(std::u16string_view entity, XmlEntities known)
{
    if (known == XmlEntities::HardBlank && entity == kHardBlank.name) return kHardBlank.character;
    if (known == XmlEntities::Numbers && entity.starts_with(u'#')) return codePoint(entity.substr(1));
    const auto* found = std::ranges::find(kEntities, entity, &Entity::name);
    if (found == kEntities.end()) return {};
    return found->character;
}

} // namespace

bool isXmlSpace(std::u16string_view text)
{
    return std::ranges::all_of(text, [](char16_t unit) { return isXmlSpace(unit); });
}

std::u16string decodeXml(std::u16string_view text, XmlEntities known)
{
    constexpr std::size_t kMaxEntity = 10;
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'&') {
            const std::size_t length = text.substr(i + 1, kMaxEntity).find(u';');
            if (length != std::u16string_view::npos) {
                if (const auto character = characterOf(text.substr(i + 1, length), known)) {
                    append(out, *character);
                    i += length + 1;
                    continue;
                }
            }
        }
        out += text[i];
    }
    return out;
}

XmlToken XmlScanner::next()
{
    const std::u16string_view rest = m_text.substr(m_at);
    if (rest.empty()) return {m_status == XmlStatus::Ok ? Kind::Finish : Kind::Damage, {}, {}};
    if (rest.front() != u'<') {
        const std::u16string_view text = rest.substr(0, rest.find(u'<'));
        m_at += text.size();
        return {Kind::Text, text, text};
    }
    if (rest.starts_with(u"<!--")) return upTo(Kind::Comment, u"-->", 4, XmlStatus::CommentNotEnded);
    if (rest.starts_with(u"<![CDATA[")) return upTo(Kind::Cdata, u"]]>", 9, XmlStatus::CdataNotEnded);
    if (rest.starts_with(u"<?")) return upTo(Kind::Instruction, u"?>", 2, XmlStatus::DeclarationNotEnded);
    if (rest.starts_with(u"<!")) return doctype();
    return rest.starts_with(u"</") ? endTag() : startTag();
}

XmlToken XmlScanner::damage(XmlStatus status)
{
    m_status = status;
    m_at = m_text.size();
    return {Kind::Damage, {}, {}};
}

XmlToken XmlScanner::upTo(Kind kind, std::u16string_view end, std::size_t skip, XmlStatus missing)
{
    const std::size_t from = m_at, start = std::min(m_at + skip, m_text.size());
    const std::size_t found = m_text.find(end, start);
    if (found == std::u16string_view::npos) return damage(missing);
    m_at = found + end.size();
    return {kind, m_text.substr(start, found - start), m_text.substr(from, m_at - from)};
}

/// A document type may hold declarations of its own in angle brackets.
XmlToken XmlScanner::doctype()
{
    int depth = 0;
    for (std::size_t i = m_at; i < m_text.size(); ++i) {
        if (m_text[i] == u'<') ++depth;
        if (m_text[i] == u'>' && --depth == 0) {
            const std::u16string_view whole = m_text.substr(m_at, i + 1 - m_at);
            m_at = i + 1;
            return {Kind::Doctype, whole, whole};
        }
    }
    return damage(XmlStatus::DoctypeNotEnded);
}

XmlToken XmlScanner::endTag()
{
    XmlToken token = upTo(Kind::End, u">", 2, XmlStatus::ElementMalformed);
    if (token.kind == Kind::Damage) return token;
    std::u16string_view& name = token.text;
    // What follows the name is passed over.
    name = name.substr(0, name.find_first_of(u" \t\r\n"));
    if (name.ends_with(u'/')) name.remove_suffix(1);
    return name.empty() ? damage(XmlStatus::ElementMalformed) : token;
}

void XmlScanner::skipSpace()
{
    while (m_at < m_text.size() && isXmlSpace(m_text[m_at])) ++m_at;
}

std::u16string_view XmlScanner::word(std::u16string_view stops)
{
    const std::size_t start = m_at;
    while (m_at < m_text.size() && !isXmlSpace(m_text[m_at]) && stops.find(m_text[m_at]) == stops.npos)
        ++m_at;
    return m_text.substr(start, m_at - start);
}

XmlToken XmlScanner::startTag()
{
    m_attributes.clear();
    const std::size_t from = m_at++;
    const auto is = [&](char16_t unit) { return m_at < m_text.size() && m_text[m_at] == unit; };
    // A slash belongs to the name unless the element ends with it.
    std::u16string_view name = word(u">");
    if (name.ends_with(u'/') && is(u'>')) {
        name.remove_suffix(1);
        --m_at;
    }
    if (name.empty()) return damage(XmlStatus::ElementMalformed);
    for (;;) {
        skipSpace();
        const bool isEmpty = is(u'/');
        if (isEmpty) ++m_at;
        if (is(u'>')) {
            ++m_at;
            return {isEmpty ? Kind::Empty : Kind::Start, name, m_text.substr(from, m_at - from)};
        }
        if (isEmpty) return damage(XmlStatus::ElementMalformed);
        const std::u16string_view key = word(u"=/>");
        skipSpace();
        if (key.empty() || !is(u'=')) return damage(XmlStatus::ElementMalformed);
        ++m_at;
        skipSpace();
        if (!is(u'"') && !is(u'\'')) return damage(XmlStatus::ElementMalformed);
        const char16_t quote = m_text[m_at++];
        const std::size_t end = m_text.find(quote, m_at);
        if (end == std::u16string_view::npos) return damage(XmlStatus::AttributeNotEnded);
        m_attributes.push_back({key, m_text.substr(m_at, end - m_at)});
        m_at = end + 1;
    }
}

} // namespace flash::net
