x = 1
  Else
