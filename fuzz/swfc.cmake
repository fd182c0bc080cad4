zorvex_fuzz(fuzz_swfc FuzzSwfc.cpp LIBS zorvex_swfc)
