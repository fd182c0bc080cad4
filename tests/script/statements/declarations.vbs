Public p, q(2) : Private r : p = 1 : q(2) = 2 : r = 3 : Echo p, q(2), r
Public Const pc = "public" : Private Const prc = &HFF : Const neg = -5, par = (7), d = #1/1/2000#, n = Null
Echo pc, prc, neg, par, d, IsNull(n)
Public Sub PS : Echo "public sub" : End Sub
Private Function PF(a) : PF = a : End Function
PS : Echo PF(4)
Let x = 5 : Echo x
Stop
Dim late : late = used : used = 3 : Echo "[" & late & "]"
If False Then Dim hoisted
hoisted = 1 : Echo hoisted
Dim big(1, 2, 3), nested : big(1, 2, 3) = "xyz" : Echo big(1, 2, 3), UBound(big, 3)
