#include "swfc/actionscript3/Parser.h"

namespace swfc::actionscript3
{

/// An element written in the code. It becomes texts with values between them: the machine joins and parses
/// them. Read by characters, as blanks count here.
Expr* Parser::xmlLiteral()
{
    const Level level(*this);
    Expr* node = makeExpr(ExprKind::Xml);
    node->names.emplace_back();
    m_lexer.seek(m_token.begin);
    if (m_lexer.startsWith("<>")) {
        node->kind = ExprKind::XmlList;
        m_lexer.skip(2);
        while (!m_lexer.startsWith("</>") && !m_failed) {
            if (m_lexer.atEnd())
                fail(node->where, "expected '</>' to end this list, found end of script");
            else if (m_lexer.at() == '{')
                xmlInsert(node, XmlPart::Element);
            else if (!xmlMarkup(node) && m_lexer.at() == '<')
                xmlElement(node, 1);
            else if (!m_lexer.atEnd() && m_lexer.at() != '<')
                xmlText(node, m_lexer.take());
        }
        m_lexer.skip(3);
    } else if (!xmlMarkup(node)) {
        xmlElement(node, 1);
    }
    readOn();
    return node;
}

/// Comments, character data and instructions go into the text as they stand.
bool Parser::xmlMarkup(Expr* node)
{
    struct Markup {
        std::string_view begin, end;
    };
    static constexpr Markup kMarkups[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    for (const Markup& markup : kMarkups) {
        if (!m_lexer.startsWith(markup.begin)) continue;
        const Position where = m_lexer.here();
        bool found = false;
        m_lexer.skip(markup.begin.size());
        node->names.back() +=
            std::string(markup.begin) + m_lexer.takeUntil(markup.end, found) + std::string(markup.end);
        if (!found) fail(where, "expected '" + std::string(markup.end) + "', found end of script");
        return true;
    }
    return false;
}

/// A value in braces.
void Parser::xmlInsert(Expr* node, XmlPart part)
{
    m_lexer.skip(1);
    readOn();
    const bool noIn = m_noIn;
    m_noIn = false;
    Expr* value = expression();
    m_noIn = noIn;
    if (!is("}")) {
        fail("'}' after the value");
        return;
    }
    Mark behind = m_token.begin;
    ++behind.offset;
    m_lexer.seek(behind);
    node->list.push_back(value);
    node->parts.push_back(part);
    node->names.emplace_back();
    chain(node, {value});
}

/// From `<` to `>`.
void Parser::xmlTag(Expr* node, bool& isEmpty)
{
    const Position where = m_lexer.here();
    bool afterEquals = false;
    isEmpty = false;
    xmlText(node, m_lexer.take());
    while (!m_failed) {
        const char c = m_lexer.at();
        if (m_lexer.atEnd()) {
            fail(where, "expected '>' to end this tag, found end of script");
        } else if (c == '{') {
            // The value of an attribute brings its quotation marks.
            if (afterEquals) node->names.back() += '"';
            xmlInsert(node, afterEquals ? XmlPart::Attribute : XmlPart::Raw);
            if (afterEquals && !m_failed) node->names.back() += '"';
            afterEquals = false;
        } else if (c == '"' || c == '\'') {
            xmlText(node, m_lexer.take());
            bool found = false;
            const std::string text = m_lexer.takeUntil(std::string_view(&c, 1), found);
            if (!found) fail(where, "expected a quotation mark to end this attribute, found end of script");
            node->names.back() += text + c;
            afterEquals = false;
        } else if (c == '>') {
            xmlText(node, m_lexer.take());
            return;
        } else {
            if (m_lexer.startsWith("/>")) isEmpty = true;
            if (c == '=') afterEquals = true;
            xmlText(node, m_lexer.take());
        }
    }
}

void Parser::xmlElement(Expr* node, int depth)
{
    const Level level(*this);
    if (m_failed || depth > kDeepestNesting) return;
    const Position where = m_lexer.here();
    bool isEmpty = false;
    xmlTag(node, isEmpty);
    if (isEmpty) return;
    while (!m_failed) {
        if (m_lexer.atEnd())
            fail(where, "expected an end tag for this element, found end of script");
        else if (m_lexer.startsWith("</")) {
            xmlTag(node, isEmpty);
            return;
        } else if (m_lexer.at() == '{')
            xmlInsert(node, XmlPart::Element);
        else if (xmlMarkup(node))
            continue;
        else if (m_lexer.at() == '<')
            xmlElement(node, depth + 1);
        else
            xmlText(node, m_lexer.take());
    }
}

} // namespace swfc::actionscript3
