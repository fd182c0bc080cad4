zorvex_fuzz(FuzzShader FuzzShader.cpp LIBS zorvex_flash_render)
