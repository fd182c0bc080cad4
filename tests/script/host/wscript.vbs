WScript.Echo "a", 1, True
Echo
Echo Empty, "x"
Call WScript.Echo("b")
WScript.echo("c")
Dim e : Set e = WScript : e.Echo "d"
With WScript : .Echo "e" : End With
WScript.Nope
