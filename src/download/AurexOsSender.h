#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "download/AurexOsTransfer.h"
#include "download/DownloadOutcome.h"
#include "download/DownloadWork.h"
#include "link/Channel.h"

namespace kv {

// Sends the block messages of an O/S to the boot loader of an Aurex controller.
//
// What is not answered, or refused, is sent again as often as the user wants it; every message but the programming may
// come twice. A stop that the user asks for is put to him with what the controller would be left as.
class AurexOsSender {
 public:
  using Step = DownloadWork::Step;

  AurexOsSender(DownloadEngine& engine, DownloadWork& work) : mEngine(engine), mWork(work) {}

  // What the boot loader says of itself.
  struct Status {
    bool isIdle = false;
    bool hasFlashError = false;
    bool hasTopic = false;  // the last topic arrived whole, and nothing that arrived has been dropped since
    int percent = 0;        // of the programming
    bool isProgrammed = false;
  };
  // Asks once, without a question to the user; nothing when there is no answer.
  [[nodiscard]] static std::optional<Status> AskStatus(Channel& link);

  // Gets the controller ready to receive. Nothing has changed in it when this fails.
  [[nodiscard]] Step Prepare();
  // The header, and each topic in chunks until the controller has taken it for whole.
  [[nodiscard]] Step Send(const OsTransfer& transfer);
  // Programs what was sent, and waits until that is done.
  [[nodiscard]] Step Program();
  // The controller has said that what it programs is done, and not only that it has been told to.
  [[nodiscard]] bool IsProven() const { return mLast.isProgrammed; }

 private:
  enum class Reply : std::uint8_t { Taken, Interrupted, Unanswered, Busy, Refused };
  enum class TopicCheck : bool { Off, On };

  [[nodiscard]] Step SendHeader(const OsTransferHeader& header);
  [[nodiscard]] Step SendTopic(const OsTransferTopic& topic, int phase);
  [[nodiscard]] Step SendWithRetry(std::span<const std::uint8_t> data = {});
  [[nodiscard]] std::expected<Reply, DownloadOutcome> SendOnce(std::span<const std::uint8_t> data);
  [[nodiscard]] bool IsRefusedAsDouble() const;
  [[nodiscard]] Step AskForRetry(Reply reply);
  [[nodiscard]] Step WaitUntilIdle(TopicCheck check);
  [[nodiscard]] std::expected<bool, DownloadOutcome> CheckStatus(const Status& status, TopicCheck check);
  [[nodiscard]] std::unexpected<DownloadOutcome> LinkFailure() const;
  [[nodiscard]] std::unexpected<DownloadOutcome> ReplyFailure(const std::string& reason) const;
  [[nodiscard]] std::unexpected<DownloadOutcome> Refused() const;
  [[nodiscard]] bool HasRestarted() const;

  DownloadEngine& mEngine;
  DownloadWork& mWork;
  std::uint64_t mSent = 0;  // bytes of streams
  std::uint64_t mToSend = 0;
  std::string mDoing;           // what is under way, for reasons
  bool mIsProgramming = false;  // what is waited for
  Status mLast;
};

}  // namespace kv
