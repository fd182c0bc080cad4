# Writes a file's bytes as the elements of a C++ array initializer.
#   cmake -D INPUT=... -D OUTPUT=... -P EmbedFile.cmake
file(READ ${INPUT} hex HEX)
string(REGEX REPLACE "(..)" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n"
       bytes "${bytes}")
file(WRITE ${OUTPUT} "${bytes}\n")
