#include "dataview/ChannelGuard.h"

#include "dataview/ViewContext.h"

namespace kv::mdlDataTypesView {
namespace {

std::shared_ptr<Channel> TakeChannel(ViewContext& context) {
  CommDriver* driver = context.parts.shared.ComDriver;
  if (driver == nullptr) {
    context.SayError("There is no communication driver: start the program anew.");
    return nullptr;
  }
  std::shared_ptr<Channel> channel = driver->GetChannel();
  if (!channel) context.SayLinkError(driver->LastError());
  return channel;
}

}  // namespace

ChannelGuard::ChannelGuard(ViewContext& context) : mChannel(TakeChannel(context)) {
  if (!mChannel) return;
  context.status.link = context.CurrentLink();
  mChannel->SetCommandOwner("frmDataTypesView");
  mChannel->AbortComm(true);
}

ChannelGuard::~ChannelGuard() {
  if (mChannel) mChannel->AbortComm(true);
}

}  // namespace kv::mdlDataTypesView
