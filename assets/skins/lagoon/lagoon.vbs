' The script of the skin Lagoon.
Option Explicit

Const KnobWidth = 14
' Ticks of the information event, about three a second, that the capsule of the full screen stays for.
Const CapsuleTicks = 9

Dim X, Y                ' where the pointer is, set before every onDrag
Dim normalSet, fullSet  ' the controls of the two views
Dim ticksLeft           ' of the capsule

' The same controls stand in both views.
Class ControlSet
    Public Play, Pause, Mute, Unmute
    Public Info
    Public SeekTrack, SeekFill, SeekKnob
    Public VolumeTrack, VolumeFill, VolumeKnob
End Class

Sub onLoad
    Dim groove, light
    groove = RGB(13, 24, 43)
    light = RGB(127, 166, 224)
    seekTrack.BackColor = RGB(52, 80, 111)
    seekFill.BackColor = light
    volumeTrack.BackColor = groove
    volumeFill.BackColor = light
    fullSeekTrack.BackColor = groove
    fullSeekFill.BackColor = light
    fullVolumeTrack.BackColor = groove
    fullVolumeFill.BackColor = light
    infoText.ToolTipText = "Щелчок: другое время или кадры"
    fullInfo.ToolTipText = infoText.ToolTipText

    Set normalSet = New ControlSet
    With normalSet
        Set .Play = btnPlay : Set .Pause = btnPause : Set .Mute = btnMute : Set .Unmute = btnUnmute
        Set .Info = infoText
        Set .SeekTrack = seekTrack : Set .SeekFill = seekFill : Set .SeekKnob = seekKnob
        Set .VolumeTrack = volumeTrack : Set .VolumeFill = volumeFill : Set .VolumeKnob = volumeKnob
    End With
    Set fullSet = New ControlSet
    With fullSet
        Set .Play = fullPlay : Set .Pause = fullPause : Set .Mute = fullMute : Set .Unmute = fullUnmute
        Set .Info = fullInfo
        Set .SeekTrack = fullSeekTrack : Set .SeekFill = fullSeekFill : Set .SeekKnob = fullSeekKnob
        Set .VolumeTrack = fullVolumeTrack : Set .VolumeFill = fullVolumeFill : Set .VolumeKnob = fullVolumeKnob
    End With
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

' ---- layout

Sub PlaceNormal
    SWF.Move 12, 40, Player.ScaleWidth - 24, Player.ScaleHeight - 40 - 132
    volumeTrack.Visible = HasVolume
    volumeFill.Visible = HasVolume
    volumeKnob.Visible = HasVolume
    volumeArea.Visible = HasVolume
    ShowNormal
End Sub

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
    btnLoop.Visible = Not Player.mnuLoop.Checked
    btnLoopOn.Visible = Player.mnuLoop.Checked
    headTitle.Caption = Player.Caption
    stateText.Caption = Player.StatusText
    ShowControls normalSet, Player.ScaleWidth < 560
End Sub

Sub ShowFull
    Dim near
    near = Player.ScaleHeight - Player.PointerY
    If near <= capsule.Height * 2 And near > 0 Then ticksLeft = CapsuleTicks
    If ticksLeft > 0 Then ticksLeft = ticksLeft - 1
    capsule.Visible = ticksLeft > 0 Or Not Player.HasMovie
    If capsule.Visible Then ShowControls fullSet, False
End Sub

Sub ShowControls(controls, narrow)
    Dim text, at
    With controls
        .Play.Visible = Not SWF.Playing
        .Pause.Visible = SWF.Playing
        .Mute.Visible = Not Player.Muted
        .Unmute.Visible = Player.Muted

        text = Player.InfoText
        at = InStr(text, ": ")
        If narrow And at > 0 Then text = Mid(text, at + 2)
        .Info.Caption = text

        If SWF.TotalFrames > 1 Then
            ShowSlider .SeekTrack, .SeekFill, .SeekKnob, SWF.FrameNum / (SWF.TotalFrames - 1)
        Else
            ShowSlider .SeekTrack, .SeekFill, .SeekKnob, 0
        End If
        .SeekKnob.Visible = SWF.TotalFrames > 1
        ShowSlider .VolumeTrack, .VolumeFill, .VolumeKnob, Player.Volume / 100
    End With
End Sub

' share: 0 to 1
Sub ShowSlider(track, fill, knob, share)
    fill.Width = track.Width * share
    knob.Left = track.Left + fill.Width - KnobWidth / 2
End Sub

' ---- what is done

Sub PlayPause
    PlayPauseMedia
    ShowNow
End Sub

Sub StopNow
    StopMedia
    ShowNow
End Sub

Sub StepBy(frames)
    If frames < 0 Then Player.mnuRwd.Click Else Player.mnuFFwd.Click
    ShowNow
End Sub

Sub ToggleLoop
    Player.mnuLoop.Click
    ShowNow
End Sub

Sub ToggleMute
    MuteSound Not Player.Muted
    ShowNow
End Sub

Sub NextTimeMode
    ToggleTimeMode
    ShowNow
End Sub

' The place of the pointer within a slider's area, 0 to 1. The knob's middle is what follows the pointer.
Function PointerShare(area)
    PointerShare = (X - KnobWidth / 2) / (area.Width - KnobWidth)
    If PointerShare < 0 Then PointerShare = 0
    If PointerShare > 1 Then PointerShare = 1
End Function

Sub SeekBy(area)
    Dim playing, frame
    If SWF.TotalFrames < 2 Then Exit Sub
    playing = SWF.Playing
    frame = Round(PointerShare(area) * (SWF.TotalFrames - 1))
    If frame <> SWF.FrameNum Then SWF.GotoFrame frame
    If playing Then PlayMedia
    ShowNow
End Sub

Sub VolumeBy(area)
    Dim wanted
    wanted = Round(PointerShare(area) * 100)
    If Player.Muted Then MuteSound False
    If wanted <> Player.Volume Then SetSound wanted, 0
    ShowNow
End Sub

Sub ShowNow
    If Player.mnuFullScreen.Checked Then ShowFull Else ShowNormal
End Sub
