Select x
End Select
