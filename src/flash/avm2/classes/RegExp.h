#pragma once

#include "flash/avm2/classes/Library.h"

#include <memory>
#include <utility>
#include <vector>

namespace flash::avm2::classes
{

/// A regular expression.
class RegExpObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    RegExpObject(Traits* traits, Object* proto);
    ~RegExpObject() override;

    /// Start and end of the whole and of each group; -1 for what took no part. Empty: no match.
    using Groups = std::vector<std::pair<int, int>>;
    Groups find(Vm& vm, std::u16string_view text, std::size_t from);
    void compile(std::u16string source, std::u16string_view flags);

    Value exec(Vm& vm, const std::u16string& text);
    Value match(Vm& vm, const std::u16string& text);
    Value search(Vm& vm, const std::u16string& text);
    Value replace(Vm& vm, const std::u16string& text, Value with);
    Value split(Vm& vm, const std::u16string& text, double limit);
    /// `$1`, `$&` and their like.
    static std::u16string expand(std::u16string_view pattern, std::u16string_view text,
                                 std::span<const std::pair<int, int>> groups);

    std::u16string source;
    bool isGlobal = false, ignoresCase = false, isMultiline = false, dotsAll = false, isExtended = false;
    double lastIndex = 0;

private:
    struct Compiled;
    Value resultOf(Vm& vm, const std::u16string& text, const Groups& groups);
    std::unique_ptr<Compiled> m_compiled;
};

} // namespace flash::avm2::classes
