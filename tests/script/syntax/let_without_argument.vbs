Class A
Property Let Foo()
End Property
End Class
