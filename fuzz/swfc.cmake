zorvex_fuzz(FuzzSwfc FuzzSwfc.cpp LIBS zorvex_swfc)
