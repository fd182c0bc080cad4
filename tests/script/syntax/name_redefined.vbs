Dim a
Dim b, A
