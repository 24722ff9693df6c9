#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "base/ProgramPaths.h"
#include "download/BackupBefore.h"
#include "download/DownloadOutcome.h"
#include "download/FoundController.h"
#include "link/Channel.h"

namespace kv {

// What a controller holds, saved before an O/S lays out its memory anew and written back afterwards. The O/S itself is
// not in it: written back, it would take the new one's place.
//
// The file lies in the program's folder for temporary files, under a name that no other has. It stays there until it
// has been written back and compared: it may be the only place in which this memory is left.
class SavedMemory {
 public:
  SavedMemory(const BackupContext& context, const ProgramPaths& paths) : mContext(context), mPaths(paths) {}

  // Asks whatever the cloner asks. `controllerText` names the controller in questions. A failure leaves it Untouched,
  // or Stopped.
  [[nodiscard]] std::expected<void, DownloadOutcome> Save(Channel& link, const FoundController& controller,
                                                          const std::string& controllerText);
  // Some seconds after the reset that `controller` has come back from. A failure leaves it NewOs, or NewOsLoading. Once
  // more after one: what has been written back is only compared then.
  [[nodiscard]] std::expected<void, DownloadOutcome> Restore(Channel& link, const FoundController& controller);

  // Nothing was saved, or all is proven to be back.
  [[nodiscard]] bool IsEmpty() const { return mFile.empty(); }
  // Where it is; good only when there is something.
  [[nodiscard]] const std::filesystem::path& File() const { return mFile; }

 private:
  using Step = std::expected<void, DownloadOutcome>;

  [[nodiscard]] std::expected<std::filesystem::path, DownloadOutcome> NewFile(const FoundController& controller) const;
  [[nodiscard]] Step WriteBack(Channel& link, const FoundController& controller);
  [[nodiscard]] Step Compare(Channel& link);
  [[nodiscard]] std::string RestoreIt() const;
  // Whether the controller holds it now. Values of operands that differ are told, and the file stays: a running program
  // changes them by itself.
  [[nodiscard]] std::expected<bool, CloneOutcome> IsHeldBy(Channel& link);

  BackupContext mContext;
  const ProgramPaths& mPaths;
  std::filesystem::path mFile;
  std::string mDigest;  // of the file
  bool mIsWritten = false;
  bool mStays = false;  // not all of it is proven to be back
};

}  // namespace kv
