Function Kind(v)
  Select Case v
    Case 1, 2, 3 : Kind = "small"
    Case "x"
      Kind = "letter"
    Case Is_Big(v) : Kind = "never"
    Case Else : Kind = "other"
  End Select
End Function
Function Is_Big(v) : Echo "asked" : Is_Big = "no" : End Function
Echo Kind(2), Kind("x"), Kind(9)
Select Case True
  Case 1 > 2 : Echo "a"
  Case 2 > 1 : Echo "b"
  Case 3 > 1 : Echo "c"
End Select
Select Case 5
End Select
Select Case LCase("ABC")
  Case "abc" : Echo "same line"
End Select
