Echo 1 & 2, True & Empty & 1.5, #1/2/2003# & "", "a" + "b", Null & "x"
s = "ab" : t = s : s = s & "c" : u = t & "d" : s = s & s
Echo s, t, u
x = "q" : y = x & "1" : z = x & "2" : Echo x, y, z
