Function S(v) : If IsNull(v) Then S = "Null" Else S = v
End Function
Echo S(Null + 1), S(Null & "a"), S(Null & Null), S(-Null), S(Not Null), S(Null = Null), S(Null < 1)
Echo S(Null And False), S(Null And True), S(Null Or True), S(Null Or False), S(Null Xor True)
Echo S(Null Imp True), S(True Imp Null), S(False Imp Null), S(Null Eqv True), S(Null And 0), S(5 Or Null)
If Null Then Echo "then" Else Echo "else"
If Not (Null = 1) Then Echo "then" Else Echo "else"
Do While Null : Echo "never" : Loop
Echo S(Len(Null)), S(UCase(Null)), S(Mid(Null, 1)), S(Abs(Null)), S(Left(Null, 1)), S(InStr(Null, "a")), S(Hex(Null))
On Error Resume Next
x = CStr(Null) : Echo Err.Number, Err.Description : Err.Clear
x = CInt(Null) : Echo Err.Number, Err.Description : Err.Clear
x = Replace(Null, "a", "b") : Echo Err.Number, Err.Description
