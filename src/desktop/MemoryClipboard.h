#pragma once

#include <optional>

#include "desktop/Clipboard.h"

namespace kv {

// A clipboard for programs that have no desktop, and for tests: the text stays in this process.
class MemoryClipboard final : public Clipboard {
 public:
  [[nodiscard]] bool HasText() const override { return mText.has_value(); }
  [[nodiscard]] std::string GetText() const override { return mText.value_or(""); }
  void SetText(std::string_view text) override { mText = text; }

 private:
  std::optional<std::string> mText;
};

}  // namespace kv
