n = 3
Dim a(n)
