#pragma once

#include "link/DownloadEngine.h"

namespace kv {

class ChannelImpl;

// Block messages as the downloaders send them, over the channel's exchanges.
class BlockEngine final : public DownloadEngine {
 public:
  explicit BlockEngine(ChannelImpl& channel) : mChannel(channel) {}

  void SetMessage(const BlockFields& fields) override { mMessage = fields; }
  [[nodiscard]] const BlockFields& Message() const override { return mMessage; }

  [[nodiscard]] bool Send() override { return SendWithData({}); }
  [[nodiscard]] bool SendWithData(std::span<const std::uint8_t> data) override;

  [[nodiscard]] const Bytes& ReplyBytes() const override { return mReply; }
  [[nodiscard]] int ReplyStatus() const override { return mStatus; }

 private:
  ChannelImpl& mChannel;
  BlockFields mMessage;
  Bytes mReply;
  int mStatus = 0;
};

}  // namespace kv
