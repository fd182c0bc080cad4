#pragma once

#include <array>
#include <string_view>

namespace script::vbscript
{

/// How numbers, dates and names are written and read for the user. Source text is not touched by it.
struct Locale {
    enum class DateOrder { MonthDayYear, DayMonthYear };

    int id; ///< as GetLocale answers
    char16_t decimal;
    char16_t thousands;
    char16_t dateSeparator;
    DateOrder order;
    bool twelveHours;
    bool padsDate;    ///< 01.02.2024 rather than 1/2/2024
    int firstWeekday; ///< 1 Sunday, 2 Monday
    std::u16string_view currency;
    bool currencyBehind; ///< "1,50 ₽" rather than "$1.50"
    bool negativeCurrencyInParentheses;
    std::u16string_view yearSuffix; ///< of the long date
    std::array<std::u16string_view, 12> months;
    std::array<std::u16string_view, 12> monthsInDate; ///< as they stand behind a day
    std::array<std::u16string_view, 12> shortMonths;
    std::array<std::u16string_view, 7> weekdays; ///< from Sunday
    std::array<std::u16string_view, 7> shortWeekdays;

    static const Locale& english();
    static const Locale& russian();
    /// @param id 1033 or 1049. @returns null for others
    static const Locale* byId(int id);
};

} // namespace script::vbscript
