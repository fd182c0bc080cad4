On Error Resume Next
Err.Raise 6, "Mine", "My text" : Err.Raise 13 : Echo Err.Number, Err.Source, Err.Description
Err.Raise 14, , "Other" : Echo Err.Number, Err.Source, Err.Description
Err.Clear
' Codes of the system and of objects have the language's numbers.
For Each code In Array(&H800A000D, &H80020005, &H80020003, &H8002000B, &H80070057, &H8007000E, &H80040154, &H800A01A8, vbObjectError + 5)
  Err.Raise code : Echo Err.Number, Err.Description : Err.Clear
Next
Err.Raise 70000 : Echo Err.Number : Err.Clear
Err.Raise 0 : Echo Err.Number
