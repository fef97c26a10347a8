# cmake -DOUTPUT=FILE.cpp -DHEADER=... -DFILES="kName=path;..." -P EmbedText.cmake
# Writes a source file that defines, in namespace host, one std::string_view per file.
set(source "// Made by the build.\n#include \"${HEADER}\"\n\nnamespace host {\n")
foreach(entry ${FILES})
  string(REGEX MATCH "^([^=]+)=(.*)$" matched "${entry}")
  set(name ${CMAKE_MATCH_1})
  file(READ "${CMAKE_MATCH_2}" bytes HEX)
  string(LENGTH "${bytes}" length)
  math(EXPR length "${length} / 2")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND source "static const char ${name}Bytes[] = {${bytes}};\n"
         "const std::string_view ${name}(${name}Bytes, ${length});\n")
endforeach()
file(WRITE "${OUTPUT}" "${source}}  // namespace host\n")
