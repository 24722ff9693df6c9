#pragma once

#include <string>
#include <string_view>

namespace kv {

// The desktop's clipboard, as far as it holds text (UTF-8).
class Clipboard {
 public:
  virtual ~Clipboard() = default;

  [[nodiscard]] virtual bool HasText() const = 0;
  [[nodiscard]] virtual std::string GetText() const = 0;  // empty when there is none
  virtual void SetText(std::string_view text) = 0;
};

}  // namespace kv
