While x
End
