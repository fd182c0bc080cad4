zorvex_fuzz(FuzzSwf FuzzSwf.cpp LIBS zorvex_flash_swf)
