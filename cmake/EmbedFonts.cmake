# cmake -DOUTPUT=FILE.cpp "-DINPUTS=FILE|FILE..." -P EmbedFonts.cmake: a source with the bytes of these files.
string(REPLACE "|" ";" files "${INPUTS}")
set(arrays "")
set(cases "")
set(index 0)
foreach(file IN LISTS files)
  file(READ ${file} digits HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${digits}")
  string(APPEND arrays "constexpr unsigned char kFile${index}[] = {${bytes}};\n")
  string(APPEND cases "  if (index == ${index}) return {reinterpret_cast<const char*>(kFile${index}), sizeof(kFile${index})};\n")
  math(EXPR index "${index} + 1")
endforeach()
file(WRITE ${OUTPUT} "#include \"simulator/panel/FontData.h\"\n
namespace sim {\nnamespace {\n\n${arrays}\n}  // namespace\n
static_assert(kFontFiles == ${index});\n
std::string_view FontFile(std::size_t index) {\n${cases}  return {};\n}\n\n}  // namespace sim\n")
