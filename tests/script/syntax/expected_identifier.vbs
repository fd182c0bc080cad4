Dim 5
