#pragma once

#include "flash/avm2/bindings/Fields.h"

// A word of the tables here.
#define QT_NO_KEYWORDS
#include <QLocale>
#include <QString>

#include <string>
#include <string_view>

// flash.globalization: what every class of it has of its locale.
namespace flash::avm2::globalization
{

/// What the last call came to, as scripts read it.
namespace status
{
inline constexpr const char* kNoError = "noError";
inline constexpr const char* kFallback = "usingFallbackWarning";
inline constexpr const char* kDefault = "usingDefaultWarning";
inline constexpr const char* kParseError = "parseError";
inline constexpr const char* kUnsupported = "unsupportedError";
inline constexpr const char* kIllegal = "illegalArgumentError";
inline constexpr const char* kIndex = "indexOutOfBoundsError";
} // namespace status

class LocaleObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    LocaleObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    QLocale locale = QLocale::c();
    std::u16string requested, actual; ///< names
    const char* last = status::kNoError;
    // ---- of the formatters ----
    std::u16string pattern;                      ///< of dates, once a script has set one
    std::u16string dateStyle, timeStyle;         ///< of dates
    std::u16string currencyCode, currencySymbol; ///< of currencies
};

LocaleObject& localeSelf(Call& call);
/// Takes the locale that the first argument names; "i-default" stands for the user's own. What is not known
/// becomes the nearest that is.
LocaleObject& takeLocale(Call& call);
inline Value textValue(Vm& vm, const QString& text) { return Value(vm.string(text.toStdU16String())); }
inline QString qtext(std::u16string_view text) { return QString::fromStdU16String(std::u16string(text)); }
/// A text argument. @throws 2007
inline QString qtextArg(Call& call, std::uint32_t i, std::string_view parameter)
{
    return qtext(textArg(call, i, parameter));
}
Value newTexts(Vm& vm, const QStringList& texts);

Value requestedName(Call& call);
Value actualName(Call& call);
Value lastStatus(Call& call);
Value availableNames(Call& call);

/// What all but LocaleID begin their members with.
#define GLOBALIZATION_MEMBERS                                                                                \
    {"requestedLocaleIDName", NativeMember::Kind::Getter, &requestedName, 0, 0, nullptr, "String"},          \
        {"actualLocaleIDName", NativeMember::Kind::Getter, &actualName, 0, 0, nullptr, "String"},            \
        {"lastOperationStatus", NativeMember::Kind::Getter, &lastStatus, 0, 0, nullptr, "String"},           \
    {                                                                                                        \
        "getAvailableLocaleIDNames", NativeMember::Kind::Static, &availableNames, 0, 0                       \
    }

NativeLibrary textLibrary();
NativeLibrary numberLibrary();
NativeLibrary dateLibrary();

} // namespace flash::avm2::globalization
