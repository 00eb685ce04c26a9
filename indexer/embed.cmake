# Writes a C++ source that holds FILES as byte arrays (see embedded_files.h).
set(arrays "")
set(table "")
set(number 0)
foreach(path IN LISTS FILES)
  get_filename_component(name ${path} NAME)
  file(READ ${path} bytes HEX)
  string(REGEX REPLACE "(................................)" "\\1\n    " bytes "${bytes}")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1, " bytes "${bytes}")
  string(APPEND arrays "const unsigned char kFile${number}[] = {\n    ${bytes}0x00};\n")
  string(APPEND table "    {\"${name}\", {reinterpret_cast<const char*>(kFile${number}), sizeof kFile${number} - 1}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "// Made by embed.cmake.
#include \"indexer/config/embedded_files.h\"

namespace vela::indexer {
namespace {
${arrays}
const EmbeddedFile kFiles[] = {
${table}};
}  // namespace

std::span<const EmbeddedFile> EmbeddedFiles() { return kFiles; }

}  // namespace vela::indexer
")
