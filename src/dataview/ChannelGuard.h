#pragma once

#include <memory>

#include "link/Channel.h"

namespace kv::mdlDataTypesView {

class ViewContext;

// The controller for the length of one operation: the driver's channel, taken once and given back at the end. What an
// earlier exchange left on its way is thrown away at both ends, so that nothing of it is taken for an answer. Without a
// channel the status line says why.
class ChannelGuard {
 public:
  explicit ChannelGuard(ViewContext& context);
  ~ChannelGuard();
  ChannelGuard(const ChannelGuard&) = delete;
  ChannelGuard& operator=(const ChannelGuard&) = delete;

  [[nodiscard]] explicit operator bool() const { return mChannel != nullptr; }
  [[nodiscard]] Channel& operator*() const { return *mChannel; }

 private:
  std::shared_ptr<Channel> mChannel;
};

}  // namespace kv::mdlDataTypesView
