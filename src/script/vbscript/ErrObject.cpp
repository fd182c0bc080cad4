#include "script/vbscript/ErrObject.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <array>

namespace script::vbscript
{

namespace
{

enum Member { kNumber, kDescription, kSource, kHelpFile, kHelpContext, kRaise, kClear };
constexpr std::array<std::u16string_view, 7> kNames = {u"number",      u"description", u"source", u"helpfile",
                                                       u"helpcontext", u"raise",       u"clear"};

} // namespace

std::optional<Dispatch::MemberId> ErrObject::memberId(std::u16string_view name) const
{
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        if (sameText(name, kNames[i])) return static_cast<MemberId>(i); // Number is the default member
    }
    return std::nullopt;
}

Result<Value> ErrObject::invoke(MemberId member, Access access, Arguments arguments)
{
    if (!m_engine) return fault(error::kNoSuchMember);
    ErrorState& state = m_engine->error();
    const Locale& locale = m_engine->locale();
    if (member == kRaise) return raise(arguments);
    if (member == kClear) {
        state = ErrorState();
        return Value();
    }
    if (access == Access::Put) {
        if (arguments.size() != 1) return fault(error::kWrongArguments);
        switch (member) {
        case kNumber: state.number = numberOfHresult(TRY_RESULT(toLong(arguments[0], locale))); break;
        case kDescription: state.description = TRY_RESULT(toText(arguments[0], locale)); break;
        case kSource: state.source = TRY_RESULT(toText(arguments[0], locale)); break;
        case kHelpFile: state.helpFile = TRY_RESULT(toText(arguments[0], locale)); break;
        default: state.helpContext = TRY_RESULT(toLong(arguments[0], locale)); break;
        }
        return Value();
    }
    if (!arguments.empty()) return fault(error::kWrongArguments);
    switch (member) {
    case kNumber: return Value::longInteger(state.number);
    case kDescription: return Value::string(state.description);
    case kSource: return Value::string(state.source);
    case kHelpFile: return Value::string(state.helpFile);
    default: return Value::longInteger(state.helpContext);
    }
}

// Raise number [, source [, description [, helpFile [, helpContext]]]]
Result<Value> ErrObject::raise(Arguments arguments)
{
    if (arguments.empty() || arguments.size() > 5) return fault(error::kWrongArguments);
    const Locale& locale = m_engine->locale();
    const int number = numberOfHresult(TRY_RESULT(toLong(arguments[0], locale)));
    if (number == 0 || number > UINT16_MAX) return fault(error::kInvalidCall);
    auto raised = fault(number);
    Fault& details = *raised.value();
    const auto given = [&](std::size_t index) {
        return index < arguments.size() && !arguments[index].isMissing();
    };
    // What is not given stays as the last error left it.
    const ErrorState& last = m_engine->error();
    details.source = given(1) ? TRY_RESULT(toText(arguments[1], locale)) : last.source;
    details.description = given(2) ? TRY_RESULT(toText(arguments[2], locale)) : last.description;
    details.helpFile = given(3) ? TRY_RESULT(toText(arguments[3], locale)) : last.helpFile;
    details.helpContext = given(4) ? TRY_RESULT(toLong(arguments[4], locale)) : last.helpContext;
    // The number's own text, so that nothing is put behind it later.
    if (details.description.empty()) details.description = errorText(number, m_engine->language());
    return raised;
}

} // namespace script::vbscript
