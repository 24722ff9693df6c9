#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "clone/DumpWindow.h"
#include "clone/SafeCreate.h"
#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "desktop/WallClock.h"
#include "download/DownloadOutcome.h"
#include "download/FoundController.h"
#include "link/Channel.h"

namespace kv {

// What a backup works with. `cloner` answers what the clone engine asks (the password, whether the program may be
// stopped), `questions` the rest: a window gives the same twice, a terminal has a flag for each.
struct BackupContext {
  DumpWindow& window;
  Prompts& cloner;
  Prompts& questions;
  Pacer& pacer;
  const WallClock& clock;
  CloneWork work = {};  // shows how far reading back and comparing are; stops are noticed without it
};

// Why no clone can be made of this controller, a sentence; empty when one can. Only asks what is known already.
[[nodiscard]] std::string WhyNoBackup(Channel& link, const FoundController& controller);

// Creates a clone before a download. Where the controller does not take the password, the user is asked for it again.
// A failure begins with `what` and tells whether the program was left stopped; one whose box for the password was
// cancelled is declined. `prepare` sets up each engine that is used.
struct CloneBefore {
  DumpWindow& window;
  const BackupContext& context;
  const std::string& controllerText;
  const char* what;
  std::function<void(clsDumpPLC& engine)> prepare = {};
  CloneWork work = {};
};
[[nodiscard]] std::expected<CloneManifest, DownloadOutcome> CreateBefore(SafeCreate& safe, Channel& link,
                                                                         const CloneBefore& order);

// The clone that is made of a controller before a download changes it. Made at the moment in which the user has chosen
// the name, and so consented to replace what stood there then.
class BackupBefore {
 public:
  BackupBefore(const std::filesystem::path& file, const BackupContext& context);

  // Once. Creates the clone, reads it back, and compares program and settings with the controller: a backup that is not
  // known to be good is none. `controllerText` names the controller in questions, `download` is what comes
  // then ("Conveyor.dai"), for the manifest. A failure has the cause Backup, a stop the cause User; both tell
  // whether the program was left stopped. After it the program runs, whatever it did before, as after each clone.
  [[nodiscard]] std::expected<void, DownloadOutcome> Take(Channel& link, const FoundController& controller,
                                                          const std::string& controllerText,
                                                          const std::string& download);

  // What is worth knowing although the backup is good, a sentence each.
  [[nodiscard]] const std::vector<std::string>& Warnings() const { return mSafe.Warnings(); }
  [[nodiscard]] const std::filesystem::path& File() const { return mFile; }

 private:
  using Step = std::expected<void, DownloadOutcome>;

  [[nodiscard]] Step Create(Channel& link, const std::string& controllerText);
  [[nodiscard]] Step Compare(Channel& link) const;
  [[nodiscard]] CloneWork Work() const;

  std::filesystem::path mFile;
  BackupContext mContext;
  SafeCreate mSafe;
};

}  // namespace kv
