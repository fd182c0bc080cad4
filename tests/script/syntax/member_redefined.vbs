Class A
  Public x
  Private Function X : End Function
End Class
