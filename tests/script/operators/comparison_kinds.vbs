' Logical values and texts compare as texts.
Echo "abc" = True, "True" = True, True = "True", "true" = True, "False" = False, "-1" = True
t = "True" : b = True : Echo t = b, t > False, b < "U"
' Single and Double compare with the digits of a Single.
Echo CSng(0.1) = 0.1, 0.1 = CSng(0.1), CSng(0.1) < 0.1, CSng(0.1) = CSng(0.1), CSng(0.5) = 0.5, CSng(0.1) = 0.11
' What only CBool takes.
Echo CBool("True"), CBool("#TRUE#"), CBool("#false#"), Not "True", TypeName(Not "#FALSE#")
On Error Resume Next
For Each f In Array("CInt", "CLng", "CDbl", "CSng", "CByte", "CCur", "CDate")
  x = Eval(f & "(""True"")") : Echo f, Err.Number : Err.Clear
Next
x = "True" + 1 : Echo Err.Number
