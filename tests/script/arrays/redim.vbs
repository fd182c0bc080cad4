Sub Report : Echo Err.Number, Err.Description : Err.Clear : End Sub
ReDim a(2) : a(0) = "x" : a(2) = "z"
ReDim Preserve a(4) : Echo Join(a, "-"), UBound(a) : ReDim Preserve a(0) : Echo Join(a, "-"), UBound(a)
ReDim Preserve a(1) : Echo IsEmpty(a(1)) : ReDim a(1) : Echo IsEmpty(a(0))
ReDim m(1, 1) : m(1, 0) = 10 : m(1, 1) = 11 : ReDim Preserve m(1, 2) : Echo m(1, 0), m(1, 1), IsEmpty(m(1, 2))
ReDim m(3) : Echo UBound(m)
ReDim n(-1) : Echo UBound(n), Len(Join(n, ",")) : ReDim Preserve n(0) : Echo UBound(n)
b = a : ReDim Preserve b(5) : Echo UBound(a), UBound(b)
ReDim r(2.5), q("3") : Echo UBound(r), UBound(q)
Sub Grow(x) : ReDim Preserve x(UBound(x) + 1) : End Sub
Grow r : Echo UBound(r)
Dim fixed(2), empty_() : On Error Resume Next
ReDim m(1, 1) : ReDim Preserve m(2, 1) : Report
ReDim Preserve m(1) : Report
ReDim Preserve m(1, 1, 1) : Report
ReDim fixed(1) : Report
x = UBound(empty_) : Report
For Each e In r : ReDim r(9) : Exit For : Next : Report
ReDim r(1) : Echo UBound(r)
ReDim w("a") : Report
ReDim w(Null) : Report
Erase fixed : Echo UBound(fixed) : Erase r : x = UBound(r) : Report
