#pragma once

#include <chrono>
#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "download/DownloadOrder.h"
#include "download/DownloadOutcome.h"
#include "download/DownloadWindow.h"
#include "download/FoundController.h"
#include "link/BlockRefusal.h"
#include "link/Channel.h"
#include "link/ErrorMeaning.h"

namespace kv {

// What the steps of a download have in common: where they work, how they fail, stops, and what the controller
// is left as at each moment.
class DownloadWork {
 public:
  using Step = std::expected<void, DownloadOutcome>;

  DownloadWork(Channel& itsLink, DownloadWindow& itsWindow, Prompts& itsPrompts, Pacer& itsPacer,
               const DownloadOrder& itsOrder)
      : link(itsLink), window(itsWindow), prompts(itsPrompts), pacer(itsPacer), order(itsOrder) {}

  Channel& link;
  DownloadWindow& window;
  Prompts& prompts;
  Pacer& pacer;
  const DownloadOrder& order;
  ControllerLeft left = ControllerLeft::Untouched;

  // From here on the controller is changed: what comes is one operation in the journal of changes, until this object
  // goes or EndOperation.
  void BeginOperation(const std::string& what) { mOperation.emplace(link.Changes(), Operation{"Downloader", what}); }
  void EndOperation(const DownloadOutcome& outcome);

  void Tell(std::string_view text, PromptIcon icon, std::string_view title = {});
  // The settled box before a program is stopped. It has OK alone; who closes it otherwise stops the download there.
  [[nodiscard]] Step TellOfStopMode();
  // Who is asked this.
  [[nodiscard]] Prompts& PromptsOf(DownloadQuestion question) const {
    return order.promptsOf ? order.promptsOf(question) : prompts;
  }
  // Whether a question of its own consent is answered with Yes.
  [[nodiscard]] bool Asks(DownloadQuestion question, const std::string& text, PromptIcon icon,
                          std::string_view title = {});

  // Before the questions of a clone, whose texts do not say what it is for.
  void AnnounceClone();
  // Of a dry run: asks what the clone of this controller would ask before the download.
  [[nodiscard]] Step ShowCloneQuestions(const std::string& controller, char state);

  [[nodiscard]] std::unexpected<DownloadOutcome> Fail(DownloadCause cause, std::string reason) const;
  [[nodiscard]] std::unexpected<DownloadOutcome> Refuse(std::string reason) const;
  // The user's No; a stop when there was one.
  [[nodiscard]] std::unexpected<DownloadOutcome> Decline(DownloadCause cause, std::string reason) const;
  [[nodiscard]] std::unexpected<DownloadOutcome> FailOf(const LinkError& error,
                                                        DownloadCause cause = DownloadCause::Link) const;
  [[nodiscard]] std::unexpected<DownloadOutcome> Stop() const;

  // Whether the controller takes a password, when it wants one, is found out before anything is done to it. Who does
  // not know it has declined.
  [[nodiscard]] Step GetAccess();
  // The O/S of the file may be the one that is there, or older: sent only when that is wanted.
  [[nodiscard]] Step AskForNoNewerOs(const FoundController& found, const std::string& controller, const OsNumber& next,
                                     std::string_view title = {});
  // A file that was chosen and cannot be read is told as that, whatever its name says.
  [[nodiscard]] Step CheckIsThere(const std::filesystem::path& file, std::string_view title = {});
  // What is worth knowing of the controller before a download, a sentence each; `next` is the O/S of the file.
  [[nodiscard]] std::vector<std::string> WarningsOf(const FoundController& found,
                                                    const std::optional<OsNumber>& next = {}) const;

  // Between two exchanges: whether the user has asked for a stop, and means it. What would be left half done is asked
  // about, and with No the download goes on.
  [[nodiscard]] Step StopPoint();

  // The steps of a download in their order, until one does not end well. As long as nothing has been done to the
  // controller it can be stopped between any two.
  template <typename Download, std::size_t kCount>
  [[nodiscard]] Step DoAll(Download& download, Step (Download::* const (&steps)[kCount])()) {
    for (const auto step : steps) {
      Step done = (download.*step)();
      if (done && left == ControllerLeft::Untouched) done = StopPoint();
      if (!done) return done;
    }
    return {};
  }

  // Does `exchange`, which leaves the controller as `then`; it stays what it was when it is certain that nothing was
  // executed.
  template <typename Exchange>
  [[nodiscard]] Step Do(ControllerLeft then, const Exchange& exchange) {
    const ControllerLeft before = left;
    left = then;
    mMayBeExecuted = false;
    Step done = exchange();
    if (done) return done;
    const LinkError& error = done.error().link;
    if (!mMayBeExecuted && (error.isNotExecuted || IsRefusal(error.code))) done.error().left = left = before;
    return done;
  }

  // Does an exchange that may be done twice: again when a stop that ended it is taken back, and once more over a link
  // that has come back. When that fails, too, the first failure tells more.
  [[nodiscard]] Step DoRepeatable(const std::function<Step()>& exchange);

  // Sends a text command. A reply with ERROR is a failure.
  [[nodiscard]] std::expected<CommandReply, DownloadOutcome> Send(std::string_view command);
  // Sends a block message, with data unless it is null. A status other than done is a failure.
  [[nodiscard]] std::expected<Bytes, DownloadOutcome> SendBlock(const BlockFields& fields,
                                                                std::span<const std::uint8_t> data = {});

  // Does `exchange` again while the controller is busy, which means that it has executed nothing; for some seconds.
  template <typename Exchange>
  [[nodiscard]] auto WhileBusy(const Exchange& exchange) -> decltype(exchange()) {
    constexpr int kBusyTries = 20;
    constexpr Duration kBetweenTries = std::chrono::milliseconds(500);
    auto done = exchange();
    for (int i = 1; i < kBusyTries && !done && done.error().link.code == LinkErrorCode::Busy; ++i) {
      pacer.DoEvents();
      pacer.Sleep(kBetweenTries);
      if (Step stopped = StopPoint(); !stopped) {
        stopped.error().link = done.error().link;
        return std::unexpected(stopped.error());
      }
      done = exchange();
    }
    return done;
  }

  // A stop ended the exchange that this outcome is of: whether the user, asked about what is left, wants to go on.
  [[nodiscard]] bool GoesOnAfter(const DownloadOutcome& outcome);

 private:
  [[nodiscard]] bool IsStopMeant();

  std::optional<OperationScope> mOperation;
  bool mMayBeExecuted = false;  // the exchange under way, by a try that has failed
};

}  // namespace kv
