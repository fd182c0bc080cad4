#include "base/xml/InPlace.h"

#include <vector>

namespace base::xml
{
namespace
{

/// A document cut into what can change and what lies between. The views point into the text.
struct Piece {
    enum class Kind {
        Markup,  ///< of a tag, all but the values of its attributes
        Value,   ///< of an attribute, without its quotation marks
        Content, ///< between two tags: text, comments, instructions
    };
    Kind kind;
    std::string_view text;
    std::string_view name;         ///< of the tag or attribute; empty for what ends a tag
    bool endsEmptyElement = false; ///< "/>"
    bool isSynthetic = false;      ///< content and end tag of an empty element, which are not there
};

class Cutter
{
public:
    explicit Cutter(std::string_view text) : m_text(text) {}

    /// @returns nothing for what is no well-formed document, or has a document type
    std::optional<std::vector<Piece>> cut()
    {
        std::size_t contentBegin = 0;
        while (m_at < m_text.size()) {
            if (m_text[m_at] != '<') {
                ++m_at;
                continue;
            }
            if (skipsPast("<!--", "-->") || skipsPast("<?", "?>") || skipsPast("<![CDATA[", "]]>")) continue;
            if (m_text.substr(m_at).starts_with("<!")) return std::nullopt;
            m_pieces.push_back({Piece::Kind::Content, m_text.substr(contentBegin, m_at - contentBegin), {}});
            if (!cutTag()) return std::nullopt;
            contentBegin = m_at;
        }
        m_pieces.push_back({Piece::Kind::Content, m_text.substr(contentBegin), {}});
        return std::move(m_pieces);
    }

private:
    static constexpr std::string_view kSpace = " \t\r\n";

    bool skipsPast(std::string_view begin, std::string_view end)
    {
        if (!m_text.substr(m_at).starts_with(begin)) return false;
        const std::size_t found = m_text.find(end, m_at + begin.size());
        m_at = found == std::string_view::npos ? m_text.size() : found + end.size();
        return true;
    }
    bool cutTag()
    {
        std::size_t begin = m_at;
        const std::size_t nameEnd = m_text.find_first_of(" \t\r\n/>", m_at + 2);
        if (nameEnd == std::string_view::npos) return false;
        std::string_view name = m_text.substr(m_at + 1, nameEnd - m_at - 1);
        m_at = nameEnd;
        for (;;) {
            const std::size_t next = m_text.find_first_not_of(kSpace, m_at);
            if (next == std::string_view::npos) return false;
            m_at = next;
            if (m_text[m_at] == '>' || m_text.substr(m_at).starts_with("/>")) break;
            const std::size_t equals = m_text.find('=', m_at);
            const std::size_t quote =
                equals == std::string_view::npos ? equals : m_text.find_first_not_of(kSpace, equals + 1);
            if (quote == std::string_view::npos || (m_text[quote] != '"' && m_text[quote] != '\''))
                return false;
            const std::size_t end = m_text.find(m_text[quote], quote + 1);
            if (end == std::string_view::npos) return false;
            m_pieces.push_back({Piece::Kind::Markup, m_text.substr(begin, quote + 1 - begin), name});
            const std::size_t attributeEnd = m_text.find_first_of(" \t\r\n=", m_at);
            m_pieces.push_back({Piece::Kind::Value, m_text.substr(quote + 1, end - quote - 1),
                                m_text.substr(m_at, attributeEnd - m_at)});
            name = {};
            begin = m_at = end;
            ++m_at;
        }
        const bool isEmpty = m_text[m_at] == '/';
        m_at += isEmpty ? 2 : 1;
        m_pieces.push_back({Piece::Kind::Markup, m_text.substr(begin, m_at - begin), name, isEmpty});
        if (isEmpty) {
            m_pieces.push_back({Piece::Kind::Content, {}, {}, false, true});
            m_pieces.push_back({Piece::Kind::Markup, {}, {}, false, true});
        }
        return true;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::vector<Piece> m_pieces;
};

/// Whether both are the same place of a document, whatever its value. An end tag has no name when it is that
/// of an empty element.
bool correspond(const Piece& a, const Piece& b)
{
    return a.kind == b.kind && (a.name == b.name || a.isSynthetic || b.isSynthetic);
}

/// Fits a value that stood in double quotation marks into the others.
std::string quoted(std::string_view value, char mark)
{
    std::string result;
    for (const char c : value) c == mark ? result += "&#39;" : result += c;
    return result;
}

} // namespace

std::optional<std::string> updatedInPlace(std::string_view source, std::string_view before,
                                          std::string_view after)
{
    const auto original = Cutter(source).cut(), old = Cutter(before).cut(), changed = Cutter(after).cut();
    if (!original || !old || !changed || original->size() != old->size() || old->size() != changed->size())
        return std::nullopt;
    std::string result;
    std::string_view openedName; // of the element that was empty and no longer is
    for (std::size_t i = 0; i < original->size(); ++i) {
        const Piece& own = (*original)[i];
        const Piece& was = (*old)[i];
        const Piece& is = (*changed)[i];
        if (!correspond(own, was) || !correspond(was, is)) return std::nullopt;
        const bool isNew = own.kind != Piece::Kind::Markup && was.text != is.text;
        if (!openedName.empty() && own.kind == Piece::Kind::Markup) {
            result += "</" + std::string(openedName) + '>';
            openedName = {};
        } else if (!isNew) {
            result += own.text;
        } else if (own.kind == Piece::Kind::Value) {
            result += quoted(is.text, result.back());
        } else {
            if (own.isSynthetic) {
                // "<a/>" opens. Its name is that of the tag's first piece.
                std::size_t first = i - 1;
                while ((*original)[first].name.empty()) first -= 2;
                openedName = (*original)[first].name;
                result.replace(result.size() - 2, 2, ">");
            }
            result += is.text;
        }
    }
    return result;
}

} // namespace base::xml
