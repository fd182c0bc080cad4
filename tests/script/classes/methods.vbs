Class Tree
  Public Left, Right, Key
  Public Sub Insert(k)
    If IsEmpty(Key) Then
      Key = k
      Set Left = New Tree : Set Right = New Tree
    ElseIf k < Key Then
      Left.Insert k
    Else
      Right.Insert k
    End If
  End Sub
  Public Function Walk
    If IsEmpty(Key) Then Walk = "" Else Walk = Left.Walk & Key & " " & Right.Walk
  End Function
  Public Function Count(ByVal depth)
    If Not IsEmpty(Key) Then Count = 1 + Left.Count(depth + 1) + Right.Count(depth + 1)
  End Function
End Class
Set t = New Tree
For Each k In Array(5, 2, 8, 1, 9, 3) : t.Insert k : Next
Echo t.Walk, t.Count(0)
Class Shadow
  Public Value
  Public Function Len(x) : Len = "own" : End Function
  Public Function Test(value) : Test = value & Me.Value & Len("abc") : End Function
End Class
Set s = New Shadow : s.Value = "field" : Echo s.Test("arg")
