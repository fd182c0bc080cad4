' What skins with the controls of playing have in common: a skin whose THEME says scriptLibrary="controls.vbs" has
' these names as if they stood before its own script. It makes KnobWidth (pixels), Sub ShowNormal and Sub ShowFull,
' names its elements as MakeControlSets does and calls that from its onLoad.
Option Explicit

Dim X, Y                ' where the pointer is, set before every onDrag
Dim normalSet, fullSet  ' the controls of the two views

' The same controls stand in both views.
Class ControlSet
    Public Play, Pause, Mute, Unmute
    Public Info
    Public SeekTrack, SeekFill, SeekKnob, SeekArea
    Public VolumeTrack, VolumeFill, VolumeKnob, VolumeArea
End Class

Sub MakeControlSets
    Set normalSet = New ControlSet
    With normalSet
        Set .Play = btnPlay : Set .Pause = btnPause : Set .Mute = btnMute : Set .Unmute = btnUnmute
        Set .Info = infoText
        Set .SeekTrack = seekTrack : Set .SeekFill = seekFill : Set .SeekKnob = seekKnob
        Set .VolumeTrack = volumeTrack : Set .VolumeFill = volumeFill : Set .VolumeKnob = volumeKnob
        Set .SeekArea = seekArea : Set .VolumeArea = volumeArea
    End With
    Set fullSet = New ControlSet
    With fullSet
        Set .Play = fullPlay : Set .Pause = fullPause : Set .Mute = fullMute : Set .Unmute = fullUnmute
        Set .Info = fullInfo
        Set .SeekTrack = fullSeekTrack : Set .SeekFill = fullSeekFill : Set .SeekKnob = fullSeekKnob
        Set .VolumeTrack = fullVolumeTrack : Set .VolumeFill = fullVolumeFill : Set .VolumeKnob = fullVolumeKnob
        Set .SeekArea = fullSeekArea : Set .VolumeArea = fullVolumeArea
    End With
End Sub

' ---- what is shown

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
            ShowSlider .SeekTrack, .SeekFill, .SeekKnob, .SeekArea, SWF.FrameNum / (SWF.TotalFrames - 1)
        Else
            ShowSlider .SeekTrack, .SeekFill, .SeekKnob, .SeekArea, 0
        End If
        .SeekKnob.Visible = SWF.TotalFrames > 1
        ShowSlider .VolumeTrack, .VolumeFill, .VolumeKnob, .VolumeArea, Player.Volume / 100
    End With
End Sub

' share: 0 to 1
Sub ShowSlider(track, fill, knob, area, share)
    area.Value = share * 100  ' for those who hear it
    fill.Width = track.Width * share
    knob.Left = track.Left + fill.Width - KnobWidth / 2
End Sub

' What can do nothing at the moment looks so. elements: an array
Sub ShowUsable(elements, usable)
    Dim element
    For Each element In elements
        element.Enabled = usable
    Next
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
