For a.b = 1 To 2
Next
