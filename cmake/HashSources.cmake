# cmake -DOUTPUT=FILE.cpp -DLIST=FILE -DROOT=FOLDER -P HashSources.cmake
# Writes a source file with a digest of the files that LIST names, one a line, below ROOT.
file(STRINGS "${LIST}" files)
set(digests "")
foreach(file ${files})
  file(SHA256 "${ROOT}/${file}" digest)
  string(APPEND digests "${digest} ${file}\n")
endforeach()
string(SHA256 all "${digests}")
file(WRITE "${OUTPUT}" "// Made by the build.\n#include \"fleet/parser_sources.h\"\n\nnamespace host {\nconst std::string_view kParserSources = \"${all}\";\n}  // namespace host\n")
