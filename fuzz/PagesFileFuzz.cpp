// Any bytes as a Telepanel pages file: what is taken can be written again and says the same; what is refused is refused
// with a line of the file.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "KvTele2/PagesFile.h"

namespace {

void Require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto pages = kv::ParsePagesFile(bytes);
  if (!pages) {
    const auto lines = static_cast<std::size_t>(std::ranges::count(bytes, '\n')) + 1;
    Require(pages.error().line >= 1 && pages.error().line <= lines, "a fault lies in the file");
    Require(!pages.error().what.empty(), "a fault says what was expected");
    return 0;
  }
  Require(kv::IsProjectName(pages->project), "a project name that is taken can be saved");
  const auto again = kv::ParsePagesFile(kv::PrintPagesFile(*pages));
  Require(again && *again == *pages, "what is read is what is written");
  return 0;
}
