#include "download/CompactApplication.h"

#include <algorithm>

#include "base/Hex.h"
#include "clone/CloneSegment.h"

namespace kv {
namespace {

constexpr std::size_t kMost = std::size_t{1} << 20;  // more than any of these controllers has

std::string AddressText(std::size_t place) {
  return ToHex(static_cast<std::uint32_t>(place), kAddressDigits);
}

std::optional<Bytes> BytesIn(std::string_view digits) {
  return digits.size() % 2 == 0 ? HexStringToBytes(digits) : std::nullopt;
}

}  // namespace

std::expected<Bytes, DownloadOutcome> CompactApplication::Read() {
  Bytes application;
  while (application.size() < kMost) {
    if (auto stop = mWork.StopPoint(); !stop) return std::unexpected(std::move(stop.error()));
    const auto block = mWork.WhileBusy([&] { return ReadBlock(application.size()); });
    if (!block) return std::unexpected(block.error());
    application.insert(application.end(), block->begin(), block->end());
    if (block->size() < kBlock) return application;
  }
  return mWork.Fail(DownloadCause::Reply, "The controller's application memory does not end.");
}

std::expected<Bytes, DownloadOutcome> CompactApplication::ReadBlock(std::size_t place) {
  const std::string address = AddressText(place);
  const auto reply = mWork.Send("RX" + address);
  if (!reply) return std::unexpected(reply.error());
  const std::string_view data = reply->Data();
  auto bytes = data.starts_with(address) ? BytesIn(data.substr(kAddressDigits)) : std::nullopt;
  if (bytes && bytes->size() <= kBlock) return *std::move(bytes);
  return mWork.Fail(DownloadCause::Reply, "The reply to RX" + address + " is no block of application memory.");
}

DownloadWork::Step CompactApplication::Write(const Bytes& application) {
  for (std::size_t place = 0; place < application.size(); place += kBlock) {
    std::string command = "FW" + AddressText(place);
    const std::size_t end = std::min(place + kBlock, application.size());
    for (std::size_t i = place; i < end; ++i) command += ToHex(application[i], 2);
    if (auto written = Tell(command); !written) return written;
  }
  return Tell("FW" + AddressText(0));
}

DownloadWork::Step CompactApplication::Tell(const std::string& command) {
  if (auto stop = mWork.StopPoint(); !stop) return stop;
  return mWork.Do(ControllerLeft::ProjectErased, [&]() -> DownloadWork::Step {
    const auto reply = mWork.WhileBusy([&] { return mWork.Send(command); });
    if (!reply) return std::unexpected(reply.error());
    return {};
  });
}

}  // namespace kv
