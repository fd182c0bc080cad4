Echo 12 And 10, 12 Or 10, 12 Xor 10, 12 Eqv 10, 12 Imp 10, Not 0, Not 5
Echo TypeName(True And True), TypeName(True And 1), TypeName(1 And 70000), TypeName(CByte(3) And CByte(1)), TypeName("3" And 1)
Echo Not CByte(1), TypeName(Not CByte(1)), TypeName(Not Empty), "6" And "3", 2.5 Or 0, 3.5 Or 0
' Both sides are always evaluated.
Function Side(v) : Echo "side" : Side = v : End Function
If False And Side(True) Then Echo "no"
If True Or Side(True) Then Echo "yes"
