# cmake -DTESTS=FOLDER -DOUT=FILE.cpp -P Records.cmake: the records of the tests as a part of the program, byte for byte.
file(GLOB files RELATIVE ${TESTS} ${TESTS}/recorded/*.txt ${TESTS}/KvTele2/shown/*.txt)
set(rows "")
foreach(file IN LISTS files)
  file(READ ${TESTS}/${file} bytes HEX)
  file(SIZE ${TESTS}/${file} size)
  string(REGEX REPLACE "(..)" "\\\\x\\1" bytes "${bytes}")
  string(APPEND rows "      {\"${file}\", {\"${bytes}\", ${size}}},\n")
endforeach()
file(CONFIGURE OUTPUT ${OUT} @ONLY CONTENT [[
#include "tests/support/Records.h"

#include <map>
#include <string_view>

namespace kv::test {

std::optional<std::string> RecordOf(const std::string& name) {
  static const std::map<std::string_view, std::string_view> kRecords = {
@rows@  };
  const auto found = kRecords.find(name);
  return found == kRecords.end() ? std::nullopt : std::optional<std::string>(found->second);
}

bool AreRecordsRenewed() {
  return false;
}

void RenewRecord(const std::string&, const std::string&, bool) {}

}  // namespace kv::test
]])
