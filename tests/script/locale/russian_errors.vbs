' locale: ru
On Error Resume Next
x = 1 / 0 : Echo Err.Description, "|", Err.Source : Err.Clear
x = CInt("abc") : Echo Err.Description : Err.Clear
Nothing.Foo : Echo Err.Description : Err.Clear
Err.Raise 12345 : Echo Err.Description : Err.Clear
' Not the locale that a script sets but that of the program decides.
SetLocale 1033 : x = 1 / 0 : Echo Err.Description
On Error GoTo 0
Execute "x = ("
