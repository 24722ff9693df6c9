#include "KvTele2/cache/ImportTarget.h"

#include <utility>

#include "base/AnsiText.h"
#include "base/FilePlatform.h"
#include "base/FileToReplace.h"
#include "base/PathText.h"

namespace kv::cache {

namespace fs = std::filesystem;

namespace {

using Step = std::expected<void, CacheOutcome>;

std::unexpected<CacheOutcome> FileFailure(const fs::path& file, std::string what) {
  return std::unexpected(CacheOutcome::OfFile({.file = Utf8FromPath(file), .place = {}, .what = std::move(what)}));
}

std::string ControllerText(const CacheOwner& owner) {
  return AnsiToUtf8(owner.version.model) + ", serial number " + std::to_string(owner.serialNumber);
}

// Also one that is write-protected. The error is why it is there still.
std::error_code Remove(const fs::path& file) {
  std::error_code error;
  fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, error);
  fs::remove(file, error);
  return error;
}

// "plant.ktc.1234.part": beside the file, for a rename works only there.
fs::path NameBeside(const fs::path& file) {
  fs::path name = file;
  name += "." + std::to_string(ProcessNumber()) + ".part";
  return name;
}

std::string CannotBeWritten(const std::error_code& error) {
  return "it cannot be written (" + SystemMessage(error) +
         "); check that its folder exists, may be written to and has "
         "room, or choose another place";
}

}  // namespace

ImportTarget::ImportTarget(const CacheImportOrder& order) : mOrder(order), mFile(order.file) {
  if (auto behind = BehindLinks(order.file)) {
    mFile = *std::move(behind);
  } else {
    mLinkError = behind.error();
  }
  mBefore = FileStateOf(mFile);
}

std::string ImportTarget::Name() const {
  return Utf8FromPath(mOrder.file.filename());
}

std::string ImportTarget::WhatIsKept() const {
  const auto now = FileStateOf(mFile);
  if (now != mBefore) return {};
  return Utf8FromPath(mOrder.file) + (now ? " is as it was before the import" : " was not made");
}

std::expected<ImportTarget::Before, CacheOutcome> ImportTarget::Look(const CacheOwner& controller) const {
  if (mLinkError)
    return FileFailure(mOrder.file, "the link of this name leads nowhere (" + SystemMessage(mLinkError) + ")");
  if (std::string why = WhyNotReplaceable(mFile); !why.empty()) return FileFailure(mFile, std::move(why));
  auto before = LookInside(controller);
  if (!before || before->question.empty()) return before;
  if (auto able = TryFolder(); !able) return std::unexpected(std::move(able.error()));
  return before;
}

std::expected<ImportTarget::Before, CacheOutcome> ImportTarget::LookInside(const CacheOwner& controller) const {
  Before before{.isThere = mBefore.has_value()};
  auto content = ReadCacheFile(mFile);
  if (!content) {
    const CacheFault fault = content.error().fault;
    if (fault == CacheFault::Missing) return before;
    if (fault == CacheFault::Unreadable) return std::unexpected(CacheOutcome::OfFile(content.error().file));
    before.question = QuestionOf(content.error(), controller);
    if (content.error().CanBeRepaired()) before.salvage = SalvageCacheFile(mFile);
  } else if (content->owner && content->owner->IsController(controller)) {
    before.ours = *std::move(content);
  } else if (content->owner) {
    before.question = QuestionOf(*content, controller);
    if (content->owner->version.model != controller.version.model) return before;
    before.salvage = {.fonts = std::move(content->fonts).value_or(CachePart()),
                      .images = std::move(content->images).value_or(CachePart())};
  }
  return before;
}

std::string ImportTarget::QuestionOf(const CacheContent& content, const CacheOwner& controller) const {
  const bool isOfModel = content.owner->version.model == controller.version.model;
  return Utf8FromPath(mFile) + " holds the fonts and images of another controller (" + ControllerText(*content.owner) +
         ", saved " + AnsiToUtf8(content.savedAt) + "). Replace them with those of this one (" +
         ControllerText(controller) + ")?" +
         (isOfModel ? " What both have alike is kept, and not read again." + LossOf() : std::string());
}

std::string ImportTarget::LossOf() const {
  std::string text;
  if (!mOrder.fonts) text += " Its fonts are lost, for they are not imported now.";
  if (!mOrder.images) text += " Its images are lost, for they are not imported now.";
  return text;
}

std::string ImportTarget::QuestionOf(const CacheError& error, const CacheOwner& controller) const {
  const std::string name = Utf8FromPath(mFile);
  if (error.CanBeRepaired()) {
    return name + " is damaged. Repair it with the fonts and images of this controller (" + ControllerText(controller) +
           ")? What of it is whole, and still as in the controller, is kept; all else is read again." + LossOf();
  }
  const std::string what = error.fault == CacheFault::Newer
                               ? " was made by a newer version of this program, which this one cannot read."
                               : " is no colour cache file.";
  return name + what + " Replace it with the fonts and images of this controller (" + ControllerText(controller) +
         ")? What is in it is lost.";
}

Step ImportTarget::Begin() const {
  if (auto made = MakeWorkingFile(); !made) return made;
  return TryFolder();
}

// Its attributes are those of any new file, whatever the installed one has.
Step ImportTarget::MakeWorkingFile() const {
  if (mOrder.workingFile.empty()) return {};
  const auto empty = CacheBytes({});
  if (!empty) return FileFailure(mOrder.workingFile, "it cannot be made: " + empty.error());
  std::string bytes = *empty;
  std::error_code error;
  if (fs::exists(mOrder.emptyCache, error)) {
    auto shipped = ReadWholeFile(mOrder.emptyCache, kMostCacheBytes);
    if (!shipped) return std::unexpected(CacheOutcome::OfFile(shipped.error()));
    if (ParseCache(*shipped, {}).value_or(CacheContent{.savedAt = "?"}) != CacheContent{}) {
      return FileFailure(mOrder.emptyCache,
                         "it is not the empty cache file that is installed with the program; "
                         "install the program again");
    }
    bytes = *std::move(shipped);
  }
  error = Remove(mOrder.workingFile);
  if (!error) error = WriteNewFile(mOrder.workingFile, {}, bytes);
  if (!error) return {};
  return FileFailure(mOrder.workingFile, "the working file of the session cannot be written (" + SystemMessage(error) +
                                             "); check that the session's folder may be written to and has room");
}

// Better known now than when minutes have been spent on reading.
Step ImportTarget::TryFolder() const {
  const fs::path beside = NameBeside(mFile);
  (void)Remove(beside);
  const std::error_code error = WriteNewFile(beside, {}, "-");
  if (error) return FileFailure(mFile, CannotBeWritten(error));
  (void)Remove(beside);
  return {};
}

Step ImportTarget::Take(const CacheContent& content) const {
  const auto bytes = CacheBytes(content);
  if (!bytes) return FileFailure(mFile, "it cannot be made: " + bytes.error());
  if (!mOrder.workingFile.empty()) {
    if (const auto saved = SaveAtomically(mOrder.workingFile, *bytes); !saved) {
      return std::unexpected(CacheOutcome::OfFile(saved.error()));
    }
    const auto again = ReadCacheFile(mOrder.workingFile);
    if (!again || *again != content) {
      return FileFailure(mOrder.workingFile, "it was read back and is damaged; check the disk and import again");
    }
  }
  return Replace(*bytes);
}

// Replaces what the user consented to replace, and nothing else.
Step ImportTarget::Replace(const std::string& bytes) const {
  const auto now = FileStateOf(mFile);
  const auto meanwhile = [&] {
    return FileFailure(mFile,
                       "somebody else has put another file there meanwhile, which was left as it is; import "
                       "again, or choose another name");
  };
  if (now != mBefore) return meanwhile();
  if (now) {
    const auto saved = SaveAtomically(mFile, bytes);
    return saved ? Step() : Step(std::unexpected(CacheOutcome::OfFile(saved.error())));
  }
  const fs::path beside = NameBeside(mFile);
  (void)Remove(beside);
  std::error_code error = WriteNewFile(beside, {}, bytes);
  if (!error) error = MoveToFreeName(mFile, beside);
  if (!error) return {};
  (void)Remove(beside);
  if (error == std::errc::file_exists) return meanwhile();
  return FileFailure(mFile, CannotBeWritten(error));
}

}  // namespace kv::cache
