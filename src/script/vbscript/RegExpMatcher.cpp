#include "script/vbscript/Errors.h"
#include "script/vbscript/RegExp.h"
#include "script/vbscript/Text.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

constexpr std::uint64_t kMaxSteps = 10'000'000; // a fraction of a second
constexpr std::uint64_t kStepsBetweenWatches = 1'000'000;
constexpr std::size_t kMaxStack = 8'000'000; // entries

bool isWordCharacter(char16_t c)
{
    return isDigit(c) || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
}

} // namespace

// Registers hold captures, loop counters and positions. Every change of one is noted on the stack between the
// branches still to try, and undone on the way back.
class RegExpMatcher
{
public:
    using Op = RegExp::Op;

    RegExpMatcher(const RegExp& program, std::u16string_view text, const RegExp::Watch& watch)
        : m_program(program), m_text(text), m_watch(watch), m_registers(program.m_registers, -1)
    {
    }

    Result<bool> matchAt(std::size_t start)
    {
        std::fill(m_registers.begin(), m_registers.end(), -1);
        m_stack.clear();
        m_position = start;
        m_at = 0;
        for (;;) {
            if (++m_steps % kStepsBetweenWatches == 0) {
                if (m_steps > kMaxSteps) return fault(error::kOutOfMemory, u"RegExp");
                if (m_watch) CHECK_RESULT(m_watch());
            }
            if (m_stack.size() > kMaxStack) return fault(error::kOutOfMemory, u"RegExp");
            const auto& instruction = m_program.m_code[m_at];
            if (instruction.op == Op::Match) return true;
            if (!step(instruction) && !backtrack()) return false;
        }
    }
    [[nodiscard]] const std::vector<std::int64_t>& registers() const { return m_registers; }

private:
    static constexpr std::int32_t kBranch = -1;
    struct Entry {
        std::int32_t reg;   // kBranch, or the register to restore
        std::uint32_t at;   // of a branch
        std::int64_t value; // the position of a branch, or the register's old value
    };

    void set(std::int32_t reg, std::int64_t value)
    {
        auto& place = m_registers[static_cast<std::size_t>(reg)];
        m_stack.push_back({reg, 0, place});
        place = value;
    }
    void branch(std::int32_t distance)
    {
        m_stack.push_back({kBranch, static_cast<std::uint32_t>(static_cast<std::int32_t>(m_at) + distance),
                           static_cast<std::int64_t>(m_position)});
    }
    void jump(std::int32_t distance)
    {
        m_at = static_cast<std::uint32_t>(static_cast<std::int32_t>(m_at) + distance);
    }

    bool backtrack()
    {
        while (!m_stack.empty()) {
            const Entry entry = m_stack.back();
            m_stack.pop_back();
            if (entry.reg == kBranch) {
                m_at = entry.at;
                m_position = static_cast<std::size_t>(entry.value);
                return true;
            }
            m_registers[static_cast<std::size_t>(entry.reg)] = entry.value;
        }
        return false;
    }

    [[nodiscard]] bool inClass(const RegExp::CharacterClass& set, char16_t c) const
    {
        const auto contains = [&](char16_t one) {
            return std::any_of(set.ranges.begin(), set.ranges.end(), [one](const RegExp::Range& range) {
                return one >= range.first && one <= range.last;
            });
        };
        bool found = contains(c);
        if (!found && m_program.m_options.ignoreCase)
            found = contains(lowerCase(c)) || contains(upperCase(c));
        return found != set.negated;
    }

    [[nodiscard]] bool atWordBorder() const
    {
        const bool before = m_position > 0 && isWordCharacter(m_text[m_position - 1]);
        const bool after = m_position < m_text.size() && isWordCharacter(m_text[m_position]);
        return before != after;
    }

    bool consume(bool matches)
    {
        if (!matches) return false;
        ++m_position;
        ++m_at;
        return true;
    }

    bool pass(bool holds)
    {
        if (holds) ++m_at;
        return holds;
    }

    bool backReference(std::int32_t group)
    {
        const std::int64_t begin = m_registers[static_cast<std::size_t>(2 * group)];
        const std::int64_t end = m_registers[static_cast<std::size_t>(2 * group + 1)];
        if (begin < 0 || end < 0) return pass(true); // a group without a match matches nothing
        const auto what =
            m_text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
        const auto here = m_text.substr(m_position, what.size());
        const bool same = m_program.m_options.ignoreCase ? sameText(what, here) : what == here;
        if (!same) return false;
        m_steps += what.size() / 64; // long repeats cost time as well
        m_position += what.size();
        ++m_at;
        return true;
    }

    bool loop(const RegExp::Instruction& i)
    {
        const std::int64_t count = m_registers[static_cast<std::size_t>(i.a)];
        const bool mayEnter = i.maximum < 0 || count < i.maximum;
        const bool mustEnter = count < i.minimum;
        if (!mayEnter) {
            jump(i.b);
            return true;
        }
        if (!mustEnter && i.lazy) {
            // The way back in counts one iteration; the branch leads to a copy of this decision with lazy
            // over.
            m_stack.push_back({kBranch, m_at + 1, static_cast<std::int64_t>(m_position)});
            jump(i.b);
            return true;
        }
        if (!mustEnter) branch(i.b);
        ++m_at;
        return true;
    }

    bool step(const RegExp::Instruction& i)
    {
        switch (i.op) {
        case Op::Character: {
            if (m_position >= m_text.size()) return false;
            const char16_t c = m_text[m_position];
            return consume((m_program.m_options.ignoreCase ? upperCase(c) : c) == static_cast<char16_t>(i.a));
        }
        case Op::Any: return consume(m_position < m_text.size() && m_text[m_position] != u'\n');
        case Op::Class:
            return consume(m_position < m_text.size() &&
                           inClass(m_program.m_classes[static_cast<std::size_t>(i.a)], m_text[m_position]));
        case Op::Begin:
            return pass(m_position == 0 ||
                        (m_program.m_options.multiline && m_text[m_position - 1] == u'\n'));
        case Op::End:
            return pass(m_position == m_text.size() ||
                        (m_program.m_options.multiline && m_text[m_position] == u'\n'));
        case Op::WordBorder: return pass(atWordBorder());
        case Op::NoWordBorder: return pass(!atWordBorder());
        case Op::BackReference: return backReference(i.a);
        case Op::Jump: jump(i.a); return true;
        case Op::Split:
            branch(i.a);
            ++m_at;
            return true;
        case Op::SplitAway:
            branch(1);
            jump(i.a);
            return true;
        case Op::Save:
            set(i.a, static_cast<std::int64_t>(m_position));
            ++m_at;
            return true;
        case Op::Clear:
            for (std::int32_t reg = i.a; reg < i.b; ++reg) {
                if (m_registers[static_cast<std::size_t>(reg)] >= 0) set(reg, -1);
            }
            ++m_at;
            return true;
        case Op::Zero:
            set(i.a, 0);
            ++m_at;
            return true;
        case Op::Loop: return loop(i);
        case Op::LeaveEmpty: {
            const std::int64_t count = m_registers[static_cast<std::size_t>(i.b)] + 1;
            const bool empty =
                m_registers[static_cast<std::size_t>(i.a)] == static_cast<std::int64_t>(m_position);
            if (empty && count > i.minimum) return false;
            set(i.b, count);
            ++m_at;
            return true;
        }
        case Op::LookAhead:
        case Op::LookNot: {
            const auto height = static_cast<std::int64_t>(m_stack.size());
            if (i.op == Op::LookNot) branch(i.b);
            set(i.a, height);
            set(i.a + 1, static_cast<std::int64_t>(m_position));
            ++m_at;
            return true;
        }
        case Op::LookedAhead: {
            // Its own branches are not tried again; what it captured can still be undone.
            const auto height = static_cast<std::ptrdiff_t>(m_registers[static_cast<std::size_t>(i.a)]);
            m_position = static_cast<std::size_t>(m_registers[static_cast<std::size_t>(i.a + 1)]);
            m_stack.erase(std::remove_if(m_stack.begin() + height, m_stack.end(),
                                         [](const Entry& entry) { return entry.reg == kBranch; }),
                          m_stack.end());
            ++m_at;
            return true;
        }
        case Op::LookedNot: {
            const auto height = static_cast<std::size_t>(m_registers[static_cast<std::size_t>(i.a)]);
            while (m_stack.size() > height) {
                const Entry entry = m_stack.back();
                m_stack.pop_back();
                if (entry.reg != kBranch) m_registers[static_cast<std::size_t>(entry.reg)] = entry.value;
            }
            return false;
        }
        case Op::Match: return true;
        }
        return false;
    }

    const RegExp& m_program;
    std::u16string_view m_text;
    const RegExp::Watch& m_watch;
    std::vector<std::int64_t> m_registers;
    std::vector<Entry> m_stack;
    std::size_t m_position = 0;
    std::uint32_t m_at = 0;
    std::uint64_t m_steps = 0;
};

Result<std::optional<RegExp::Captures>> RegExp::search(std::u16string_view text, std::size_t from,
                                                       const Watch& watch) const
{
    RegExpMatcher matcher(*this, text, watch);
    for (std::size_t start = from; start <= text.size(); ++start) {
        const bool found = TRY_RESULT(matcher.matchAt(start));
        if (!found) continue;
        const auto& registers = matcher.registers();
        return std::optional<Captures>(
            Captures(registers.begin(), registers.begin() + static_cast<std::ptrdiff_t>(2 * (m_groups + 1))));
    }
    return std::optional<Captures>();
}

} // namespace script::vbscript
