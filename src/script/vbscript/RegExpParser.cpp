#include "script/vbscript/RegExp.h"
#include "script/vbscript/Text.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

constexpr int kSyntaxError = 5017;
constexpr int kUnexpectedQuantifier = 5018;
constexpr int kExpectedBracket = 5019;
constexpr int kExpectedParenthesis = 5020;
constexpr int kInvalidRange = 5021;
constexpr std::size_t kMaxPattern = 1U << 16;
constexpr int kMaxDepth = 200;
constexpr std::int32_t kMaxRepeat = 1000000;

} // namespace

// Fragments of code use relative jumps, so that they can be wrapped and moved.
class RegExpParser
{
public:
    using Op = RegExp::Op;
    using Code = std::vector<RegExp::Instruction>;

    RegExpParser(std::u16string_view pattern, RegExp& target) : m_pattern(pattern), m_target(target) {}

    Result<void> run()
    {
        if (m_pattern.size() > kMaxPattern) return fault(kSyntaxError);
        countGroups();
        m_target.m_registers = 2 * (m_target.m_groups + 1);
        Code body = TRY_RESULT(alternatives());
        if (!atEnd()) return fault(kSyntaxError); // a closing parenthesis without an opening one
        auto& code = m_target.m_code;
        code.push_back({Op::Save, 0});
        code.insert(code.end(), body.begin(), body.end());
        code.push_back({Op::Save, 1});
        code.push_back({Op::Match});
        return {};
    }

private:
    struct Atom {
        Code code;
        bool quantifiable = true;
        bool simple = false; // exactly one character, no groups
    };

    [[nodiscard]] bool atEnd() const { return m_next >= m_pattern.size(); }
    [[nodiscard]] char16_t peek(std::size_t ahead = 0) const
    {
        return m_next + ahead < m_pattern.size() ? m_pattern[m_next + ahead] : u'\0';
    }
    bool accept(char16_t c)
    {
        if (atEnd() || peek() != c) return false;
        ++m_next;
        return true;
    }
    std::int32_t newRegister() { return static_cast<std::int32_t>(m_target.m_registers++); }

    // Back references may point forwards, so groups are counted first.
    void countGroups()
    {
        bool inClass = false;
        for (std::size_t i = 0; i < m_pattern.size(); ++i) {
            const char16_t c = m_pattern[i];
            if (c == u'\\')
                ++i;
            else if (c == u'[')
                inClass = true;
            else if (c == u']')
                inClass = false;
            else if (c == u'(' && !inClass && !(i + 1 < m_pattern.size() && m_pattern[i + 1] == u'?'))
                ++m_target.m_groups;
        }
    }

    Result<Code> alternatives()
    {
        if (++m_depth > kMaxDepth) return fault(kSyntaxError);
        std::vector<Code> branches;
        do {
            branches.push_back(TRY_RESULT(sequence()));
        } while (accept(u'|'));
        --m_depth;
        // Split to each branch in turn; each one jumps past the rest.
        Code joined = std::move(branches.back());
        branches.pop_back();
        while (!branches.empty()) {
            Code first = std::move(branches.back());
            branches.pop_back();
            Code both;
            both.reserve(first.size() + joined.size() + 2);
            both.push_back({Op::Split, static_cast<std::int32_t>(first.size()) + 2});
            both.insert(both.end(), first.begin(), first.end());
            both.push_back({Op::Jump, static_cast<std::int32_t>(joined.size()) + 1});
            both.insert(both.end(), joined.begin(), joined.end());
            joined = std::move(both);
            if (joined.size() > kMaxPattern * 8) return fault(kSyntaxError);
        }
        return joined;
    }

    Result<Code> sequence()
    {
        Code code;
        while (!atEnd() && peek() != u'|' && peek() != u')') {
            const std::size_t groupsBefore = m_groupsSeen;
            Atom next = TRY_RESULT(atom());
            const Code quantified = TRY_RESULT(quantify(std::move(next), groupsBefore));
            code.insert(code.end(), quantified.begin(), quantified.end());
        }
        return code;
    }

    Result<Atom> atom()
    {
        const char16_t c = peek();
        ++m_next;
        switch (c) {
        case u'^': return Atom{{{Op::Begin}}, false};
        case u'$': return Atom{{{Op::End}}, false};
        case u'.': return Atom{{{Op::Any}}, true, true};
        case u'(': return group();
        case u'[': return characterClass();
        case u'\\': return escape();
        case u'*':
        case u'+':
        case u'?': return fault(kUnexpectedQuantifier);
        case u'{':
            if (startsCount(m_next - 1)) return fault(kUnexpectedQuantifier);
            return single(c);
        default: return single(c);
        }
    }

    [[nodiscard]] Atom single(char16_t c) const
    {
        const char16_t stored = m_target.m_options.ignoreCase ? upperCase(c) : c;
        return Atom{{{Op::Character, stored}}, true, true};
    }

    Result<Atom> group()
    {
        char16_t look = 0;
        bool captures = true;
        if (peek() == u'?') {
            look = peek(1);
            if (look != u':' && look != u'=' && look != u'!') return fault(kSyntaxError);
            captures = false;
            m_next += 2;
        }
        const auto number = captures ? static_cast<std::int32_t>(++m_groupsSeen) : 0;
        Code body = TRY_RESULT(alternatives());
        if (!accept(u')')) return fault(kExpectedParenthesis);
        Atom made;
        if (captures) {
            made.code.push_back({Op::Save, 2 * number});
            made.code.insert(made.code.end(), body.begin(), body.end());
            made.code.push_back({Op::Save, 2 * number + 1});
        } else if (look == u':') {
            made.code = std::move(body);
        } else {
            const std::int32_t registers = newRegister();
            newRegister();
            const bool positive = look == u'=';
            made.code.push_back({positive ? Op::LookAhead : Op::LookNot, registers,
                                 static_cast<std::int32_t>(body.size()) + 2});
            made.code.insert(made.code.end(), body.begin(), body.end());
            made.code.push_back({positive ? Op::LookedAhead : Op::LookedNot, registers});
        }
        return made;
    }

    // {n}, {n,} or {n,m} at that place; anything else with a brace is the brace itself.
    [[nodiscard]] bool startsCount(std::size_t at) const
    {
        std::size_t i = at + 1;
        const auto digits = [&] {
            const std::size_t begin = i;
            while (i < m_pattern.size() && isDigit(m_pattern[i])) ++i;
            return i > begin;
        };
        if (at >= m_pattern.size() || m_pattern[at] != u'{' || !digits()) return false;
        if (i < m_pattern.size() && m_pattern[i] == u',') {
            ++i;
            digits();
        }
        return i < m_pattern.size() && m_pattern[i] == u'}';
    }

    std::int32_t number()
    {
        std::int32_t value = 0;
        for (; isDigit(peek()); ++m_next) value = std::min(kMaxRepeat, value * 10 + (peek() - u'0'));
        return value;
    }

    Result<Code> quantify(Atom atom, std::size_t groupsBefore)
    {
        std::int32_t minimum = 0;
        std::int32_t maximum = -1;
        if (accept(u'*')) {
        } else if (accept(u'+')) {
            minimum = 1;
        } else if (accept(u'?')) {
            maximum = 1;
        } else if (startsCount(m_next)) {
            ++m_next;
            minimum = maximum = number();
            if (accept(u',')) maximum = isDigit(peek()) ? number() : -1;
            ++m_next; // the brace
            if (maximum >= 0 && maximum < minimum) return fault(kSyntaxError);
        } else {
            return std::move(atom.code);
        }
        if (!atom.quantifiable) return fault(kUnexpectedQuantifier);
        const bool lazy = accept(u'?');
        const Op split = lazy ? Op::SplitAway : Op::Split;
        const auto size = static_cast<std::int32_t>(atom.code.size());
        Code code;
        if (maximum == 0) return code;
        if (minimum == 0 && maximum == 1) {
            code.push_back({split, size + 1});
            code.insert(code.end(), atom.code.begin(), atom.code.end());
            return code;
        }
        if (atom.simple && minimum <= 1 && maximum < 0) {
            // One character can neither match nothing nor hold groups: a bare loop does.
            if (minimum == 1) code = atom.code;
            code.push_back({split, size + 2});
            code.insert(code.end(), atom.code.begin(), atom.code.end());
            code.push_back({Op::Jump, -size - 1});
            return code;
        }
        const std::int32_t counter = newRegister();
        const std::int32_t position = newRegister();
        code.push_back({Op::Zero, counter});
        code.push_back({Op::Loop, counter, size + 5, minimum, maximum, lazy});
        code.push_back({Op::Save, position});
        code.push_back({Op::Clear, static_cast<std::int32_t>(2 * (groupsBefore + 1)),
                        static_cast<std::int32_t>(2 * (m_groupsSeen + 1))});
        code.insert(code.end(), atom.code.begin(), atom.code.end());
        code.push_back({Op::LeaveEmpty, position, counter, minimum});
        code.push_back({Op::Jump, -size - 4});
        return code;
    }

    std::optional<char16_t> fixedHex(std::size_t digits)
    {
        int value = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            const int digit = hexDigit(peek(i));
            if (digit < 0) return std::nullopt;
            value = value * 16 + digit;
        }
        m_next += digits;
        return static_cast<char16_t>(value);
    }

    // The character after a backslash where it means one character. The backslash is past.
    char16_t escapedCharacter()
    {
        const char16_t c = peek();
        ++m_next;
        switch (c) {
        case u't': return u'\t';
        case u'n': return u'\n';
        case u'r': return u'\r';
        case u'f': return u'\f';
        case u'v': return u'\v';
        case u'x': return fixedHex(2).value_or(u'x');
        case u'u': return fixedHex(4).value_or(u'u');
        case u'c':
            if (lowerCase(peek()) >= u'a' && lowerCase(peek()) <= u'z') return m_pattern[m_next++] & 31;
            return u'c';
        default: break;
        }
        if (c < u'0' || c > u'7') return c;
        int value = c - u'0';
        for (int i = 0; i < 2 && peek() >= u'0' && peek() <= u'7' && value * 8 + peek() - u'0' < 256; ++i) {
            value = value * 8 + (peek() - u'0');
            ++m_next;
        }
        return static_cast<char16_t>(value);
    }

    static bool addNamedRanges(char16_t name, std::vector<RegExp::Range>& ranges)
    {
        static const std::vector<RegExp::Range> kDigits = {{u'0', u'9'}};
        static const std::vector<RegExp::Range> kWords = {
            {u'0', u'9'}, {u'A', u'Z'}, {u'_', u'_'}, {u'a', u'z'}};
        static const std::vector<RegExp::Range> kSpaces = {
            {9, 13},          {u' ', u' '},     {0xA0, 0xA0},     {0x1680, 0x1680},
            {0x2000, 0x200A}, {0x2028, 0x2029}, {0x202F, 0x202F}, {0x3000, 0x3000}};
        const std::vector<RegExp::Range>* named = nullptr;
        switch (lowerCase(name)) {
        case u'd': named = &kDigits; break;
        case u'w': named = &kWords; break;
        case u's': named = &kSpaces; break;
        default: return false;
        }
        if (name == lowerCase(name)) {
            ranges.insert(ranges.end(), named->begin(), named->end());
            return true;
        }
        int from = 0;
        for (const RegExp::Range& range : *named) {
            if (range.first > from)
                ranges.push_back({static_cast<char16_t>(from), static_cast<char16_t>(range.first - 1)});
            from = range.last + 1;
        }
        ranges.push_back({static_cast<char16_t>(from), 0xFFFF});
        return true;
    }

    Atom classAtom(RegExp::CharacterClass found)
    {
        m_target.m_classes.push_back(std::move(found));
        return Atom{{{Op::Class, static_cast<std::int32_t>(m_target.m_classes.size()) - 1}}, true, true};
    }

    Result<Atom> escape()
    {
        if (atEnd()) return fault(kSyntaxError);
        const char16_t c = peek();
        if (c == u'b' || c == u'B') {
            ++m_next;
            return Atom{{{c == u'b' ? Op::WordBorder : Op::NoWordBorder}}, false};
        }
        RegExp::CharacterClass named;
        if (addNamedRanges(c, named.ranges)) {
            ++m_next;
            return classAtom(std::move(named));
        }
        if (c >= u'1' && c <= u'9') {
            // Two digits when there are that many groups.
            std::size_t group = static_cast<std::size_t>(c - u'0');
            std::size_t digits = 1;
            if (isDigit(peek(1)) && group * 10 + (peek(1) - u'0') <= m_target.m_groups) {
                group = group * 10 + static_cast<std::size_t>(peek(1) - u'0');
                digits = 2;
            }
            if (group <= m_target.m_groups) {
                m_next += digits;
                return Atom{{{Op::BackReference, static_cast<std::int32_t>(group)}}};
            }
        }
        return single(escapedCharacter());
    }

    Result<Atom> characterClass()
    {
        RegExp::CharacterClass made;
        made.negated = accept(u'^');
        for (;;) {
            if (atEnd()) return fault(kExpectedBracket);
            if (accept(u']')) break;
            bool isSet = false;
            const char16_t first = TRY_RESULT(classCharacter(made, isSet));
            const bool isRange = peek() == u'-' && m_next + 1 < m_pattern.size() && peek(1) != u']';
            if (!isRange) {
                if (!isSet) made.ranges.push_back({first, first});
                continue;
            }
            ++m_next;
            bool endsInSet = false;
            const char16_t last = TRY_RESULT(classCharacter(made, endsInSet));
            if (isSet || endsInSet) {
                // A set has no end to range from: the hyphen stands for itself.
                made.ranges.push_back({u'-', u'-'});
                if (!isSet) made.ranges.push_back({first, first});
                if (!endsInSet) made.ranges.push_back({last, last});
                continue;
            }
            if (last < first) return fault(kInvalidRange);
            made.ranges.push_back({first, last});
        }
        return classAtom(std::move(made));
    }

    Result<char16_t> classCharacter(RegExp::CharacterClass& into, bool& isSet)
    {
        const char16_t c = peek();
        ++m_next;
        if (c != u'\\') return c;
        if (atEnd()) return fault(kExpectedBracket);
        if (addNamedRanges(peek(), into.ranges)) {
            ++m_next;
            isSet = true;
            return u'\0';
        }
        if (accept(u'b')) return u'\b';
        return escapedCharacter();
    }

    std::u16string_view m_pattern;
    RegExp& m_target;
    std::size_t m_next = 0;
    std::size_t m_groupsSeen = 0;
    int m_depth = 0;
};

Result<RegExp> RegExp::compile(std::u16string_view pattern, Options options)
{
    RegExp made;
    made.m_options = options;
    CHECK_RESULT(RegExpParser(pattern, made).run());
    return made;
}

} // namespace script::vbscript
