#include "link/CommandReply.h"

namespace kv {

bool CommandReply::IsError() const {
  return text.find("ERROR") != std::string::npos;
}

std::string_view CommandReply::Data() const {
  constexpr std::size_t kEcho = 2;
  constexpr std::size_t kChecksum = 2;
  if (text.size() < kEcho + kChecksum) return {};
  return std::string_view(text).substr(kEcho, text.size() - kEcho - kChecksum);
}

}  // namespace kv
