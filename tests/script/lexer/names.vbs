Dim CamelCase, [end], [два слова], Имя
camelcase = 5 : ECHO CAMELCASE
[end] = 7 : Echo [END] + 1
[два слова] = "ok" : Echo [два слова]
Имя = "кириллица" : Echo имя
Dim property, error, step, default : property = 1 : error = 2 : step = 3 : default = 4
Echo property + error + step + default
Class C
  Public Next_
  Public Function Select_() : Select_ = "sel" : End Function
  Public Property Get [Loop] : [Loop] = "lp" : End Property
End Class
Set o = New C
Echo o.Loop, o.select_
