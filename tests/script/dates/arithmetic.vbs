Echo DateAdd("m", 1, #1/31/2024#), DateAdd("m", -1, #3/31/2023#), DateAdd("yyyy", 1, #2/29/2024#), DateAdd("q", 2, #8/31/2023#)
Echo DateAdd("d", 1, #12/31/1999#), DateAdd("h", 25, #1/1/2000#), DateAdd("n", -1, #1/1/2000#), DateAdd("s", 3661, #1/1/2000#), DateAdd("ww", 1, #1/1/2000#)
Echo DateDiff("yyyy", #12/31/1999#, #1/1/2000#), DateDiff("m", #1/31/2000#, #2/1/2000#), DateDiff("d", #1/1/2000 23:00#, #1/2/2000 1:00#), DateDiff("h", #1/1/2000 0:59#, #1/1/2000 1:01#), DateDiff("s", #1/1/2000#, #1/2/2000#)
Echo DateDiff("ww", #1/1/2000#, #1/2/2000#), DateDiff("w", #1/1/2000#, #1/9/2000#), DateDiff("q", #3/31/2000#, #4/1/2000#), DateDiff("d", #1/2/2000#, #1/1/2000#), DateDiff("n", #1/1/2000#, #1/1/2000 1:00#)
Echo #1/1/2000# + 1.5, #1/1/2000 12:00# - #1/1/2000#, Now - Now < 1, Date <= Now, TypeName(Time), TypeName(Timer)
On Error Resume Next
x = DateAdd("x", 1, Now) : Echo Err.Number, Err.Description : Err.Clear
x = DateAdd("yyyy", 9000, #1/1/2000#) : Echo Err.Number
