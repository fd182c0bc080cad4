Dim a : a = 1 : : Echo a ' a comment : Echo "no"
Rem a whole line : Echo "no"
Echo "first" & _
  " second" & _
     " third"
If a = 1 Then Echo "one" : Echo "still" Rem why
: Echo "after colon"
Echo 1 _

Echo "a"&"b"&5, "x"&hello
