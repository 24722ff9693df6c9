#pragma once

#include <string>
#include <string_view>

namespace kv {

// The reply to a text command: the reply text with its checksum still at the end.
struct CommandReply {
  std::string text;
  int status = 0;  // 0, or the code behind ERROR

  // A reply that contains "ERROR" anywhere is a failure.
  [[nodiscard]] bool IsError() const;

  // The data: the text from its third character, without its last two characters. Empty when it is shorter.
  [[nodiscard]] std::string_view Data() const;
};

}  // namespace kv
