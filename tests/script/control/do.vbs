i = 0 : Do While i < 3 : i = i + 1 : Loop : Echo i
i = 0 : Do Until i = 3 : i = i + 1 : Loop : Echo i
i = 5 : Do : i = i + 1 : Loop While i < 3 : Echo i
i = 5 : Do : i = i + 1 : Loop Until i > 7 : Echo i
i = 0 : Do : i = i + 1 : If i = 4 Then Exit Do
Loop : Echo i
i = 0 : While i < 3 : i = i + 1 : Wend : Echo i
For i = 1 To 3
  Do
    If i = 2 Then Exit For
    Exit Do
  Loop
Next
Echo i
