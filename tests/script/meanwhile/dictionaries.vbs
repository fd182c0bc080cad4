' Dictionaries that are changed while they are gone through, and keys of every kind.
Option Explicit
Dim d, key, log
Set d = CreateObject("Scripting.Dictionary")
d.Add "a", 1 : d.Add "b", 2 : d.Add "c", 3
For Each key In d.Keys
    d.Remove key
    log = log & key & d.Count & " "
Next
Echo log & d.Count
d.Add 1, "integer" : d.Add "1", "text" : d.Add 1.5, "double"
Echo d.Item(1), d.Item("1"), d(1.5), d.Exists(1.0), d.Exists(2)
Echo d.Item("new") & "|", d.Count
d.Key("1") = "one"
Echo d("one"), d.Exists("1"), Join(d.Items, ",")
On Error Resume Next
d.Add "one", 2 : Echo Err.Number : Err.Clear
d.Remove "none" : Echo Err.Number : Err.Clear
d.Key("none") = 1 : Echo Err.Number : Err.Clear
d.CompareMode = 1 : Echo Err.Number : Err.Clear
On Error GoTo 0
d.RemoveAll
d.CompareMode = 1
d("Key") = 1
Echo d("KEY"), d.Exists("key"), d.Count
Set d("self") = d
Echo d("self").Count, d("SELF")("self").Exists("key")
Set d("self") = Nothing
d("list") = Array(1, 2)
Echo UBound(d("list")), d("list")(1)
log = ""
For Each key In d
    log = log & key & ";"
Next
Echo log
