zorvex_fuzz(FuzzShader FuzzShader.cpp LIBS zorvex_flash_render)
zorvex_fuzz(FuzzGpu FuzzGpu.cpp LIBS zorvex_flash_render)
