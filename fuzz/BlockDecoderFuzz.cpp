#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "KvCmDrv1/wire/MessageReceiver.h"
#include "base/Crc32.h"

namespace {

void AppendCheck(std::string& bytes, std::size_t length) {
  kv::AppendLittleEndian(bytes, kv::Crc32(bytes), length);
}

// A message whose checks hold around what the fuzzer chose, so that it gets past them.
std::string WithGoodChecks(std::string_view bytes) {
  constexpr std::size_t kFields = 22;  // up to the payload length
  std::string message = "\xB4\x4B\x01\x02";
  message += bytes.substr(0, kFields - message.size());
  message.resize(kFields);
  const std::string_view payload = bytes.substr(std::min(bytes.size(), kFields - 4));
  kv::AppendLittleEndian(message, static_cast<std::uint32_t>(payload.size()), 4);
  AppendCheck(message, 2);
  message += payload;
  AppendCheck(message, 4);
  return message;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  kv::MessageReceiver receiver;
  const kv::Instant now{};
  receiver.Feed(bytes, now);
  while (const auto received = receiver.Next(now)) {
    if (received->kind == kv::Received::Kind::Block && !kv::DecodeBlockReply(received->bytes)) std::abort();
  }

  receiver.Clear();
  const std::string message = WithGoodChecks(bytes);
  receiver.Feed(message, now);
  const auto received = receiver.Next(now);
  const bool fits = message.size() <= kv::kBlockHead + kv::kMaxReplyPayload + kv::kBlockCheck;
  if (fits != (received && received->kind == kv::Received::Kind::Block)) std::abort();
  return 0;
}
