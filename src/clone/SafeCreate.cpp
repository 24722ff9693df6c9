#include "clone/SafeCreate.h"

#include <system_error>

#include "base/FilePlatform.h"
#include "base/FileToReplace.h"
#include "base/PathText.h"
#include "clone/CloneCompare.h"
#include "clone/CloneManifest.h"
#include "clone/ErasedSegments.h"
#include "clone/ProgramState.h"
#include "clone/RestoreBegin.h"
#include "desktop/UserName.h"
#include "link/StateText.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr int kMostNames = 100;

// "plant.kdf.1234.part": beside the clone, for a rename works only there; with the process in its name, so that two
// programs never write the same file; and with an ending that no dialog offers as a clone.
fs::path FreeNameBeside(const fs::path& file) {
  fs::path free;
  for (int i = 0; i < kMostNames; ++i) {
    free = file;
    free += "." + std::to_string(ProcessNumber()) + (i == 0 ? "" : "-" + std::to_string(i)) + ".part";
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(free, ignored))) break;
  }
  return free;
}

void Remove(const fs::path& file) {
  std::error_code ignored;
  fs::remove(file, ignored);
}

CloneOutcome FileFailure(const fs::path& file, const std::string& what) {
  return CloneOutcome::OfFile({.file = Utf8FromPath(file), .place = {}, .what = what});
}

}  // namespace

SafeCreate::SafeCreate(const fs::path& file) : mFile(file) {
  if (auto behind = BehindLinks(file)) {
    mFile = *std::move(behind);
  } else {
    mLinkError = behind.error();
  }
  mBefore = FileStateOf(mFile);
}

void SafeCreate::Create(clsDumpPLC& engine, Prompts& prompts, Channel& link, const CloneWork& work) {
  if (const std::string why = WhyImpossible(); !why.empty()) {
    mOutcome = FileFailure(mFile, why);
    prompts.Show({.text = std::string(kOperationFailed), .title = std::string(kClonerCaption)});
    return;
  }
  mTemporary = FreeNameBeside(mFile);
  mController = link.GetControllerInfo(link.UnitID());  // without an answer the engine fails, and says why
  engine.CreateGhost(link, mTemporary, [&] { return TakeName(engine, link, work); });
  mOutcome = engine.Outcome();
  if (mOutcome.cause == CloneCause::OldOs) LeaveEmptyFile();
}

std::string SafeCreate::WhyImpossible() const {
  if (mLinkError) return "the link of this name leads nowhere (" + SystemMessage(mLinkError) + ")";
  return WhyNotReplaceable(mFile);
}

SafeCreate::Step SafeCreate::TakeName(const clsDumpPLC& engine, Channel& link, const CloneWork& work) {
  Step good = CheckIsWhole(engine.Manifest(), work);
  if (good) good = CheckController(engine, link);
  if (!good) {
    Remove(mTemporary);
    return good;
  }
  if (const std::error_code error = MoveToName()) return std::unexpected(KeptElsewhere(error));
  mMade = mFile;
  KeepManifest(engine.Manifest());
  NoteNeverTaken(engine.NeverTaken());
  return {};
}

// That all of it was read from one controller, and what the controller does now.
SafeCreate::Step SafeCreate::CheckController(const clsDumpPLC& engine, Channel& link) {
  if (!mController) return {};
  const auto now = MeetAgain(link, *mController);
  if (!now) return std::unexpected(now.error());
  if (!IsRunningState(now->state)) {
    mWarnings.push_back(std::string("The controller was told to run its program, but says now that its state is ") +
                        StateText(now->state) + ". Look at it before you rely on it.");
  }
  if (engine.WasStartedMeanwhile()) {
    mWarnings.emplace_back(
        "Somebody else started the program while the clone was made: values that it changed meanwhile may not belong "
        "together. Create the clone again.");
  }
  return {};
}

void SafeCreate::NoteNeverTaken(std::span<const CloneSegment> segments) {
  if (segments.empty()) return;
  std::uint64_t bytes = 0;
  for (const CloneSegment& each : segments) bytes += each.length;
  mWarnings.push_back("The controller also holds " + std::to_string(bytes) + " bytes in " + CodesText(segments) +
                      ", which clone files never take: they are not in this one.");
}

void SafeCreate::KeepManifest(CloneManifest manifest) {
  if (mController) {
    manifest.serialNumber = mController->serialNumber;
    manifest.project = mController->projectName;
  }
  manifest.madeBy = UserName();
  manifest.comment = mComment;
  if (const auto saved = SaveManifest(mFile, manifest); !saved) {
    mWarnings.push_back("The clone is whole, but its manifest could not be kept beside it: " + saved.error().Text() +
                        ".");
  }
}

SafeCreate::Step SafeCreate::CheckIsWhole(const CloneManifest& manifest, const CloneWork& work) {
  auto info = InspectClone(mTemporary, work);
  if (!info) return std::unexpected(info.error());
  // What looks whole may still lack a line of flash.
  if (!info->IsSound() || info->sha256 != manifest.sha256) {
    const std::string damage = info->IsSound() ? "it is not what was written" : info->damages.front().Text();
    return std::unexpected(FileFailure(mTemporary, "it was read back and is damaged: " + damage +
                                                       ". It was deleted; check the disk and create the clone again"));
  }
  if (BytesOf(*info) == 0) {
    return std::unexpected(
        CloneOutcome::Failed(CloneCause::Segments,
                             "The clone would be empty: none of the controller's segments that were chosen can be "
                             "kept in a clone file. It was deleted"));
  }
  mInfo = *std::move(info);
  return {};
}

// Replaces what the user consented to replace, and nothing else.
std::error_code SafeCreate::MoveToName() {
  const auto now = FileStateOf(mFile);
  if (!now) return MoveToFreeName(mFile, mTemporary);
  if (now != mBefore) return std::make_error_code(std::errc::file_exists);
  return ReplaceFileWith(mFile, mTemporary);
}

// The clone is good and must not be lost, but it is not where scripts and people will look for it: no success.
CloneOutcome SafeCreate::KeptElsewhere(const std::error_code& error) {
  mMade = mTemporary;
  const std::string why = error == std::errc::file_exists
                              ? "somebody else has put another file there meanwhile, which was left as it is"
                              : "the new clone cannot be given this name (" + SystemMessage(error) + ")";
  return FileFailure(mFile, why + ".\nThe new clone is whole. It is in " + Utf8FromPath(mTemporary) +
                                "\nWhat to do: give it another name, which ends with .kdf");
}

// What a controller that is too old leaves where there was nothing; it never costs anybody a clone.
void SafeCreate::LeaveEmptyFile() {
  if (!mBefore && !MoveToFreeName(mFile, mTemporary)) return;
  Remove(mTemporary);
}

}  // namespace kv
