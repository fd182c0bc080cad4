' The script of the player's own skin.
Option Explicit

Const BarHeight = 64
Const KnobWidth = 12
' Ticks of the information event, about three a second, that the bar of the full screen stays for.
Const FullBarTicks = 9

Dim ticksLeft ' of the full screen's bar

Sub onLoad
    Dim slate, steel, blue, edge
    slate = RGB(34, 51, 73)
    steel = RGB(52, 80, 111)
    blue = RGB(73, 116, 186)
    edge = RGB(61, 76, 95)

    head.BackColor = slate
    bar.BackColor = slate
    seekTrack.BackColor = steel
    volumeTrack.BackColor = steel
    fullSeekTrack.BackColor = steel
    fullVolumeTrack.BackColor = steel
    seekFill.BackColor = blue
    volumeFill.BackColor = blue
    fullSeekFill.BackColor = blue
    fullVolumeFill.BackColor = blue
    edgeHead.BackColor = edge
    edgeBar.BackColor = edge
    edgeTop.BackColor = steel
    edgeLeft.BackColor = steel
    edgeRight.BackColor = steel
    edgeBottom.BackColor = steel
    infoText.ToolTipText = Player.Translated("Щелчок: другое время или кадры")
    fullInfo.ToolTipText = infoText.ToolTipText

    MakeControlSets
    ticksLeft = FullBarTicks
End Sub

' ---- what positions ask

' With the menu bar the window has the system's own title.
Function HeadHeight
    If Player.mnuMenuBar.Checked Then HeadHeight = 0 Else HeadHeight = 34
End Function

' A narrow window shows the time without its words.
Function TimeWidth
    If Player.ScaleWidth < 480 Then TimeWidth = 56 Else TimeWidth = 190
End Function

' ---- layout

Sub PlaceNormal
    Dim width, right, left
    width = Player.ScaleWidth
    head.Visible = HeadHeight > 0
    edgeHead.Visible = HeadHeight > 0
    SWF.Move 1, HeadHeight, width - 2, Player.ScaleHeight - BarHeight - HeadHeight

    ' From the right; what there is no room for stands in the menu as well.
    right = btnFull.Left - 8
    right = PlaceRight(btnInfo, width >= 574, right, 4)
    right = PlaceRight(btnBrowse, width >= 542, right, 4)
    right = PlaceRight(btnOpen, width >= 380, right, 8)
    right = PlaceRight(volumeArea, width >= 510, right, 0)
    volumeTrack.Visible = volumeArea.Visible
    volumeFill.Visible = volumeArea.Visible
    volumeKnob.Visible = volumeArea.Visible
    volumeTrack.Left = volumeArea.Left + KnobWidth / 2
    volumeFill.Left = volumeTrack.Left
    right = PlaceRight(btnMute, btnMute.Visible, right, 8)
    If btnMute.Visible Then
        btnUnmute.Left = btnMute.Left
    Else
        right = PlaceRight(btnUnmute, True, right, 8)
        btnMute.Left = btnUnmute.Left
    End If

    left = 144
    btnLoop.Visible = width >= 430 And Not Player.mnuLoop.Checked
    btnLoopOn.Visible = width >= 430 And Player.mnuLoop.Checked
    If width >= 430 Then left = 180
    stateText.Move left, 36, right - left, 20
    ShowNormal
End Sub

' Puts an element left of a place, or hides it. The result is where the next one ends.
Function PlaceRight(element, wanted, right, gap)
    element.Visible = wanted
    If Not wanted Then
        PlaceRight = right
        Exit Function
    End If
    element.Left = right - element.Width
    PlaceRight = element.Left - gap
End Function

Sub PlaceFull
    ShowFull
End Sub

' ---- what is shown

Sub ShowNormal
    Dim zoomed
    zoomed = Player.WindowState = 2
    btnZoom.Visible = Not zoomed
    btnRestore.Visible = zoomed
    btnGrip.Visible = Not zoomed
    If Player.ScaleWidth >= 430 Then
        btnLoop.Visible = Not Player.mnuLoop.Checked
        btnLoopOn.Visible = Player.mnuLoop.Checked
    End If
    headTitle.Caption = Player.Title
    stateText.Caption = Player.StatusText
    ShowUsable Array(btnPlay, btnPause, btnStop, btnBack, btnForward), Player.HasMovie
    btnInfo.Enabled = Player.mnuInfo.Enabled
    ShowControls normalSet, Player.ScaleWidth < 480
End Sub

Sub ShowFull
    Dim near
    near = Player.ScaleHeight - Player.PointerY
    If near <= fullBar.Height * 2 And near > 0 Then ticksLeft = FullBarTicks
    If ticksLeft > 0 Then ticksLeft = ticksLeft - 1
    fullBar.Visible = ticksLeft > 0 Or Not Player.HasMovie
    If fullBar.Visible Then
        ShowUsable Array(fullPlay, fullPause, fullStop, fullBack, fullForward), Player.HasMovie
        ShowControls fullSet, False
    End If
End Sub
