Property Get A : End Property
