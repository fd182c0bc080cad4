zorvex_fuzz(FuzzSound FuzzSound.cpp LIBS zorvex_flash_sound)
