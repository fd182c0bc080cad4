Set d = CreateObject("Scripting.Dictionary")
d.Add "a", 1 : d("b") = 2 : d.Item(3) = "three"
Echo d.Count, d("a"), d.Item("b"), d(3), d.Exists("A"), d.Exists("a"), d.Exists(3.0), d.Exists("3")
Echo Join(d.Keys, ","), Join(d.Items, ",")
Echo IsEmpty(d("new")), d.Count, d.Exists("new")
d.Key("a") = "z" : Echo d("z"), d.Exists("a")
d("b") = d("b") + 5 : Echo d("b")
d.Remove "b" : Echo d.Count, Join(d.Keys, ",")
d.RemoveAll : Echo d.Count
d.CompareMode = vbTextCompare : d("Key") = 1 : Echo d("KEY"), d.Count
Set d("o") = d : Echo d("o")("key")
d("arr") = Array(1, 2) : Echo d("arr")(1)
On Error Resume Next
d.CompareMode = 0 : Echo Err.Number
k = d.Keys : Echo k(0), d.Keys()(1)
For i = 1 To 1000 : d(i) = i : Next
For i = 1 To 990 : d.Remove i : Next
Echo d.Count, d(995)
