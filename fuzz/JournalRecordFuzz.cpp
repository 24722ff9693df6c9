// Any text as the JSON of a journal's record, with the hash that it would need: what is read is printed, read again,
// and printed the same; the record is the same where no text of it was shortened.

#include <cstdint>
#include <string>
#include <string_view>

#include "digest/Sha256.h"
#include "fuzz/Require.h"
#include "journal/JournalRecord.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string json(reinterpret_cast<const char*>(data), size);
  kv::Sha256 digest;
  digest.Add(json);
  const auto read = kv::ParseRecord(digest.Hex() + " " + json);
  (void)kv::ParseRecord(json);
  if (!read) return 0;
  kv::JournalRecord record = read->record;
  if (record.kind != kv::RecordKind::Begin) {  // what others do not have is not printed
    record.controller = {};
    record.link.clear();
    record.tool.clear();
    record.what.clear();
    record.operands.clear();
  }
  const std::string line = kv::PrintRecord(record);
  Require(line.find('\n') == std::string::npos, "a record is one line");
  const auto again = kv::ParseRecord(line);
  Require(again.has_value(), "what was printed is a record");
  const bool isWhole = json.size() <= kv::kLongestJournalText;
  Require(!isWhole || again->record == record, "what was printed is the same when it is read");
  Require(kv::PrintRecord(again->record) == line, "and when it is printed again");
  return 0;
}
