zorvex_fuzz(FuzzAbc FuzzAbc.cpp LIBS zorvex_flash_avm2)
