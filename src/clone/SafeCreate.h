#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/FileState.h"
#include "clone/CloneInfo.h"
#include "clone/clsDumpPLC.h"

namespace kv {

// Creates a clone without risking the one that it is to replace: the engine writes beside it, the new file is read back
// and inspected, and only when it is whole it takes the name. Whatever fails, and however the program ends, a file that
// stood there stays as it was.
//
// Made at the moment in which the user has chosen the name, and so consented to replace what stood there then. A file
// that somebody else puts there afterwards is not replaced: the create then fails, and says where the new clone is.
class SafeCreate {
 public:
  explicit SafeCreate(const std::filesystem::path& file);

  // Stands in the manifest beside the clone, UTF-8.
  void SetComment(std::string comment) { mComment = std::move(comment); }

  // Once, with an engine of its own. The controller is asked before for what the manifest tells of it. `work` is for
  // the inspection. How it ended is told by the engine's boxes, shown when all of it is over; `prompts` is the
  // engine's, for a name that cannot be written to.
  void Create(clsDumpPLC& engine, Prompts& prompts, Channel& link, const CloneWork& work = {});

  [[nodiscard]] const CloneOutcome& Outcome() const { return mOutcome; }
  // Where the new clone is. Nothing when there is none.
  [[nodiscard]] const std::optional<std::filesystem::path>& File() const { return mMade; }
  // What was found in it; nothing before there is one.
  [[nodiscard]] const std::optional<CloneInfo>& Info() const { return mInfo; }
  // What is worth knowing although the clone is whole, a sentence each: no manifest beside it, a program that somebody
  // else started meanwhile, or that does not run at the end, segments that no clone takes.
  [[nodiscard]] const std::vector<std::string>& Warnings() const { return mWarnings; }

 private:
  using Step = std::expected<void, CloneOutcome>;

  [[nodiscard]] std::string WhyImpossible() const;
  [[nodiscard]] Step TakeName(const clsDumpPLC& engine, Channel& link, const CloneWork& work);
  [[nodiscard]] Step CheckController(const clsDumpPLC& engine, Channel& link);
  [[nodiscard]] Step CheckIsWhole(const CloneManifest& manifest, const CloneWork& work);
  void NoteNeverTaken(std::span<const CloneSegment> segments);
  void KeepManifest(CloneManifest manifest);
  [[nodiscard]] std::error_code MoveToName();
  [[nodiscard]] CloneOutcome KeptElsewhere(const std::error_code& error);
  void LeaveEmptyFile();

  std::filesystem::path mFile;  // behind links
  std::error_code mLinkError;   // of following them
  std::optional<FileState> mBefore;
  std::filesystem::path mTemporary;
  CloneOutcome mOutcome;
  std::optional<std::filesystem::path> mMade;
  std::optional<CloneInfo> mInfo;
  std::optional<Channel::ControllerInfo> mController;
  std::string mComment;
  std::vector<std::string> mWarnings;
};

}  // namespace kv
