' Objects that hold each other end with the engine, in the order in which they were made.
Class Node
  Public Name, Other
  Private Sub Class_Terminate : Echo "end of", Name : End Sub
End Class
Function made(n) : Set made = New Node : made.Name = n : End Function
Set a = made("a") : Set b = made("b") : Set a.Other = b : Set b.Other = a
Set c = made("c") : Set c.Other = c
Set d = made("d")
Set a = Nothing : Set b = Nothing : Set c = Nothing : Echo "statements done"
