Echo TypeName(Not Empty), Not Empty, TypeName(5 And Empty), TypeName(Empty Or Empty), TypeName(True Or Empty)
Echo TypeName(+"abc") & +"abc", TypeName(+True), TypeName(+Empty), TypeName(-True), TypeName(-"2")
Echo TypeName(Round(True)), Round(True), TypeName(Round(Empty)), TypeName(Round(CByte(3))), TypeName(Round("2.5")), Round("2.5")
Echo TypeName(&h10&), TypeName(&H8000), &H8000, TypeName(&H8000&), &H8000&, TypeName(&HFFFF), &HFFFF, &HFFFFFFFF, &O17
Echo TypeName(vbCr), TypeName(vbYes), TypeName(vbUseDefault), TypeName(vbGreen), TypeName(vbRed), TypeName(vbObjectError), TypeName(vbMsgBoxSetForeground)
' Sums of Integers that do not fit go on as Long.
i = 32767 : Echo TypeName(i), TypeName(i + 1), TypeName(i * i), TypeName(-i - 2), 300 * 300
l = 2147483647 : Echo TypeName(l + 1), l + 1
