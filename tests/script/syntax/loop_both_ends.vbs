Do While x
Loop Until y
