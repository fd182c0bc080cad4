Class A
  Public Default x
End Class
