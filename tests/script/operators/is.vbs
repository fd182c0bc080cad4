Dim a, b, c
Set a = CreateObject("Scripting.Dictionary") : Set b = a : Set c = Nothing
Echo a Is b, a Is c, c Is Nothing, Not a Is Nothing
Set c = CreateObject("Scripting.Dictionary")
Echo a Is c
x = 5 Is Nothing
