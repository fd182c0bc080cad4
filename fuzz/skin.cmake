zorvex_fuzz(FuzzSkin FuzzSkin.cpp LIBS zorvex_skin)
