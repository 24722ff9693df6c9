#include "dataview/sheets/SheetLibraries.h"

#include <xlsxwriter.h>
#include <zip.h>

#include <pugixml.hpp>

namespace kv {
namespace {

// 1130 is 1.13; before version 1.9 a digit less was counted, which no system has any more.
std::string XmlVersion() {
  return std::to_string(PUGIXML_VERSION / 1000) + "." + std::to_string(PUGIXML_VERSION % 1000 / 10);
}

}  // namespace

std::array<LibraryNotice, 3> SheetLibraries() {
  return {{{"libxlsxwriter", lxw_version(), "BSD-2-Clause"},
           {"libzip", zip_libzip_version(), "BSD-3-Clause"},
           {"pugixml", XmlVersion(), "MIT"}}};
}

}  // namespace kv
