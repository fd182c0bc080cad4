#include "flash/avm2/bindings/Globalization.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/interpreter/Collections.h"

#include <QCollator>

#include <algorithm>
#include <set>

// Locales, and texts as they are compared and written in them.
namespace flash::avm2::globalization
{

using classes::allocateNative;
using Kind = NativeMember::Kind;

LocaleObject& localeSelf(Call& call) { return classes::selfAs<LocaleObject>(call, "flash.globalization"); }

namespace
{

constexpr std::u16string_view kDefaultName = u"i-default";

/// The parts of a name: language, script, region, variant, and what follows the "@".
struct LocaleName {
    QString language, script, region, variant;
    QList<std::pair<QString, QString>> keys;
};
LocaleName partsOf(const QString& name)
{
    LocaleName parts;
    const auto at = name.indexOf('@');
    QString plain = at < 0 ? name : name.left(at);
    const QStringList words = plain.replace('_', '-').split('-');
    parts.language = words.value(0).toLower();
    for (qsizetype i = 1; i < words.size(); ++i) {
        const QString& word = words[i];
        if (word.size() == 4 && word[0].isLetter() && parts.script.isEmpty() && parts.region.isEmpty())
            parts.script = word.left(1).toUpper() + word.mid(1).toLower();
        else if ((word.size() == 2 || (word.size() == 3 && word[0].isDigit())) && parts.region.isEmpty())
            parts.region = word.toUpper();
        else if (!word.isEmpty())
            parts.variant += (parts.variant.isEmpty() ? "" : "-") + word;
    }
    if (at < 0) return parts;
    for (const QString& pair : name.mid(at + 1).split(';', Qt::SkipEmptyParts)) {
        const auto sign = pair.indexOf('=');
        if (sign > 0) parts.keys.emplaceBack(pair.left(sign), pair.mid(sign + 1));
    }
    return parts;
}

QString nameOf(const LocaleName& parts)
{
    QStringList words{parts.language};
    for (const QString* word : {&parts.script, &parts.region})
        if (!word->isEmpty()) words += *word;
    return words.join('-');
}

QLocale systemLocale(Vm& vm)
{
    const QLocale known(QString::fromStdString(Player::of(vm).inputs().language));
    return known.language() == QLocale::C ? QLocale(QLocale::English) : known;
}

} // namespace

LocaleObject& takeLocale(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.requested = textArg(call, 0, "requestedLocaleIDName");
    const LocaleName parts = partsOf(qtext(self.requested));
    const QLocale found(nameOf(parts));
    if (self.requested == kDefaultName) {
        self.locale = systemLocale(call.vm);
        self.actual = self.locale.bcp47Name().toStdU16String();
    } else if (parts.language.isEmpty() || found.language() == QLocale::C) {
        self.locale = systemLocale(call.vm);
        self.actual = self.locale.bcp47Name().toStdU16String();
        self.last = status::kDefault;
    } else {
        self.locale = found;
        const bool hasRegion =
            parts.region.isEmpty() || QLocale::territoryToCode(found.territory()) == parts.region;
        LocaleName actual = parts;
        if (!hasRegion) actual.region.clear();
        self.actual = nameOf(actual).toStdU16String();
        if (!hasRegion) self.last = status::kFallback;
    }
    return self;
}

Value newTexts(Vm& vm, const QStringList& texts)
{
    Root<Object> list(vm.heap(),
                      vm.construct(Value(vm.vectorOf(vm.classes().string->instances)), {}).asObject());
    for (const QString& text : texts) vm.callPublic(Value(list.get()), "push", {textValue(vm, text)});
    return Value(list.get());
}

Value requestedName(Call& call) { return Value(call.vm.string(localeSelf(call).requested)); }
Value actualName(Call& call) { return Value(call.vm.string(localeSelf(call).actual)); }
Value lastStatus(Call& call) { return Value(call.vm.string(std::string_view(localeSelf(call).last))); }

Value availableNames(Call& call)
{
    std::set<QString> names;
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory))
        if (locale.language() != QLocale::C) names.insert(locale.bcp47Name());
    return newTexts(call.vm, QStringList(names.begin(), names.end()));
}

namespace
{

// ---- LocaleID ----

Value makeLocale(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.requested = textArg(call, 0, "name");
    const LocaleName parts = partsOf(qtext(self.requested));
    self.locale = self.requested == kDefaultName ? systemLocale(call.vm) : QLocale(nameOf(parts));
    const auto isWord = [](QChar unit) { return unit.isLetterOrNumber() && unit.unicode() < 128; };
    if (parts.language.isEmpty() || !std::ranges::all_of(parts.language, isWord))
        self.last = status::kIllegal;
    return {};
}
LocaleName selfParts(Call& call)
{
    LocaleObject& self = localeSelf(call);
    if (self.last != status::kIllegal) self.last = status::kNoError;
    const QString name = self.requested == kDefaultName ? self.locale.bcp47Name() : qtext(self.requested);
    return partsOf(name);
}
Value localeName(Call& call)
{
    const LocaleObject& self = localeSelf(call);
    QString name = qtext(self.requested);
    return textValue(call.vm, name.replace('_', '-'));
}
Value language(Call& call) { return textValue(call.vm, selfParts(call).language); }
Value script(Call& call)
{
    const LocaleName parts = selfParts(call);
    if (!parts.script.isEmpty()) return textValue(call.vm, parts.script);
    const QLocale& locale = localeSelf(call).locale;
    return textValue(call.vm, QLocale::scriptToCode(locale.script()));
}
Value region(Call& call) { return textValue(call.vm, selfParts(call).region); }
Value variant(Call& call) { return textValue(call.vm, selfParts(call).variant); }
Value keysAndValues(Call& call)
{
    const LocaleName parts = selfParts(call);
    Root<Object> made(call.vm.heap(), call.vm.construct(Value(call.vm.classes().object), {}).asObject());
    for (const auto& [key, value] : parts.keys)
        call.vm.setPublic(Value(made.get()), key.toStdString(), textValue(call.vm, value));
    return Value(made.get());
}
Value isRightToLeft(Call& call)
{
    static_cast<void>(selfParts(call));
    return localeSelf(call).locale.textDirection() == Qt::RightToLeft;
}
/// Of what there is, in the order in which it is wanted.
Value preferredLocales(Call& call)
{
    const auto listed = [&](std::uint32_t i) {
        QStringList names;
        auto* list = as<VectorObject>(call.arg(i));
        for (std::uint32_t at = 0; list != nullptr && at < list->items.size(); ++at) {
            call.vm.check();
            names += qtext(call.vm.text(list->items[at]));
        }
        return names;
    };
    const QStringList want = listed(0), have = listed(1);
    QStringList found;
    constexpr qsizetype kMost = 1000;
    for (const QString& wanted : want.mid(0, kMost)) {
        const LocaleName parts = partsOf(wanted);
        // The same first, then the same language.
        for (const bool exact : {true, false}) {
            for (const QString& name : have.mid(0, kMost)) {
                const LocaleName other = partsOf(name);
                const bool fits = exact ? nameOf(other) == nameOf(parts) : other.language == parts.language;
                if (fits && !found.contains(name)) found += name;
            }
            call.vm.check();
        }
    }
    return newTexts(call.vm, found);
}

constexpr NativeMember kLocale[] = {
    {"name", Kind::Getter, &localeName, 0, 0, nullptr, "String"},
    {"lastOperationStatus", Kind::Getter, &lastStatus, 0, 0, nullptr, "String"},
    {"getLanguage", Kind::Method, &language, 0, 0},
    {"getScript", Kind::Method, &script, 0, 0},
    {"getRegion", Kind::Method, &region, 0, 0},
    {"getVariant", Kind::Method, &variant, 0, 0},
    {"getKeysAndValues", Kind::Method, &keysAndValues, 0, 0},
    {"isRightToLeft", Kind::Method, &isRightToLeft, 0, 0},
    {"determinePreferredLocales", Kind::Static, &preferredLocales, 2, 3},
};
constexpr NativeConstant kLocaleConstants[] = {{"DEFAULT", 0, "i-default"}};

// ---- Collator ----

// In the order of the class's slots.
enum Ignoring : std::uint32_t { Case, Width, Diacritics, Kana, Symbols, Numeric };

Value makeCollator(Call& call)
{
    LocaleObject& self = takeLocale(call);
    const std::u16string mode = call.has(1) ? textArg(call, 1, "initialMode") : std::u16string(u"sorting");
    if (mode != u"sorting" && mode != u"matching") throwNotAccepted(call.vm, "initialMode");
    for (const Ignoring each : {Case, Width, Diacritics, Kana, Symbols})
        self.setSlot(each, mode == u"matching");
    self.setSlot(Numeric, false);
    return {};
}

/// Both texts without what is not told apart.
QString reduced(Call& call, std::uint32_t i, std::string_view parameter)
{
    LocaleObject& self = localeSelf(call);
    const auto ignores = [&](Ignoring what) { return call.vm.toBoolean(self.slot(what)); };
    QString text = qtextArg(call, i, parameter);
    if (ignores(Width)) text = text.normalized(QString::NormalizationForm_KC);
    if (ignores(Kana)) {
        // The katakana that have a hiragana lie at the same distance from it.
        constexpr char16_t kFirst = 0x30A1, kLast = 0x30F6, kDistance = 0x60;
        for (QChar& unit : text)
            if (unit >= QChar(kFirst) && unit <= QChar(kLast)) unit = QChar(unit.unicode() - kDistance);
    }
    if (!ignores(Diacritics)) return text;
    QString bare;
    for (const QChar unit : text.normalized(QString::NormalizationForm_D))
        if (unit.category() != QChar::Mark_NonSpacing) bare += unit;
    return bare.normalized(QString::NormalizationForm_C);
}
Value compare(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    const QString a = reduced(call, 0, "string1"), b = reduced(call, 1, "string2");
    const auto is = [&](Ignoring what) { return call.vm.toBoolean(self.slot(what)); };
    // The names' order is looked at by the plain collator of the C locale otherwise.
    QCollator collator(self.locale.language() == QLocale::C ? QLocale(QLocale::English) : self.locale);
    collator.setCaseSensitivity(is(Case) ? Qt::CaseInsensitive : Qt::CaseSensitive);
    collator.setIgnorePunctuation(is(Symbols));
    collator.setNumericMode(is(Numeric));
    const auto plain = [&](QString text) {
        // What the collator leaves in, where it is built without its tables.
        if (is(Symbols))
            text.removeIf([](QChar unit) { return unit.isPunct() || unit.isSpace() || unit.isSymbol(); });
        return is(Case) ? text.toCaseFolded() : text;
    };
    const QString left = plain(a), right = plain(b);
    if (left == right) return 0;
    const int order = collator.compare(left, right);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}
Value equals(Call& call) { return call.vm.toInt(compare(call)) == 0; }

constexpr NativeMember kCollator[] = {
    GLOBALIZATION_MEMBERS,
    {"compare", Kind::Method, &compare, 2, 2},
    {"equals", Kind::Method, &equals, 2, 2},
};

// ---- StringTools ----

Value makeTools(Call& call)
{
    takeLocale(call);
    return {};
}
template <bool upper>
Value changeCase(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    const QString text = qtextArg(call, 0, "s");
    return textValue(call.vm, upper ? self.locale.toUpper(text) : self.locale.toLower(text));
}
constexpr NativeMember kTools[] = {
    GLOBALIZATION_MEMBERS,
    {"toUpperCase", Kind::Method, &changeCase<true>, 1, 1},
    {"toLowerCase", Kind::Method, &changeCase<false>, 1, 1},
};

using C = NativeConstant;
constexpr C kModes[] = {{"MATCHING", 0, "matching"}, {"SORTING", 0, "sorting"}};
constexpr C kStatus[] = {{"BUFFER_OVERFLOW_ERROR", 0, "bufferOverflowError"},
                         {"ERROR_CODE_UNKNOWN", 0, "errorCodeUnknown"},
                         {"ILLEGAL_ARGUMENT_ERROR", 0, "illegalArgumentError"},
                         {"INDEX_OUT_OF_BOUNDS_ERROR", 0, "indexOutOfBoundsError"},
                         {"INVALID_ATTR_VALUE", 0, "invalidAttrValue"},
                         {"INVALID_CHAR_FOUND", 0, "invalidCharFound"},
                         {"MEMORY_ALLOCATION_ERROR", 0, "memoryAllocationError"},
                         {"NO_ERROR", 0, "noError"},
                         {"NUMBER_OVERFLOW_ERROR", 0, "numberOverflowError"},
                         {"PARSE_ERROR", 0, "parseError"},
                         {"PATTERN_SYNTAX_ERROR", 0, "patternSyntaxError"},
                         {"PLATFORM_API_FAILED", 0, "platformAPIFailed"},
                         {"TRUNCATED_CHAR_FOUND", 0, "truncatedCharFound"},
                         {"UNEXPECTED_TOKEN", 0, "unexpectedToken"},
                         {"UNSUPPORTED_ERROR", 0, "unsupportedError"},
                         {"USING_DEFAULT_WARNING", 0, "usingDefaultWarning"},
                         {"USING_FALLBACK_WARNING", 0, "usingFallbackWarning"}};

constexpr NativeConstant kDigits[] = {
    {"EUROPEAN", 0x0030},  {"ARABIC_INDIC", 0x0660}, {"EXTENDED_ARABIC_INDIC", 0x06F0},
    {"NKO", 0x07C0},       {"DEVANAGARI", 0x0966},   {"BENGALI", 0x09E6},
    {"GURMUKHI", 0x0A66},  {"GUJARATI", 0x0AE6},     {"ORIYA", 0x0B66},
    {"TAMIL", 0x0BE6},     {"TELUGU", 0x0C66},       {"KANNADA", 0x0CE6},
    {"MALAYALAM", 0x0D66}, {"THAI", 0x0E50},         {"LAO", 0x0ED0},
    {"TIBETAN", 0x0F20},   {"MYANMAR", 0x1040},      {"KHMER", 0x17E0},
    {"MONGOLIAN", 0x1810}, {"LIMBU", 0x1946},        {"FULL_WIDTH", 0xFF10}};

constexpr NativeClass kClasses[] = {
    {.package = "flash.globalization",
     .name = "LocaleID",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &makeLocale,
     .minArguments = 1,
     .maxArguments = 1,
     .allocate = &allocateNative<LocaleObject>,
     .members = kLocale,
     .constants = kLocaleConstants},
    {.package = "flash.globalization",
     .name = "Collator",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &makeCollator,
     .minArguments = 1,
     .maxArguments = 2,
     .allocate = &allocateNative<LocaleObject>,
     .members = kCollator,
     .slots = "ignoreCase:Boolean ignoreCharacterWidth:Boolean ignoreDiacritics:Boolean "
              "ignoreKanaType:Boolean ignoreSymbols:Boolean numericComparison:Boolean"},
    {.package = "flash.globalization",
     .name = "StringTools",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &makeTools,
     .minArguments = 1,
     .maxArguments = 1,
     .allocate = &allocateNative<LocaleObject>,
     .members = kTools},
    constantsOf("flash.globalization", "CollatorMode", kModes),
    constantsOf("flash.globalization", "NationalDigitsType", kDigits),
    constantsOf("flash.globalization", "LastOperationStatus", kStatus),
};

constexpr std::string_view kText = R"(
flash.globalization::LocaleID
  (String) name-:String lastOperationStatus-:String getLanguage():String getScript():String getRegion():String getVariant():String
  getKeysAndValues():Object isRightToLeft():Boolean ^determinePreferredLocales(Vector<String>,Vector<String>,String=):Vector<String>
flash.globalization::Collator
  (String,String=) requestedLocaleIDName-:String actualLocaleIDName-:String lastOperationStatus-:String
  ^getAvailableLocaleIDNames():Vector<String> ignoreCase:Boolean ignoreCharacterWidth:Boolean ignoreDiacritics:Boolean
  ignoreKanaType:Boolean ignoreSymbols:Boolean numericComparison:Boolean compare(String,String):int equals(String,String):Boolean
flash.globalization::StringTools
  (String) requestedLocaleIDName-:String actualLocaleIDName-:String lastOperationStatus-:String
  ^getAvailableLocaleIDNames():Vector<String> toUpperCase(String):String toLowerCase(String):String
flash.globalization::NationalDigitsType
  *:uint
)";

} // namespace

NativeLibrary textLibrary() { return {kClasses, {}, kText}; }

} // namespace flash::avm2::globalization
