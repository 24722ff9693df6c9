#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/cache/CacheImportOrder.h"
#include "KvTele2/cache/CacheOutcome.h"
#include "base/FileState.h"

namespace kv::cache {

// The file that an import makes, with the working file that is written before it.
class ImportTarget {
 public:
  // At the moment in which the user has chosen the name: what somebody else puts there later is not replaced.
  explicit ImportTarget(const CacheImportOrder& order);

  // What stands there now.
  struct Before {
    std::optional<CacheContent> ours{};  // a whole cache of this controller
    CacheSalvage salvage{};              // what is whole in a damaged one, or in that of another one of its model
    std::string question{};              // to be asked before it is replaced or repaired; empty: nothing would be lost
    bool isThere = false;                // anything at all
  };
  // A question is asked only where the answer Yes can be followed.
  [[nodiscard]] std::expected<Before, CacheOutcome> Look(const CacheOwner& controller) const;

  // The working file becomes the empty cache, and it is known that the file can be written where it shall stand.
  [[nodiscard]] std::expected<void, CacheOutcome> Begin() const;
  // Writes the working file, reads it back, and gives its content to the file in one step.
  [[nodiscard]] std::expected<void, CacheOutcome> Take(const CacheContent& content) const;

  // What stands where the file was to be, after a failure, without a full stop; empty: what somebody else has put there
  // meanwhile.
  [[nodiscard]] std::string WhatIsKept() const;

  // The file's name for people, without its folder.
  [[nodiscard]] std::string Name() const;

 private:
  [[nodiscard]] std::expected<void, CacheOutcome> MakeWorkingFile() const;
  [[nodiscard]] std::expected<void, CacheOutcome> TryFolder() const;
  [[nodiscard]] std::expected<void, CacheOutcome> Replace(const std::string& bytes) const;
  [[nodiscard]] std::string QuestionOf(const CacheError& error, const CacheOwner& controller) const;
  [[nodiscard]] std::string QuestionOf(const CacheContent& content, const CacheOwner& controller) const;
  [[nodiscard]] std::string LossOf() const;
  [[nodiscard]] std::expected<Before, CacheOutcome> LookInside(const CacheOwner& controller) const;

  CacheImportOrder mOrder;
  std::filesystem::path mFile;  // behind links
  std::error_code mLinkError;   // of following them
  std::optional<FileState> mBefore;
};

}  // namespace kv::cache
