#pragma once

#include "desktop/Clipboard.h"

namespace kv {

// The desktop's own clipboard.
class QtClipboard final : public Clipboard {
 public:
  [[nodiscard]] bool HasText() const override;
  [[nodiscard]] std::string GetText() const override;
  void SetText(std::string_view text) override;
};

}  // namespace kv
