#include "KvCmDrv1/LinkTrial.h"

#include "KvCmDrv1/Driver.h"
#include "desktop/StopScope.h"

namespace kv {
namespace {

std::expected<LinkTrial, LinkError> Identify(ChannelImpl& channel) {
  if (!channel.Open()) return std::unexpected(channel.LastError());
  channel.SetCommandOwner("test");
  const std::optional<VersionInfo> version = channel.GetVersionInfo(channel.UnitID());
  const LinkError error = channel.LastError();
  const auto info = version ? channel.GetControllerInfo(channel.UnitID()) : std::nullopt;
  channel.SetCommandOwner("");
  if (!version) return std::unexpected(error);
  return LinkTrial{*version, info ? std::optional(info->serialNumber) : std::nullopt, channel.Quality().roundTrip};
}

// Without a user's doing: dialling costs money, and a controller dials in when it likes.
bool ReopensByItself(const LinkSettings& settings) {
  return settings.transport != Transport::Modem && settings.transport != Transport::Listen;
}

}  // namespace

std::expected<LinkTrial, LinkError> Driver::TryLink(const LinkSettings& settings) {
  const bool wasOpen = mChannel && mChannel->IsOpen();
  if (wasOpen && settings == mChannel->Settings()) {
    const StopScope trial(mPacer);
    return Identify(*mChannel);
  }
  if (wasOpen) mChannel->Close();
  auto result = [&] {
    const StopScope trial(mPacer);
    LinkSettings tried = settings;
    tried.reconnects = false;
    ChannelImpl channel(
        mPacer, mTrace, tried, [this](const LinkSettings& s) { return MakeAnyPort(s); }, [](const std::string&) {});
    auto found = Identify(channel);
    channel.Retire();
    return found;
  }();
  if (wasOpen && ReopensByItself(mChannel->Settings())) (void)mChannel->Open();
  return result;
}

}  // namespace kv
