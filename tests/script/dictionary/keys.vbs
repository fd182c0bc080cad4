' Keys of every length and kind live beside each other; each comes back as it was given.
Set d = CreateObject("Scripting.Dictionary")
For n = 0 To 20 : d.Add String(n, "k"), n : Next
For n = 0 To 20
    If d(String(n, "k")) <> n Then Echo "lost", n
Next
k = d.Keys : Echo d.Count, Len(k(0)), Len(k(15)), Len(k(16)), k(3)
' A text that ends in half a character is another key than the one without that half.
odd = MidB("abc", 1, 5)
d.RemoveAll : d(odd) = "odd" : Echo LenB(d.Keys()(0)), d.Exists(odd)
' Numbers that follow each other, whole and broken, small and beyond what a Long holds.
d.RemoveAll
For n = -500 To 500 : d.Add n, n : d.Add n + 0.5, n : d.Add 4294967296.0 * n + 7 * Abs(n) + 1E15, n : Next
bad = 0
For n = -500 To 500
    If d(n) <> n Or d(n + 0.5) <> n Or d(4294967296.0 * n + 7 * Abs(n) + 1E15) <> n Then bad = bad + 1
Next
Echo d.Count, bad
' Renaming from a short text to a long one, to a number and back keeps the place among the others.
d.RemoveAll : d("a") = 1 : d("b") = 2 : d("c") = 3
d.Key("b") = String(40, "x") : d.Key(String(40, "x")) = 5 : Echo Join(d.Keys, ","), d(5)
For n = 1 To 200 : d.Key(5) = "again" : d.Key("again") = 5 : Next
d.Key("c") = "c" : d.Key(5) = "b" : Echo Join(d.Keys, ","), Join(d.Items, ","), d.Count
' Gaps close while others are added; what stays keeps its order.
d.RemoveAll
For n = 1 To 3000
    d.Add "a rather long key number " & n, n : d.Add "k" & n, -n
    If n > 10 Then d.Remove "a rather long key number " & (n - 10) : d.Remove "k" & (n - 10)
Next
Echo d.Count, Join(d.Items, " ")
d.RemoveAll : d.CompareMode = 1
For n = 1 To 100 : d.Add "Key" & n, n : d.Add "Ein langer Schluessel " & n, -n : Next
Echo d("kEY50"), d("EIN LANGER SCHLUESSEL 50"), d.Exists("KEY101"), d.Keys()(0)
