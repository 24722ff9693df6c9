#include "KvCmDrv1/TraceSecrets.h"

#include <algorithm>
#include <chrono>

#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockCodec.h"

namespace kv {
namespace {

// Longer than an adapter or a modem holds back what it echoes.
constexpr Duration kEchoesComeWithin = std::chrono::minutes(1);

constexpr std::size_t kLetters = 3;  // of the command, behind "/" and unit id
constexpr std::size_t kTag = 4;
constexpr std::size_t kSeal = 12;
constexpr std::size_t kSealCheck = 8;
constexpr std::size_t kEnd = 3;     // checksum and CR
constexpr std::size_t kAround = 6;  // "/", unit id, checksum and CR

enum class Carrier { None, Access, Segments, Block };

Carrier CarrierOf(std::string_view bytes) {
  if (bytes.starts_with(kFrameStart)) {
    const std::string_view text = bytes.substr(std::min(kLetters, bytes.size()));
    if (text.starts_with("AC")) return Carrier::Access;
    return text.starts_with("GI") ? Carrier::Segments : Carrier::None;
  }
  if (!bytes.starts_with(kBlockStart) || bytes.size() <= kBlockHead) return Carrier::None;
  const std::uint32_t operation = LittleEndian(bytes.substr(8, 2));
  return operation == 2 || operation == 66 ? Carrier::Block : Carrier::None;
}

// Whether a frame of this length is a reply. The requests have other lengths.
bool IsReply(Carrier carrier, std::size_t frameSize) {
  constexpr std::size_t kRefusal = 2 + 5 + 2 + kSeal;  // letters, ERROR, code
  if (frameSize < kAround) return false;
  const std::size_t text = frameSize - kAround;
  if (text == kRefusal) return true;
  if (carrier == Carrier::Access) return text == 2 + kTag + 2 + kSeal;
  constexpr std::size_t kNoTable = 3 + kSeal;
  constexpr std::size_t kEmptyTable = 3 + 4 + kSeal;
  constexpr std::size_t kRow = 2 + 1 + 8 + 8;
  return text == kNoTable || (text >= kEmptyTable && (text - kEmptyTable) % kRow == 0);
}

// From where to where the bytes depend on the password.
std::pair<std::size_t, std::size_t> SecretPart(Carrier carrier, bool isReply, std::string_view bytes) {
  if (carrier == Carrier::Block) return {kBlockHead, bytes.size()};
  const std::size_t end = bytes.size() - (bytes.ends_with(kFrameEnd) ? 1 : 0);
  if (isReply) return {bytes.size() - kEnd - kSealCheck, end};
  return {kLetters + 2 + (carrier == Carrier::Access ? kTag : 0), end};
}

bool IsWhole(std::string_view bytes) {
  if (bytes.starts_with(kBlockStart)) return bytes.size() >= kBlockHead + kBlockCheck;
  if (!bytes.starts_with(kFrameStart) || bytes.find(kFrameEnd) != bytes.size() - 1) return false;
  const auto frame = FindFrame(bytes.substr(0, bytes.size() - 1));
  return frame && frame->text.size() == bytes.size() - kAround;
}

// A damaged echo may still be a whole frame, whose sum fits by chance. No reply is so much like the request.
bool IsLike(std::string_view bytes, std::string_view secret) {
  if (bytes.size() != secret.size()) return false;
  std::size_t same = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) same += bytes[at] == secret[at] ? 1 : 0;
  return 2 * same >= bytes.size();
}

}  // namespace

std::optional<std::string_view> TraceSecrets::Harmless(Instant when, Passage passage, std::string_view bytes) {
  const Carrier carrier = CarrierOf(bytes);
  const bool isSent = passage == Passage::Sent;
  if (isSent && carrier != Carrier::None) {
    mWithholdsUntil = when + kEchoesComeWithin;
    mSecret = Secret(bytes);
  }
  if (!mSecret.IsEmpty() && when >= mWithholdsUntil) mSecret.Clear();
  const bool mayBeEcho = !isSent && when < mWithholdsUntil;
  if (mayBeEcho && (passage == Passage::Garbage || !IsWhole(bytes))) return std::nullopt;
  if (mayBeEcho && carrier == Carrier::None && IsLike(bytes, mSecret.View())) return std::nullopt;
  if (carrier == Carrier::None) return bytes;
  mMasked = bytes;
  const auto [from, to] = SecretPart(carrier, !isSent && IsReply(carrier, bytes.size()), bytes);
  for (std::size_t at = from; at < to; ++at) mMasked[at] = '*';
  return mMasked;
}

}  // namespace kv
