Option Explicit
Sub P
  Dim l : l = 1
  Execute "Dim m : m = 7"
  Execute "m = m + l" : Echo Eval("m")
  Execute "Execute ""m = m * 2""" : Echo Eval("m")
  On Error Resume Next
  Execute "n = 1" : Echo Err.Number, Err.Description
End Sub
P
