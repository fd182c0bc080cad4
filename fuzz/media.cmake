zorvex_fuzz(FuzzGetFlashInfo FuzzGetFlashInfo.cpp LIBS zorvex_media)
zorvex_fuzz(FuzzExtractExe FuzzExtractExe.cpp LIBS zorvex_media)
