' locale: ru
Echo 1.5, 1/3, 1E-20, CStr(2.25), CSng(0.1), CCur(1.5), -0.5 & ""
Echo CDbl("1,5") + 1, "2,5" * 2, CDbl("1 234,5"), IsNumeric("1,5"), IsNumeric("1.5"), CInt("2,5"), Round(0.125, 2)
Echo #1/31/2024#, #1/31/2024 9:05:00#, CDate("01.02.2024"), CDate("5 марта 2024"), Month("01.02.2024"), CDate("13:00"), CDate("12/31/1999")
Echo FormatNumber(1234567.891), FormatPercent(0.5), FormatCurrency(-1.5), FormatDateTime(#3/5/2024#, 1), FormatDateTime(#3/5/2024 8:00#, 3)
Echo MonthName(3), MonthName(3, True), WeekdayName(1), WeekdayName(1, True), Weekday(#3/4/2024#), Weekday(#3/4/2024#, 0), True
Echo Eval("1.5 + 1"), UCase("ёж"), GetLocale
x = SetLocale(1033) : Echo x, 1.5, MonthName(3), CDbl("1,234.5")
