Echo CDbl(" 12.5 "), CDbl("1,234.5"), CDbl("-5"), CDbl("5-"), CDbl("(5)"), CDbl("$5.25"), CDbl("1e3"), CDbl("1D2"), CDbl("&HFF"), CDbl("&o17"), CDbl(".5"), CDbl("5.")
Echo IsNumeric("12"), IsNumeric("1,2"), IsNumeric("12a"), IsNumeric(""), IsNumeric(" "), IsNumeric("1e5"), IsNumeric("&HFF"), IsNumeric("$1"), IsNumeric("1 2"), IsNumeric("--1")
Echo IsNumeric(Empty), IsNumeric(Null), IsNumeric(True), IsNumeric(#1/1/2000#), IsNumeric(Array(1)), IsNumeric(Nothing)
Echo CBool("True"), CBool("false"), CBool("2"), CBool(0.1), CBool(""" """ = "")
Echo CByte(True), CInt(True), CLng("&H7FFFFFFF"), CInt("32767"), CLng(Empty), CDbl(False), CStr(Empty) = ""
