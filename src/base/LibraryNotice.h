#pragma once

#include <string>
#include <string_view>

namespace kv {

// A library of others that the programs are built with, for the about screen and reports. The component that wraps it
// knows its version.
struct LibraryNotice {
  std::string_view name;
  std::string version;       // of the one that runs, where it tells
  std::string_view licence;  // the SPDX name
};

}  // namespace kv
