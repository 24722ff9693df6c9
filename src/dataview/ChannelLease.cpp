#include "dataview/ChannelLease.h"

#include "dataview/ViewDesk.h"

namespace kv::mdlDataTypesView {
namespace {

std::shared_ptr<Channel> TakeChannel(ViewDesk& desk) {
  CommDriver* driver = desk.parts.shared.ComDriver;
  if (driver == nullptr) {
    desk.SayError("There is no communication driver: start the program anew.");
    return nullptr;
  }
  std::shared_ptr<Channel> channel = driver->GetChannel();
  if (!channel) desk.SayLinkError(driver->LastError());
  return channel;
}

}  // namespace

ChannelLease::ChannelLease(ViewDesk& desk) : mChannel(TakeChannel(desk)) {
  if (!mChannel) return;
  desk.status.link = desk.CurrentLink();
  mChannel->SetCommandOwner("frmDataTypesView");
  mChannel->AbortComm(true);
}

ChannelLease::~ChannelLease() {
  if (mChannel) mChannel->AbortComm(true);
}

}  // namespace kv::mdlDataTypesView
