#include "flash/avm2/bindings/Globalization.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

#include <algorithm>
#include <cmath>

// Dates and times as a locale writes them, by style or by pattern.
namespace flash::avm2::globalization
{

using classes::allocateNative;
using Kind = NativeMember::Kind;

namespace
{

constexpr std::u16string_view kStyles[] = {u"long", u"medium", u"short", u"none"};
constexpr qsizetype kLongestPattern = 1000;

/// Qt's letters for parts of a date as the classes' own ones.
QString translated(const QString& format)
{
    QString made;
    bool isQuoted = false;
    for (qsizetype at = 0; at < format.size();) {
        const QChar unit = format[at];
        if (unit == '\'') isQuoted = !isQuoted;
        qsizetype length = 1;
        while (at + length < format.size() && format[at + length] == unit) ++length;
        if (isQuoted || unit == '\'') {
            made += unit;
            ++at;
            continue;
        }
        if (unit == 'd' && length >= 3)
            made += QString(length, 'E');
        else if (unit == 'a' || unit == 'A') {
            made += 'a';
            if (at + length < format.size() && format[at + length].toLower() == 'p') ++length;
        } else if (unit == 't')
            made += 'z';
        else if (unit == 'z')
            made += QString(length, 'S');
        else
            made += QString(length, unit);
        at += length;
    }
    return made.trimmed();
}

/// Takes a letter's field out of a pattern, with what parts it from its neighbours.
QString without(QString pattern, QChar letter)
{
    const auto begin = pattern.indexOf(letter);
    if (begin < 0) return pattern;
    qsizetype end = begin;
    while (end < pattern.size() && pattern[end] == letter) ++end;
    while (end < pattern.size() && !pattern[end].isLetter() && pattern[end] != '\'') ++end;
    pattern.remove(begin, end - begin);
    while (!pattern.isEmpty() && (pattern.back().isSpace() || pattern.back() == ',')) pattern.chop(1);
    return pattern;
}

QString datePattern(const QLocale& locale, std::u16string_view style)
{
    if (style == u"none") return {};
    if (style == u"short") return translated(locale.dateFormat(QLocale::ShortFormat));
    const QString full = translated(locale.dateFormat(QLocale::LongFormat));
    // Between the two: no weekday, the months' short names.
    return style == u"long" ? full : without(full, 'E').replace("MMMM", "MMM");
}
QString timePattern(const QLocale& locale, std::u16string_view style)
{
    if (style == u"none") return {};
    if (style == u"short") return translated(locale.timeFormat(QLocale::ShortFormat));
    const QString full = translated(locale.timeFormat(QLocale::LongFormat));
    // A time zone by its name is none of the player's styles.
    return without(full, 'z');
}
QString patternOf(const LocaleObject& self)
{
    if (self.dateStyle == u"custom") return qtext(self.pattern);
    const QString date = datePattern(self.locale, self.dateStyle),
                  time = timePattern(self.locale, self.timeStyle);
    return date.isEmpty() || time.isEmpty() ? date + time : date + ' ' + time;
}

/// A moment as it is to be written.
struct Moment {
    QDate date;
    QTime time;
    int offsetMinutes = 0; ///< east of Greenwich
};

QString padded(int value, qsizetype width) { return QString::number(value).rightJustified(width, '0'); }

QString field(const QLocale& locale, const Moment& moment, QChar letter, qsizetype width)
{
    const QDate& date = moment.date;
    const auto form = width == 3   ? QLocale::ShortFormat
                      : width >= 5 ? QLocale::NarrowFormat
                                   : QLocale::LongFormat;
    const int hour = moment.time.hour();
    switch (letter.unicode()) {
    case u'G': return date.year() > 0 ? "AD" : "BC";
    case u'y': return width == 2 ? padded(date.year() % 100, 2) : padded(date.year(), width);
    case u'M':
        if (width <= 2) return padded(date.month(), width);
        return locale.monthName(date.month(), form);
    case u'd': return padded(date.day(), width);
    case u'E': return locale.dayName(date.dayOfWeek(), width <= 3 ? QLocale::ShortFormat : form);
    case u'Q': return padded((date.month() + 2) / 3, width);
    case u'w': return padded(date.weekNumber(), width);
    case u'W': return padded((date.day() + 6) / 7, width);
    case u'D': return padded(date.dayOfYear(), width);
    case u'F': return padded((date.day() - 1) / 7 + 1, width);
    case u'a': return hour < 12 ? locale.amText() : locale.pmText();
    case u'h': return padded(hour % 12 == 0 ? 12 : hour % 12, width);
    case u'H': return padded(hour, width);
    case u'K': return padded(hour % 12, width);
    case u'k': return padded(hour == 0 ? 24 : hour, width);
    case u'm': return padded(moment.time.minute(), width);
    case u's': return padded(moment.time.second(), width);
    case u'S': return padded(moment.time.msec(), 3).left(std::max<qsizetype>(width, 1));
    case u'z':
    case u'Z':
    case u'v': {
        const int minutes = std::abs(moment.offsetMinutes);
        const QString sign = moment.offsetMinutes < 0 ? "-" : "+";
        const QString hours = padded(minutes / 60, 2), rest = padded(minutes % 60, 2);
        return letter == 'Z' ? sign + hours + rest : "GMT" + sign + hours + ':' + rest;
    }
    default: return {};
    }
}

QString written(const QLocale& locale, const QString& pattern, const Moment& moment)
{
    QString made;
    for (qsizetype at = 0; at < pattern.size();) {
        const QChar unit = pattern[at];
        if (unit == '\'') {
            // Two of them are one that is meant, within quotes and without.
            if (at + 1 < pattern.size() && pattern[at + 1] == '\'') {
                made += '\'';
                at += 2;
                continue;
            }
            for (++at; at < pattern.size(); ++at) {
                if (pattern[at] != '\'') {
                    made += pattern[at];
                } else if (at + 1 < pattern.size() && pattern[at + 1] == '\'') {
                    made += '\'';
                    ++at;
                } else {
                    break;
                }
            }
            ++at;
            continue;
        }
        qsizetype length = 1;
        while (at + length < pattern.size() && pattern[at + length] == unit) ++length;
        const bool isLetter = (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z');
        made += isLetter ? field(locale, moment, unit, length) : QString(length, unit);
        at += length;
    }
    return made;
}

void takeStyles(Call& call, std::uint32_t first)
{
    const auto style = [&](std::uint32_t i, const char* name) {
        const std::u16string given = call.has(i) ? textArg(call, i, name) : std::u16string(u"long");
        if (std::ranges::find(kStyles, given) == std::end(kStyles)) throwNotAccepted(call.vm, name);
        return given;
    };
    const std::u16string date = style(first, "dateStyle"), time = style(first + 1, "timeStyle");
    LocaleObject& self = localeSelf(call);
    self.dateStyle = date;
    self.timeStyle = time;
}
Value make(Call& call)
{
    takeLocale(call);
    takeStyles(call, 1);
    return {};
}
Value setStyles(Call& call)
{
    takeStyles(call, 0);
    localeSelf(call).last = status::kNoError;
    return {};
}
Value dateStyle(Call& call) { return Value(call.vm.string(localeSelf(call).dateStyle)); }
Value timeStyle(Call& call) { return Value(call.vm.string(localeSelf(call).timeStyle)); }
Value pattern(Call& call) { return textValue(call.vm, patternOf(localeSelf(call))); }
Value setPattern(Call& call)
{
    const std::u16string given = textArg(call, 0, "pattern");
    LocaleObject& self = localeSelf(call);
    const bool fits = static_cast<qsizetype>(given.size()) <= kLongestPattern;
    self.last = fits ? status::kNoError : status::kIllegal;
    if (!fits) return {};
    self.pattern = given;
    self.dateStyle = self.timeStyle = u"custom";
    return {};
}

template <bool utc>
Value format(Call& call)
{
    Vm& vm = call.vm;
    if (call.arg(0).isNullish()) throwNullParameter(vm, "dateTime");
    Root<Object> date(vm.heap(), objectArg(call, 0, "Date"));
    const double ms = vm.toNumber(vm.callPublic(Value(date.get()), "getTime"));
    const double west = utc ? 0 : vm.toNumber(vm.callPublic(Value(date.get()), "getTimezoneOffset"));
    LocaleObject& self = localeSelf(call);
    constexpr double kFurthestMs = 8.64e15;
    if (!(std::abs(ms) <= kFurthestMs) || !std::isfinite(west)) {
        self.last = status::kIllegal;
        return textValue(vm, {});
    }
    self.last = status::kNoError;
    const QDateTime at = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(ms - west * 60'000), Qt::UTC);
    return textValue(vm,
                     written(self.locale, patternOf(self), {at.date(), at.time(), static_cast<int>(-west)}));
}

QLocale::FormatType nameForm(Call& call)
{
    const std::u16string style = call.has(0) ? textArg(call, 0, "nameStyle") : std::u16string(u"full");
    if (style == u"full") return QLocale::LongFormat;
    if (style == u"longAbbreviation") return QLocale::ShortFormat;
    if (style == u"shortAbbreviation") return QLocale::NarrowFormat;
    throwNotAccepted(call.vm, "nameStyle");
}
bool standsAlone(Call& call)
{
    const std::u16string context = call.has(1) ? textArg(call, 1, "context") : std::u16string(u"standalone");
    if (context != u"standalone" && context != u"format") throwNotAccepted(call.vm, "context");
    return context == u"standalone";
}
Value monthNames(Call& call)
{
    const auto form = nameForm(call);
    const bool alone = standsAlone(call);
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    QStringList names;
    for (int month = 1; month <= 12; ++month)
        names += alone ? self.locale.standaloneMonthName(month, form) : self.locale.monthName(month, form);
    return newTexts(call.vm, names);
}
/// From Sunday on.
Value weekdayNames(Call& call)
{
    const auto form = nameForm(call);
    const bool alone = standsAlone(call);
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    QStringList names;
    for (const int day : {7, 1, 2, 3, 4, 5, 6})
        names += alone ? self.locale.standaloneDayName(day, form) : self.locale.dayName(day, form);
    return newTexts(call.vm, names);
}
Value firstWeekday(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    return static_cast<int>(self.locale.firstDayOfWeek()) % 7;
}

constexpr NativeMember kDates[] = {
    GLOBALIZATION_MEMBERS,
    {"format", Kind::Method, &format<false>, 1, 1},
    {"formatUTC", Kind::Method, &format<true>, 1, 1},
    {"getDateStyle", Kind::Method, &dateStyle, 0, 0},
    {"getTimeStyle", Kind::Method, &timeStyle, 0, 0},
    {"setDateTimeStyles", Kind::Method, &setStyles, 2, 2},
    {"getDateTimePattern", Kind::Method, &pattern, 0, 0},
    {"setDateTimePattern", Kind::Method, &setPattern, 1, 1},
    {"getMonthNames", Kind::Method, &monthNames, 0, 2},
    {"getWeekdayNames", Kind::Method, &weekdayNames, 0, 2},
    {"getFirstWeekday", Kind::Method, &firstWeekday, 0, 0},
};
using C = NativeConstant;
constexpr C kDateStyles[] = {{"CUSTOM", 0, "custom"},
                             {"LONG", 0, "long"},
                             {"MEDIUM", 0, "medium"},
                             {"NONE", 0, "none"},
                             {"SHORT", 0, "short"}};
constexpr C kContexts[] = {{"FORMAT", 0, "format"}, {"STANDALONE", 0, "standalone"}};
constexpr C kNameStyles[] = {{"FULL", 0, "full"},
                             {"LONG_ABBREVIATION", 0, "longAbbreviation"},
                             {"SHORT_ABBREVIATION", 0, "shortAbbreviation"}};

constexpr NativeClass kClasses[] = {
    {.package = "flash.globalization",
     .name = "DateTimeFormatter",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &make,
     .minArguments = 1,
     .maxArguments = 3,
     .allocate = &allocateNative<LocaleObject>,
     .members = kDates},
    constantsOf("flash.globalization", "DateTimeStyle", kDateStyles),
    constantsOf("flash.globalization", "DateTimeNameContext", kContexts),
    constantsOf("flash.globalization", "DateTimeNameStyle", kNameStyles),
};

constexpr std::string_view kText = R"(
flash.globalization::DateTimeFormatter
  (String,String=,String=) requestedLocaleIDName-:String actualLocaleIDName-:String lastOperationStatus-:String
  ^getAvailableLocaleIDNames():Vector<String> format(Date):String formatUTC(Date):String getDateStyle():String getTimeStyle():String
  setDateTimeStyles(String,String):void getDateTimePattern():String setDateTimePattern(String):void
  getMonthNames(String=,String=):Vector<String> getWeekdayNames(String=,String=):Vector<String> getFirstWeekday():int
)";

} // namespace

NativeLibrary dateLibrary() { return {kClasses, {}, kText}; }

} // namespace flash::avm2::globalization
