d = #3/15/2024 14:05:09#
Echo Year(d), Month(d), Day(d), Hour(d), Minute(d), Second(d), Weekday(d), Weekday(d, vbMonday)
Echo DateSerial(2024, 2, 30), DateSerial(2024, 14, 1), DateSerial(2024, 1, 0), DateSerial(99, 1, 1), DateSerial(5, 1, 1), TimeSerial(25, 0, 0), TimeSerial(1, 90, 0)
Echo DateValue("3/15/2024 10:00"), TimeValue("10:00:30 PM"), CDate("2024-03-15"), CDate("15 March 2024"), CDate("31/12/1999"), CDate(1.5), CDate("13:05")
Echo CDbl(#1/1/1900#), CDbl(#12/30/1899 6:00#), CDbl(#12/29/1899 6:00#), #12/29/1899 18:00#, Int(#1/1/2000 18:00#)
Echo MonthName(1), MonthName(12, True), WeekdayName(1), WeekdayName(1, True), WeekdayName(1, False, vbMonday)
Echo DatePart("q", d), DatePart("y", d), DatePart("ww", #1/1/2024#), DatePart("w", d), DatePart("ww", #12/31/2023#), DatePart("ww", #1/1/2023#, vbMonday, vbFirstFourDays)
On Error Resume Next
x = Year("junk") : Echo Err.Number : Err.Clear
x = DateSerial(20000, 1, 1) : Echo Err.Number : Err.Clear
x = MonthName(13) : Echo Err.Number : Err.Clear
x = CDate("30.30.2000") : Echo Err.Number
Echo IsNull(Year(Null))
