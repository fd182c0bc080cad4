Do Forever
Loop
