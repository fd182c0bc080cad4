Const BarHeight = 40
Dim Pressed, DragX, DragY, Loads, LayOuts
Sub onLoad
    Loads = Loads + 1
End Sub
Sub LayOut
    LayOuts = LayOuts + 1
    Player.SWF.Move 0, 0, Player.ScaleWidth, Player.ScaleHeight - BarHeight
End Sub
Sub ShowInfo
    info.Caption = "Кадр " & Player.StatusText
End Sub
