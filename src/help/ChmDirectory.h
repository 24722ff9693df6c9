#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <string>
#include <string_view>

namespace kv {

// Where an object of a compiled help file lies: in its section (0 as it is, 1 compressed), counted from its beginning.
struct ChmObject {
  std::uint64_t section = 0;
  std::uint64_t start = 0;
  std::uint64_t length = 0;
};

using ChmDirectory = std::map<std::string, ChmObject, std::less<>>;

// The directory of a compiled help file by the names of the objects, "/cloner.html". All that the library which unpacks
// such a file takes on trust is checked: that the tables end inside the file and lead to no place twice, and by what
// the compressed section is unpacked. The error says what is wrong, "its directory has no end".
[[nodiscard]] std::expected<ChmDirectory, std::string> ReadChmDirectory(std::string_view file);

}  // namespace kv
