Class Box : Public Width, Inner : End Class
Set b = New Box : Set b.Inner = New Box
With b
  .Width = 5
  With .Inner : .Width = .Width + 7 : Echo .Width : End With
  Echo .Width, .Inner.Width
End With
With CreateObject("Scripting.Dictionary")
  .Add "a", 1 : .Item("b") = 2
  Echo .Count, .Item("b")
End With
With 5 : Echo "no" : End With
