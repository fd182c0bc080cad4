Echo Sqr(16), Exp(0), Log(1), Sin(0), Cos(0), Round(Atn(1) * 4, 10), Round(Tan(1), 4), Round(Exp(1), 5), Round(Log(10), 5)
On Error Resume Next
x = Sqr(-1) : Echo Err.Number, Err.Description : Err.Clear
x = Log(0) : Echo Err.Number : Err.Clear
x = Exp(1000) : Echo Err.Number : Err.Clear
x = Round(1, -1) : Echo Err.Number : Err.Clear
x = RGB(-1, 0, 0) : Echo Err.Number
