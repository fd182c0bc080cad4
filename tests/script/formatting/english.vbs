Echo FormatNumber(1234567.891), FormatNumber(0.5, 0), FormatNumber(1.5, 0), FormatNumber(2.675, 2), FormatNumber(.5, 2, False), FormatNumber(-1234.5, 1, True, True), FormatNumber(1234.5, 2, -2, -2, False), FormatNumber("12.345", 1), FormatNumber(-0.001)
Echo FormatCurrency(1234.5), FormatCurrency(-5), FormatCurrency(-5, 0, , False), FormatPercent(0.256), FormatPercent(1, 0), FormatPercent(-0.5, 1)
d = #3/5/2024 14:05:09#
Echo FormatDateTime(d), FormatDateTime(d, 1), FormatDateTime(d, vbShortDate), FormatDateTime(d, 3), FormatDateTime(d, 4)
On Error Resume Next
x = FormatNumber("abc") : Echo Err.Number, Err.Description : Err.Clear
x = FormatDateTime(d, 9) : Echo Err.Number
