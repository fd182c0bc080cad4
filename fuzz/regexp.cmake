zorvex_fuzz(FuzzRegExp FuzzRegExp.cpp LIBS zorvex_script)
