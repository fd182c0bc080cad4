zorvex_fuzz(FuzzVbscript FuzzVbscript.cpp LIBS zorvex_script)
