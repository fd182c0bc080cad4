Echo DateAdd("m", 1, #1/31/2024#), DateAdd("m", 13, #1/31/2022#), DateAdd("m", -11, #1/31/2024#), DateAdd("yyyy", 4, #2/29/2024#)
Echo DateAdd("q", 1, #11/30/2022#), DateAdd("q", -4, #2/29/2024#), DateAdd("y", 60, #1/1/2024#), DateAdd("w", 3, #1/5/2024#)
Echo DateAdd("m", 1, #1/31/2024 13:45#), DateAdd("s", -1, #3/1/2024#), DateAdd("d", "2", "2/27/2024")
' Weeks by their first day, weeks by seven days.
Echo DateDiff("ww", #1/6/2024#, #1/7/2024#), DateDiff("w", #1/6/2024#, #1/7/2024#), DateDiff("w", #1/6/2024#, #1/13/2024#), DateDiff("ww", #1/7/2024#, #1/13/2024#)
Echo DateDiff("ww", #1/7/2024#, #1/8/2024#), DateDiff("ww", #1/7/2024#, #1/8/2024#, vbMonday), DateDiff("ww", #1/8/2024#, #1/7/2024#, vbMonday), DateDiff("w", #1/13/2024#, #1/6/2024#)
Echo DateDiff("yyyy", #12/31/2023#, #1/1/2024#), DateDiff("q", #12/31/2023#, #1/1/2024#), DateDiff("m", #3/1/2024#, #2/29/2024#), DateDiff("h", #1:59:59 AM#, #2:00:00 AM#), DateDiff("y", #2/28/2024#, #3/1/2024#)
Echo DatePart("ww", #1/1/2024#), DatePart("ww", #1/7/2024#), DatePart("ww", #1/7/2024#, vbMonday), DatePart("ww", #1/1/2021#, vbMonday, vbFirstFourDays), DatePart("ww", #12/31/2024#, vbMonday, vbFirstFourDays), DatePart("ww", #1/5/2024#, vbSunday, vbFirstFullWeek)
Echo DatePart("w", #1/7/2024#), DatePart("w", #1/7/2024#, vbMonday), DatePart("q", #10/1/2024#), DatePart("y", #12/31/2024#), DatePart("n", #10:42:07 AM#), DatePart("s", #10:42:07 AM#)
Echo DateSerial(2023, 2, 29), DateSerial(2024, 0, 1), DateSerial(2024, 1, -30), DateSerial(2024, 13, 32), DateSerial(29, 1, 1), DateSerial(30, 1, 1)
Echo #2/28/1900# + 1, CDate(0.5), CDate(-1.25), CDbl(#6:00:00 AM#)
On Error Resume Next
x = DateDiff("x", Now, Now) : Echo Err.Number : Err.Clear
x = DatePart("d", "no date") : Echo Err.Number : Err.Clear
x = CDate("2/30/2024") : Echo Err.Number : Err.Clear
x = #1/1/9999# + 400 : Echo Err.Number : Err.Clear
Echo IsDate("2/30/2024"), IsDate("29/2/2024"), IsDate(#1/1/2024#), IsDate(5)
