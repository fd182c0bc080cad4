Echo "Привет, мир", Len("Привет"), Left("Привет", 3), Mid("Привет", 4, 1), "日本"
Set d = CreateObject("Scripting.Dictionary") : d("ключ") = "значение" : Echo d("ключ")
Echo InStr("абвгд", "в"), Replace("шкурка", "к", "К"), UCase("привет"), StrReverse("абв"), StrComp("Я", "я", 1)
