#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "KvCmDrv1/wire/MessageReceiver.h"

// Whatever arrives, in whatever pieces: every byte is used up once and in order, what is handed out as a frame really
// is one, and a good frame behind it all is found.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  kv::MessageReceiver receiver;
  const kv::Instant now{};
  std::string usedUp;
  const auto drain = [&](bool isEnd) {
    while (const auto received = receiver.Next(now, isEnd)) {
      usedUp += received->bytes;
      if (received->kind != kv::Received::Kind::Frame) continue;
      std::string again;
      if (kv::EncodeFrame(received->frame.unit, received->frame.text, again) != kv::TextFault::None) std::abort();
      if (!received->bytes.ends_with(again)) std::abort();
    }
  };
  for (std::size_t at = 0; at < size;) {
    const std::size_t piece = 1 + static_cast<std::size_t>(data[at]) * 5;
    receiver.Feed(bytes.substr(at, piece), now);
    drain(false);
    at += piece;
  }
  if (!bytes.starts_with(usedUp)) std::abort();

  drain(true);  // nobody waits any more: a block message that is not complete is given up
  receiver.Feed("\n/01IDEE\r", now);
  usedUp.clear();
  drain(false);
  if (!usedUp.ends_with("/01IDEE\r") || !receiver.IsEmpty()) std::abort();
  return 0;
}
