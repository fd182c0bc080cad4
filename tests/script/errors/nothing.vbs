' The literal is no object at all; a variable that holds it is an object variable that is not set.
Set n = Nothing
Sub Report : Echo Err.Number, Err.Description : Err.Clear : End Sub
On Error Resume Next
Nothing.Foo : Report
x = Nothing.Foo : Report
n.Foo : Report
x = n.Foo : Report
n.Foo = 1 : Report
Set n.Foo = n : Report
n.Foo.Bar = 1 : Report
x = n : Report
x = n & "" : Report
n(1) : Report
With n : .Foo : Report : End With
e.Foo : Report
x = 5 : x.Foo : Report
