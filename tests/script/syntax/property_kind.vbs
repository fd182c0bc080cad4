Class A
Property Foo
End Property
End Class
