#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace kv {

// The desktop's way to start a program or to open a file or a web page with the program that is meant for it.
class Shell {
 public:
  virtual ~Shell() = default;

  // `verb` is "open" or empty, which is the same. `file` is a UTF-8 path or an address such as "https://...";
  // `parameters` is what a started program gets, empty for none. Returns as soon as it is started; the error is a
  // sentence for the user: what could not be opened, and why.
  [[nodiscard]] virtual std::expected<void, std::string> Open(std::string_view verb, std::string_view file,
                                                              std::string_view parameters) = 0;
};

}  // namespace kv
