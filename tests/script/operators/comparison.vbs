Dim n, s, e : n = 10 : s = "10"
' Out of variables a number is less than any text; a literal decides the kind of comparison.
Echo n = s, n < s, s > n, n = "10", 10 = s, "10" = 10, s = 10
Echo e = 0, e = "", e = False, 0 = e, "" = e, e < 1, "a" > e
Echo "a" < "B", "a" = "A", "abc" < "abd", "Z" < "a", "10" < "9", 10 < 9
Echo True = -1, True < False, CByte(5) = 5, 1.0 = 1, CCur(2) = 2, #1/1/2000# < #1/2/2000#, #1/1/1900# = 2
Echo "True" = True, n <> s, "é" > "z", 0.1 + 0.2 = 0.3, 1 =< 1, 1 => 2
On Error Resume Next
x = "abc" : If x = 5 Then Echo "equal"
Echo Err.Number, Err.Description
Err.Clear
x = (Nothing = Nothing) : Echo Err.Number
