' Objects that end, or change what holds them, while a member of theirs or an assignment to them is at work.
Option Explicit
Dim holder, log, kept

Class Ender
    Public Name
    Private Sub Class_Terminate
        log = log & "-" & Name
    End Sub
    Public Sub Leave
        Set holder = Nothing
        log = log & " still " & Name
    End Sub
    Public Function Replaced
        Set holder = New Ender
        holder.Name = "second"
        Replaced = Name & " goes on"
    End Function
    Public Default Property Get Item(index)
        Set holder = Nothing
        Item = Name & index
    End Property
End Class
Function Made(name)
    Set Made = New Ender
    Made.Name = name
End Function

Set holder = Made("first")
holder.Leave
Echo log : log = ""
Set holder = Made("first")
Echo holder.Replaced & log & " " & holder.Name : log = ""
Set holder = Made("third")
log = ""
Echo holder(5) & log : log = ""

' What ends looks at, and takes the place of, what it ends in.
Class Phoenix
    Public Lives
    Private Sub Class_Terminate
        log = log & Lives
        If Lives > 0 Then
            Set kept = New Phoenix
            kept.Lives = Lives - 1
        End If
    End Sub
End Class
Set kept = New Phoenix
kept.Lives = 3
Set kept = Nothing
Echo log & " " & (kept Is Nothing) : log = ""
Set kept = Nothing
Set kept = Nothing
Set kept = Nothing
Echo log & " " & (kept Is Nothing) : log = ""

' An error while something ends is nobody's but its own.
Class Failing
    Private Sub Class_Terminate
        Dim x
        log = log & "ends"
        On Error Resume Next
        x = 1 / 0
        log = log & Err.Number
        Err.Clear
    End Sub
End Class
Err.Clear
Set kept = New Failing
Set kept = Nothing
Echo log & " " & Err.Number : log = ""

' With holds on to its object.
Set holder = Made("with")
With holder
    Set holder = Nothing
    Echo .Name & log
    .Name = "renamed"
End With
Echo log : log = ""

' A loop over items holds on to them, too.
Dim list, item
Set holder = Made("b")
list = Array(Made("a"), holder)
For Each item In list
    Set holder = Nothing
    log = log & " " & item.Name
Next
Set item = Nothing
list = Empty
Echo Left(log, 4), Len(log) : log = ""

' Arguments live as long as the call.
Sub Uses(thing)
    Set holder = Nothing
    log = log & thing.Name
End Sub
Set holder = Made("argument")
Uses (holder)
Echo log : log = ""
Set holder = Made("by value")
UsesValue holder
Sub UsesValue(ByVal thing)
    Set holder = Nothing
    log = log & thing.Name
End Sub
Echo log : log = ""

' Circles of calls: a property that sets itself.
Class Self
    Private m_depth
    Public Property Let Depth(value)
        If value > 0 Then Depth = value - 1
        m_depth = m_depth & value
    End Property
    Public Property Get Depth
        Depth = m_depth
    End Property
End Class
Set kept = New Self
kept.Depth = 4
Echo kept.Depth
