' Words and numbers may touch, and the word that ends a block may follow on its last line.
x = &h01or&h02 : Echo x
x=1
If x=1Then Echo "then"
If x=2 Then
  Echo "no"
Else x = 3 End If
Echo x
Sub t() x = 4 End Sub
t : Echo x
Function f(a) f = a + 1 End Function
Echo f(1)
If a Then x = 5 Else x = 6 End If
Echo x
Class C
  Public Sub M(n) : Echo "M", n : End Sub
  Public Property Get Self : Set Self = Me : End Property
End Class
Call (New C).M(1)
Call (New C).Self.M(2)
Set o = New C
o _
  .Self _
  .M 3
' Procedures may stand among the statements of the script.
If False Then
  Sub hidden : Echo "hidden" : End Sub
End If
hidden
For i = 1 To 1
  Function g : Dim i : For i = 1 To 3 : If i = 2 Then Exit For
  Next : g = i : End Function
Next
Echo g, i
Echo "a"&hello & "|", 1+ -2, 3.5Mod 2, 7\2
With o : Me.x = 7 : Echo Me.x, x : End With
