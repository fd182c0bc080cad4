' locale: ru
Echo FormatNumber(1234567.891), FormatNumber(-1234.5, 1), FormatNumber(.5, 2, False), FormatNumber(-1.5, 1, True, True), FormatNumber(1234.5, 0, , , False)
Echo FormatPercent(0.1234), FormatPercent(-0.5, 0), FormatNumber("1234,5", 1)
d = #2/1/2024 15:04:05#
Echo FormatDateTime(d), FormatDateTime(d, vbLongDate), FormatDateTime(d, vbShortDate), FormatDateTime(d, vbLongTime), FormatDateTime(d, vbShortTime)
Echo d & "", #2/1/2024# & "", #15:04# & "", CStr(0.5), 1E+20, -0.25
Echo "0,5" + 1, "0,5" * "2", CDbl("-1,5"), CSng("2,25"), CCur("1,23456"), CInt("1,5"), CLng("2,5")
Echo IsNumeric("1,5"), IsNumeric("1,5,5"), IsNumeric("1e3"), IsNumeric(""), IsNumeric("1,"), IsNumeric("&HFF")
x = 1.5 : Echo x = "1,5", CStr(x) = "1,5", 1.5 = "1,5", Round(2.345, 2), Fix(-1.5), Int(-1.5)
On Error Resume Next
y = CDbl("1.5x") : Echo Err.Number, Err.Description : Err.Clear
y = "1;5" * 2 : Echo Err.Number : Err.Clear
