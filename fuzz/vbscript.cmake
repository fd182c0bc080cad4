zorvex_fuzz(fuzz_vbscript FuzzVbscript.cpp LIBS zorvex_script)
