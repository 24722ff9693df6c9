#pragma once

#include <optional>
#include <string>

namespace kv::test {

// What tests were seen to do, in the file `name` below tests/; nothing without such a file. kvselftest, which runs
// where there are no sources, holds these files itself.
[[nodiscard]] std::optional<std::string> RecordOf(const std::string& name);

// Whether who runs the tests has asked for new records, with KV_RENEW_LOOKS=1 in the environment.
[[nodiscard]] bool AreRecordsRenewed();
// Puts `text` into the file, or behind what is in it.
void RenewRecord(const std::string& name, const std::string& text, bool goesOn = false);

}  // namespace kv::test
