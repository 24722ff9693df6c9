// Any bytes as a compiled help file: whatever its head, its folders and its tables say, reading it ends, and what is
// read is within its bounds. Bytes that are none are read as a page, a contents file and a table of map numbers.

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "fuzz/Require.h"
#include "help/ChmFile.h"
#include "help/HelpBook.h"
#include "help/HtmlText.h"
#include "tests/support/TemporaryFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const kv::TemporaryFolder kFolder;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto path = kFolder.Path() / "any.chm";
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(size));
  const auto file = kv::ChmFile::Open(path);
  if (!file) {
    static_cast<void>(kv::ReadHtmlPage(bytes));
    static_cast<void>(kv::ParseSiteMap(bytes));
    static_cast<void>(kv::ParseMapNumbers(bytes, bytes));
    return 0;
  }
  for (const std::string& name : file->Names()) {
    const auto content = file->Read(name);
    Require(!content || content->size() <= kv::ChmFile::kLargestObject, "an object has its bound");
  }
  const auto book = kv::HelpBook::Open(path, kFolder.Path());
  Require(book.has_value(), "what can be read as a file is a book");
  static_cast<void>(book->PageOf(10));
  return 0;
}
