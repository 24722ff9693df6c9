#include "KvCmDrv1/ChangeGate.h"

#include <algorithm>
#include <utility>

#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/BlockFacts.h"
#include "KvCmDrv1/wire/CommandFacts.h"
#include "KvCmDrv1/wire/PanelCodec.h"
#include "base/Hex.h"
#include "base/LittleEndian.h"
#include "link/BlockOperations.h"

namespace kv {
namespace {

constexpr std::size_t kShortestFrame = 1 + 2 + 1 + 2 + 1;  // of one character
constexpr std::size_t kBlockUnit = 4;
constexpr std::size_t kBlockOpCode = 8;

// Exactly one frame. One with another start inside could be taken for two.
bool IsOneFrame(std::string_view bytes) {
  return bytes.size() >= kShortestFrame && bytes.front() == kFrameStart && bytes.rfind(kFrameStart) == 0 &&
         bytes.find(kFrameEnd) + 1 == bytes.size();
}

bool IsBlock(std::string_view bytes) {
  return bytes.size() >= kBlockHead && bytes.front() == kBlockStart;
}

}  // namespace

bool MayChange(std::string_view bytes) {
  if (IsOneFrame(bytes)) return ChangesSomething(TextOf(bytes));
  if (!IsBlock(bytes)) return true;
  const auto opCode = LittleEndianAt<std::uint16_t>(bytes, kBlockOpCode);
  if (opCode == BlockOperation::kPanelEvent) return PanelEventChangesSomething(bytes.substr(kBlockHead));
  return !BlockFactsOf(opCode).isRead;
}

std::uint8_t UnitOfRequest(std::string_view bytes) {
  if (IsBlock(bytes)) return static_cast<std::uint8_t>(bytes[kBlockUnit]);
  return HexPairToByte(bytes.substr(std::min<std::size_t>(bytes.size(), 1), 2)).value_or(0);
}

void ChangeGate::SetObserver(ChangeObserver* observer, Describe describe) {
  mObserver = observer;
  mDescribe = std::move(describe);
}

bool ChangeGate::Pass(std::string_view bytes) {
  if (mObserver == nullptr || mIsOpen || !MayChange(bytes)) return true;
  auto taken = mObserver->BeforeRequest(mDescribe(bytes));
  mIsOpen = taken.has_value();
  if (!mIsOpen) mRefusal = std::move(taken.error());
  return mIsOpen;
}

void ChangeGate::End(const ChangeEnd& end) {
  if (std::exchange(mIsOpen, false) && mObserver != nullptr) mObserver->AfterRequest(end);
}

}  // namespace kv
