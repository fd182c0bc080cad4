#include "script/vbscript/DateTime.h"
#include "script/vbscript/IntrinsicTools.h"

namespace script::vbscript
{

namespace
{

using Kind = Intrinsic::Kind;

constexpr std::int16_t kMajorVersion = 5;
constexpr std::int16_t kMinorVersion = 8;

Result<Value> varType(Engine& engine, ArgumentList a)
{
    // An object with a default value counts as that value.
    if (a[0].isObject() && a[0].asObject()) {
        if (auto value = engine.plain(a[0])) return Value::integer(varTypeNumber(value->type()));
    }
    return Value::integer(varTypeNumber(a[0].type()));
}

Result<Value> typeName(Engine&, ArgumentList a) { return Value::string(typeNameOf(a[0])); }
Result<Value> isArray(Engine&, ArgumentList a) { return Value::boolean(a[0].isArray()); }
Result<Value> isEmpty(Engine&, ArgumentList a) { return Value::boolean(a[0].isEmpty()); }
Result<Value> isNull(Engine&, ArgumentList a) { return Value::boolean(a[0].isNull()); }
Result<Value> isObject(Engine&, ArgumentList a) { return Value::boolean(a[0].isObject()); }

Result<Value> isNumeric(Engine& engine, ArgumentList a)
{
    Value value = a[0];
    if (value.isObject()) {
        auto held = engine.plain(value);
        if (!held) return Value::boolean(false);
        value = *held;
    }
    if (value.isString()) return Value::boolean(isNumericText(value.text(), engine.locale()));
    return Value::boolean(value.isNumeric() || value.isEmpty());
}

Result<Value> isDate(Engine& engine, ArgumentList a)
{
    Value value = a[0];
    if (value.isObject()) {
        auto held = engine.plain(value);
        if (!held) return Value::boolean(false);
        value = *held;
    }
    if (value.type() == VarType::Date) return Value::boolean(true);
    return Value::boolean(value.isString() &&
                          parseDate(value.text(), engine.locale(), currentYear()).has_value());
}

Result<Value> array(Engine&, ArgumentList a) { return Value::array(std::vector<Value>(a.begin(), a.end())); }

Result<std::int32_t> dimension(Engine& engine, ArgumentList a)
{
    if (!a[0].isArray()) return fault(error::kTypeMismatch);
    const std::int32_t which = TRY_RESULT(longArgument(engine, a, 1, 1));
    if (which < 1 || static_cast<std::size_t>(which) > a[0].asArray()->bounds.size())
        return fault(error::kSubscript);
    return which;
}

Result<Value> lBound(Engine& engine, ArgumentList a)
{
    TRY_RESULT(dimension(engine, a));
    return Value::longInteger(0);
}

Result<Value> uBound(Engine& engine, ArgumentList a)
{
    const std::int32_t which = TRY_RESULT(dimension(engine, a));
    return Value::longInteger(a[0].asArray()->bounds[static_cast<std::size_t>(which - 1)]);
}

Result<Value> getRef(Engine& engine, ArgumentList a)
{
    const auto name = TRY_RESULT(toText(a[0], engine.locale()));
    return engine.functionReference(name);
}

Result<Value> createObject(Engine& engine, ArgumentList a)
{
    const auto name = TRY_RESULT(toText(a[0], engine.locale()));
    if (const auto made = engine.createObject(name)) return Value::object(made.get());
    return fault(error::kCannotCreate, name);
}

Result<Value> getObject(Engine& engine, ArgumentList a)
{
    const auto name = given(a, 0) ? TRY_RESULT(toText(a[0], engine.locale())) : std::u16string();
    return fault(error::kCannotCreate, name);
}

Result<Value> scriptEngine(Engine&, ArgumentList) { return Value::string(u"VBScript"); }
Result<Value> majorVersion(Engine&, ArgumentList) { return Value::integer(kMajorVersion); }
Result<Value> minorVersion(Engine&, ArgumentList) { return Value::integer(kMinorVersion); }
Result<Value> buildVersion(Engine&, ArgumentList) { return Value::longInteger(16384); }
Result<Value> getLocale(Engine& engine, ArgumentList) { return Value::longInteger(engine.locale().id); }

Result<Value> setLocale(Engine& engine, ArgumentList a)
{
    const std::int32_t before = engine.locale().id;
    const Locale* found = nullptr;
    if (given(a, 0) && a[0].isString() && !parseNumber(a[0].text(), engine.locale())) {
        const auto name = folded(a[0].text());
        if (name.substr(0, 2) == u"en") found = &Locale::english();
        if (name.substr(0, 2) == u"ru") found = &Locale::russian();
    } else {
        const std::int32_t id = TRY_RESULT(longArgument(engine, a, 0, before));
        found = Locale::byId(id == 0 ? before : id);
    }
    if (!found) return fault(error::kUnknownLocale);
    engine.setLocale(*found);
    return Value::longInteger(before);
}

Result<std::u16string> textArgument(Engine& engine, ArgumentList a, std::size_t index)
{
    if (!given(a, index)) return std::u16string();
    return toText(a[index], engine.locale());
}

// MsgBox(prompt [, buttons [, title [, helpfile, context]]])
Result<Value> msgBox(Engine& engine, ArgumentList a)
{
    const auto text = TRY_RESULT(textArgument(engine, a, 0));
    const std::int32_t buttons = TRY_RESULT(longArgument(engine, a, 1, 0));
    const auto title = TRY_RESULT(textArgument(engine, a, 2));
    const int pressed = engine.host().messageBox(text, buttons, title.empty() ? u"VBScript" : title);
    return Value::integer(static_cast<std::int16_t>(pressed));
}

// InputBox(prompt [, title [, default [, x, y [, helpfile, context]]]])
Result<Value> inputBox(Engine& engine, ArgumentList a)
{
    const auto text = TRY_RESULT(textArgument(engine, a, 0));
    const auto title = TRY_RESULT(textArgument(engine, a, 1));
    const auto preset = TRY_RESULT(textArgument(engine, a, 2));
    const auto answer = engine.host().inputBox(text, title, preset);
    // A cancelled box answers Empty, which also reads as "".
    return answer ? Value::string(*answer) : Value();
}

constexpr Intrinsic kTable[] = {
    {u"VarType", varType, 1, 1, Kind::Raw},
    {u"TypeName", typeName, 1, 1, Kind::Raw},
    {u"IsArray", isArray, 1, 1, Kind::Raw},
    {u"IsDate", isDate, 1, 1, Kind::Raw},
    {u"IsEmpty", isEmpty, 1, 1, Kind::Raw},
    {u"IsNull", isNull, 1, 1, Kind::Raw},
    {u"IsNumeric", isNumeric, 1, 1, Kind::Raw},
    {u"IsObject", isObject, 1, 1, Kind::Raw},
    {u"Array", array, 0, -1, Kind::Raw},
    {u"LBound", lBound, 1, 2},
    {u"UBound", uBound, 1, 2},
    {u"GetRef", getRef, 1, 1},
    {u"CreateObject", createObject, 1, 2},
    {u"GetObject", getObject, 0, 2},
    {u"ScriptEngine", scriptEngine, 0, 0},
    {u"ScriptEngineMajorVersion", majorVersion, 0, 0},
    {u"ScriptEngineMinorVersion", minorVersion, 0, 0},
    {u"ScriptEngineBuildVersion", buildVersion, 0, 0},
    {u"GetLocale", getLocale, 0, 0},
    {u"SetLocale", setLocale, 0, 1},
    {u"MsgBox", msgBox, 1, 5},
    {u"InputBox", inputBox, 1, 7},
    {u"Eval", nullptr, 1, 1, Kind::Eval},
    {u"Execute", nullptr, 1, 1, Kind::Execute},
    {u"ExecuteGlobal", nullptr, 1, 1, Kind::ExecuteGlobal},
};

} // namespace

std::span<const Intrinsic> variantIntrinsics() { return kTable; }

std::vector<IntrinsicConstant> intrinsicConstants()
{
    std::vector<IntrinsicConstant> all = {
        {u"vbCr", Value::string(u"\r")},
        {u"vbLf", Value::string(u"\n")},
        {u"vbCrLf", Value::string(u"\r\n")},
        {u"vbNewLine", Value::string(u"\r\n")},
        {u"vbFormFeed", Value::string(u"\f")},
        {u"vbTab", Value::string(u"\t")},
        {u"vbVerticalTab", Value::string(u"\v")},
        {u"vbNullChar", Value::string(std::u16string_view(u"\0", 1))},
        {u"vbNullString", Value::string(u"")},
        {u"vbObjectError", Value::longInteger(-2147221504)},
    };
    struct Number {
        std::u16string_view name;
        std::int32_t value;
    };
    static constexpr Number kNumbers[] = {
        {u"vbBlack", 0},
        {u"vbRed", 0xFF},
        {u"vbGreen", 0xFF00},
        {u"vbYellow", 0xFFFF},
        {u"vbBlue", 0xFF0000},
        {u"vbMagenta", 0xFF00FF},
        {u"vbCyan", 0xFFFF00},
        {u"vbWhite", 0xFFFFFF},
        {u"vbBinaryCompare", 0},
        {u"vbTextCompare", 1},
        {u"vbDatabaseCompare", 2},
        {u"vbSunday", 1},
        {u"vbMonday", 2},
        {u"vbTuesday", 3},
        {u"vbWednesday", 4},
        {u"vbThursday", 5},
        {u"vbFriday", 6},
        {u"vbSaturday", 7},
        {u"vbUseSystem", 0},
        {u"vbUseSystemDayOfWeek", 0},
        {u"vbFirstJan1", 1},
        {u"vbFirstFourDays", 2},
        {u"vbFirstFullWeek", 3},
        {u"vbGeneralDate", 0},
        {u"vbLongDate", 1},
        {u"vbShortDate", 2},
        {u"vbLongTime", 3},
        {u"vbShortTime", 4},
        {u"vbOKOnly", 0},
        {u"vbOKCancel", 1},
        {u"vbAbortRetryIgnore", 2},
        {u"vbYesNoCancel", 3},
        {u"vbYesNo", 4},
        {u"vbRetryCancel", 5},
        {u"vbCritical", 16},
        {u"vbQuestion", 32},
        {u"vbExclamation", 48},
        {u"vbInformation", 64},
        {u"vbDefaultButton1", 0},
        {u"vbDefaultButton2", 256},
        {u"vbDefaultButton3", 512},
        {u"vbDefaultButton4", 768},
        {u"vbApplicationModal", 0},
        {u"vbSystemModal", 4096},
        {u"vbMsgBoxHelpButton", 16384},
        {u"vbMsgBoxSetForeground", 65536},
        {u"vbMsgBoxRight", 524288},
        {u"vbMsgBoxRtlReading", 1048576},
        {u"vbOK", 1},
        {u"vbCancel", 2},
        {u"vbAbort", 3},
        {u"vbRetry", 4},
        {u"vbIgnore", 5},
        {u"vbYes", 6},
        {u"vbNo", 7},
        {u"vbUseDefault", -2},
        {u"vbTrue", -1},
        {u"vbFalse", 0},
        {u"vbEmpty", 0},
        {u"vbNull", 1},
        {u"vbInteger", 2},
        {u"vbLong", 3},
        {u"vbSingle", 4},
        {u"vbDouble", 5},
        {u"vbCurrency", 6},
        {u"vbDate", 7},
        {u"vbString", 8},
        {u"vbObject", 9},
        {u"vbError", 10},
        {u"vbBoolean", 11},
        {u"vbVariant", 12},
        {u"vbDataObject", 13},
        {u"vbDecimal", 14},
        {u"vbByte", 17},
        {u"vbArray", 8192},
    };
    for (const Number& number : kNumbers) all.push_back({number.name, Value::number(number.value)});
    return all;
}

} // namespace script::vbscript
