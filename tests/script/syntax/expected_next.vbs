For i = 1 To 2
Loop
