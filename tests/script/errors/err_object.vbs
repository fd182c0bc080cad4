On Error Resume Next
Err.Raise 1000, "MySource", "My text"
Echo Err.Number, Err.Source, Err.Description, Err
Err.Clear : Err.Raise 6
Echo Err.Number, Err.Source, Err.Description
Err.Clear : Err.Raise vbObjectError + 5, , "only text"
Echo Err.Number, Err.Source, Err.Description
Err.Raise 12345 : Echo Err.Description
Err.Number = 7 : Err.Description = "set" : Echo Err.Number, Err.Description
On Error Resume Next : Echo Err.Number
Err.Raise 0 : Echo Err.Number
On Error GoTo 0
Err.Raise 17, "Mine", "The end"
