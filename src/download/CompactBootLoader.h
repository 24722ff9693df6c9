#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Bytes.h"
#include "download/CompactController.h"
#include "download/DownloadWork.h"
#include "download/FoundController.h"

namespace kv {

// Takes a compact controller into its boot loader, lets that replace the O/S, and resets it. Every step is a handful of
// text commands:
//
//   running -> Enter -> AgreeOnSpeed -> EraseFlash -> Write -> Reset
//
// A step that fails ends the download, and the work's `left` tells what the controller is left as.
class CompactBootLoader {
 public:
  using Step = DownloadWork::Step;

  // The controller answers at the speed that the link has now, and listens at `usualBaud` when it has restarted.
  CompactBootLoader(DownloadWork& work, CompactKind kind, int usualBaud);

  // Stops the program and enters the boot loader.
  [[nodiscard]] Step Enter();
  // Takes controller and link to the speed of the boot loader.
  [[nodiscard]] Step AgreeOnSpeed();
  [[nodiscard]] Step EraseFlash();
  // `image` is whole blocks of kCompactOsBlock. `onBlock` hears of each block that is written, counted from 1.
  using OnBlock = std::function<void(std::int64_t block, std::int64_t count)>;
  [[nodiscard]] Step Write(const Bytes& image, const OnBlock& onBlock);
  // Restarts the controller and takes the link back to its parameters. A restart of which is not known whether it took
  // place is no failure here: who answers then tells it.
  [[nodiscard]] Step Reset();

  // Asks the controller what it is left as, where only it knows: it may have restarted by itself, or not have heard the
  // last command. `oldOs` is what it reported before, `newOs` what it reports with the O/S of the file.
  void FindOutWhatIsLeft(const std::string& oldOs, const std::string& newOs);
  // What is to be known of the link's speed when the download ends before the reset; empty when it has not changed.
  [[nodiscard]] std::string SpeedText() const;

 private:
  using Reply = std::expected<std::string, DownloadOutcome>;

  // The data of the reply. `then`: what the controller is left as once it was executed, or may have been.
  [[nodiscard]] Reply Ask(const std::string& command, ControllerLeft then);
  [[nodiscard]] Reply Ask(const std::string& command) { return Ask(command, mWork.left); }
  // The same for a command that is answered with OK or not at all.
  [[nodiscard]] Step Tell(const std::string& command, ControllerLeft then);
  [[nodiscard]] Step Tell(const std::string& command) { return Tell(command, mWork.left); }
  // Asks again and again until the data begin with `ready`. Those that begin with `failed` are a failure, and so are 31
  // others.
  [[nodiscard]] Step Poll(const std::string& question, std::string_view ready, std::string_view failed, Duration pause);
  // The same for one of which every answer is as good as an OK.
  [[nodiscard]] Step TellAnswered(const std::string& command, ControllerLeft then);
  [[nodiscard]] bool HasEntered(const DownloadOutcome& failure);
  [[nodiscard]] Step StartErase();
  [[nodiscard]] Step WriteBlock(const std::string& command);
  [[nodiscard]] Step TellSpeed(const std::string& command, int baudRate);
  [[nodiscard]] bool UseSpeed(int baudRate);
  // Gives the controller time to come up, then takes the link back to its parameters.
  [[nodiscard]] bool ReopenLater();
  [[nodiscard]] std::optional<FoundController> FindAnywhere();
  [[nodiscard]] std::unexpected<DownloadOutcome> LinkFailure() const { return mWork.FailOf(mWork.link.LastError()); }

  DownloadWork& mWork;
  CompactKind mKind;
  ComParams mNow;    // of the link, until the boot loader's speed is agreed
  ComParams mUsual;  // after the restart
  int mPort;
};

}  // namespace kv
