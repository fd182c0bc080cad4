zorvex_fuzz(FuzzActions FuzzActions.cpp LIBS zorvex_flash_avm1)
