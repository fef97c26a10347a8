# cmake -DOUTPUT=FILE.cpp -DLIST=FILE -DROOT=FOLDER -P HashSources.cmake
# Writes a source file with a digest of the files that LIST names, one a line, below ROOT; and a digest
# for each of the modules, for the answers, and for the rest.
file(STRINGS "${LIST}" files)
set(digests "")
set(groups "")
foreach(file ${files})
  file(SHA256 "${ROOT}/${file}" digest)
  string(APPEND digests "${digest} ${file}\n")
  if(file MATCHES "^pqmodules/([a-z0-9]+)[/.]")
    set(group ${CMAKE_MATCH_1})
  elseif(file MATCHES "^host/answers/")
    set(group answers)
  else()
    set(group base)
  endif()
  list(APPEND groups ${group})
  string(APPEND digests_${group} "${digest} ${file}\n")
endforeach()
string(SHA256 all "${digests}")
list(REMOVE_DUPLICATES groups)
list(SORT groups)
list(LENGTH groups count)
set(members "")
foreach(group ${groups})
  string(SHA256 digest "${digests_${group}}")
  string(APPEND members "  {\"${group}\", \"${digest}\"},\n")
endforeach()
file(WRITE "${OUTPUT}" "// Made by the build.
#include \"fleet/parser_sources.h\"

namespace host {
const std::string_view kParserSources = \"${all}\";
const ReaderSources kReaders[] = {
${members}};
const std::size_t kReaderCount = ${count};
}  // namespace host
")
