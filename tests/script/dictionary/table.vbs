Set d = CreateObject("Scripting.Dictionary")
For n = 1 To 2000 : d.Add "key " & n, n : Next
For n = 1 To 2000 Step 2 : d.Remove "key " & n : Next
total = 0
For Each k In d : total = total + d(k) : Next
Echo d.Count, total, d.Exists("key 3"), d.Exists("key 4"), d.Keys()(0), d.Items()(999)
For n = 1 To 1000 : d.Key("key " & 2 * n) = "new " & n : Next
Echo d.Count, d("new 7"), d.Exists("key 14"), d.Keys()(1)
d.RemoveAll : Echo d.Count, d.Exists("new 7")
' Numbers are one key whatever their type; texts, dates of other values and objects are others.
d.Add 1, "one" : Echo d(1.0), d(CByte(1)), d(CCur(1)), d.Exists("1"), d.Exists(True), d(-0.0) & "|"
d.Add Empty, "empty" : d.Add Null, "null" : Set o = New RegExp : d.Add o, "object" : Echo d(Empty), d(Null), d(o), d.Exists(Nothing)
d.RemoveAll : d.CompareMode = 1 : d.Add "Ключ", 1 : Echo d("кЛЮЧ"), d.Exists("KEY")
Class Item : Public Default Property Get V : V = 5 : End Property : End Class
d("value") = New Item : Set d("object") = New Item : Echo TypeName(d("value")), TypeName(d("object"))
On Error Resume Next
d.Add "value", 1 : Echo Err.Number : Err.Clear
d.Remove "nothing" : Echo Err.Number : Err.Clear
d.Key("nothing") = 1 : Echo Err.Number : Err.Clear
d.Add Array(1), 1 : Echo Err.Number : Err.Clear
