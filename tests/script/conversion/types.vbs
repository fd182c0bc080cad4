Echo VarType(Empty), VarType(Null), VarType(1), VarType(100000), VarType(CSng(1)), VarType(1.5), VarType(CCur(1)), VarType(Now), VarType("a"), VarType(Nothing), VarType(True), VarType(CByte(1)), VarType(Array())
Echo TypeName(Empty), TypeName(Null), TypeName(Nothing), TypeName(Array()), TypeName(CreateObject("Scripting.Dictionary")), TypeName(New RegExp), TypeName(Err)
Echo IsArray(Array()), IsArray(1), IsEmpty(x), IsEmpty(""), IsNull(Null), IsObject(Nothing), IsObject("a"), IsDate("1/2/2000"), IsDate("nope"), IsDate(Now), IsDate(5)
Echo vbArray, vbObjectError, vbTextCompare, vbSunday, vbYesNo + vbQuestion, vbUseDefault, Len(vbCrLf), Asc(vbTab), vbVariant
Echo ScriptEngine, ScriptEngineMajorVersion, RGB(255, 128, 1), RGB(300, 0, 0)
