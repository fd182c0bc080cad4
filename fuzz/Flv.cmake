zorvex_fuzz(FuzzFlv FuzzFlv.cpp LIBS zorvex_flash_video)
