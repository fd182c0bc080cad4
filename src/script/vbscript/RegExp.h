#pragma once

#include "script/Dispatch.h"

namespace script::vbscript
{

/// A regular expression in the syntax of ECMAScript's third edition, matched by backtracking over a stack of
/// its own: neither a deep nor an exponential pattern can harm more than its budget of steps.
class RegExp
{
public:
    struct Options {
        bool ignoreCase = false;
        bool multiline = false;
    };
    /// Begin and end of the match and of each group; -1 for groups that took no part.
    using Captures = std::vector<std::int64_t>;
    /// Called every million steps; an error ends the search.
    using Watch = std::function<Result<void>()>;

    /// @errors 5017 to 5021
    static Result<RegExp> compile(std::u16string_view pattern, Options options);

    /// Finds the first match at or after `from`.
    /// @errors what `watch` reports; Out of memory (7) past the budget
    Result<std::optional<Captures>> search(std::u16string_view text, std::size_t from,
                                           const Watch& watch) const;
    [[nodiscard]] std::size_t groups() const { return m_groups; }

private:
    friend class RegExpParser;
    friend class RegExpMatcher;

    enum class Op : std::uint8_t {
        Character,
        Any,
        Class, // a: of m_classes
        Begin,
        End,
        WordBorder,
        NoWordBorder,
        BackReference, // a: group
        Jump,          // a: distance
        Split,         // first the next instruction, then a away
        SplitAway,     // first a away, then the next instruction
        Save,          // a: register, takes the position
        Clear,         // a..b: registers, set to -1
        Zero,          // a: register
        Loop,          // a: counter register, b: away past the loop, minimum and maximum, lazy
        LeaveEmpty,    // fails when the position is that of register a; b: counter register or -1, minimum
        LookAhead,     // a: registers for the stack's height and the position
        LookedAhead,
        LookNot, // b: away past it
        LookedNot,
        Match,
    };
    struct Instruction {
        Op op = Op::Match;
        std::int32_t a = 0;
        std::int32_t b = 0;
        std::int32_t minimum = 0;
        std::int32_t maximum = -1; // no limit
        bool lazy = false;
    };
    struct Range {
        char16_t first;
        char16_t last;
    };
    struct CharacterClass {
        std::vector<Range> ranges;
        bool negated = false;
    };

    std::vector<Instruction> m_code;
    std::vector<CharacterClass> m_classes;
    std::size_t m_groups = 0; // without the whole match
    std::size_t m_registers = 2;
    Options m_options;
};

} // namespace script::vbscript
