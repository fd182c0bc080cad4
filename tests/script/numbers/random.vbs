Echo Rnd, Rnd, Rnd(0), Rnd(1)
Echo Rnd(-1) : Echo Rnd(-1) = Rnd(-1), Rnd(-2) = Rnd(-1)
x = Rnd(-1) : Randomize 5 : a = Rnd : x = Rnd(-1) : Randomize 5 : Echo a = Rnd
x = Rnd(-1) : Randomize 6 : Echo a = Rnd
ok = True : For i = 1 To 1000 : r = Rnd : If r < 0 Or r >= 1 Then ok = False
Next : Echo ok, TypeName(Rnd)
