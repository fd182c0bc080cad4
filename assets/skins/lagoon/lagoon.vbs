' The script of the skin Lagoon.
Option Explicit

Const KnobWidth = 14
' Ticks of the information event, about three a second, that the capsule of the full screen stays for.
Const CapsuleTicks = 9

Dim ticksLeft ' of the capsule

Sub onLoad
    Dim groove, light
    groove = RGB(13, 24, 43)
    light = RGB(127, 166, 224)
    ground.BackColor = RGB(31, 61, 112)
    seekTrack.BackColor = RGB(52, 80, 111)
    seekFill.BackColor = light
    volumeTrack.BackColor = groove
    volumeFill.BackColor = light
    fullSeekTrack.BackColor = groove
    fullSeekFill.BackColor = light
    fullVolumeTrack.BackColor = groove
    fullVolumeFill.BackColor = light
    infoText.ToolTipText = Player.Translated("Щелчок: другое время или кадры")
    fullInfo.ToolTipText = infoText.ToolTipText

    MakeControlSets
    ticksLeft = CapsuleTicks
End Sub

' ---- what positions ask

' A narrow window shows the time without its words, and no volume.
Function TimeWidth
    If Player.ScaleWidth < 560 Then TimeWidth = 56 Else TimeWidth = 180
End Function

Function HasVolume
    HasVolume = Player.ScaleWidth >= 564
End Function

Function MuteLeft
    If HasVolume Then MuteLeft = Player.ScaleWidth - 158 Else MuteLeft = Player.ScaleWidth - 104
End Function

' A maximised window has no corners to round, and one with the menu bar has the system's own frame.
Function IsSquare
    IsSquare = Player.WindowState = 2 Or Player.mnuMenuBar.Checked
End Function

Function Rounded(pixels)
    If IsSquare Then Rounded = 0 Else Rounded = pixels
End Function

' With the menu bar the window has the system's own title.
Function HeadHeight
    If Player.mnuMenuBar.Checked Then HeadHeight = 0 Else HeadHeight = 40
End Function

' ---- layout

Sub PlaceNormal
    SWF.Move 12, HeadHeight, Player.ScaleWidth - 24, Player.ScaleHeight - HeadHeight - 132
    ShowShell
    volumeTrack.Visible = HasVolume
    volumeFill.Visible = HasVolume
    volumeKnob.Visible = HasVolume
    volumeArea.Visible = HasVolume
    ShowNormal
End Sub

Sub ShowShell
    Dim hasHead
    hasHead = HeadHeight > 0
    headMiddle.Visible = hasHead
    headSign.Visible = hasHead
    headTitle.Visible = hasHead
    btnMenu.Visible = hasHead
    btnMinimise.Visible = hasHead
    btnClose.Visible = hasHead
    headLeft.Visible = Not IsSquare
    headRight.Visible = Not IsSquare
    footLeft.Visible = Not IsSquare
    footRight.Visible = Not IsSquare
    belly.Visible = Not IsSquare
    holeLeft.Visible = Not IsSquare
    holeRight.Visible = Not IsSquare
    ground.Visible = IsSquare
End Sub

Sub PlaceFull
    ShowFull
End Sub

' ---- what is shown

Sub ShowNormal
    Dim zoomed
    zoomed = Player.WindowState = 2
    btnZoom.Visible = Not zoomed And HeadHeight > 0
    btnRestore.Visible = zoomed And HeadHeight > 0
    btnGrip.Visible = Not zoomed
    btnLoop.Visible = Not Player.mnuLoop.Checked
    btnLoopOn.Visible = Player.mnuLoop.Checked
    headTitle.Caption = Player.Title
    stateText.Caption = Player.StatusText
    ShowUsable Array(btnPlay, btnPause, btnStop, btnBack, btnForward), Player.HasMovie
    btnInfo.Enabled = Player.mnuInfo.Enabled
    ShowControls normalSet, Player.ScaleWidth < 560
End Sub

Sub ShowFull
    Dim near
    near = Player.ScaleHeight - Player.PointerY
    If near <= capsule.Height * 2 And near > 0 Then ticksLeft = CapsuleTicks
    If ticksLeft > 0 Then ticksLeft = ticksLeft - 1
    capsule.Visible = ticksLeft > 0 Or Not Player.HasMovie
    If capsule.Visible Then
        ShowUsable Array(fullPlay, fullPause, fullStop, fullBack, fullForward), Player.HasMovie
        ShowControls fullSet, False
    End If
End Sub
