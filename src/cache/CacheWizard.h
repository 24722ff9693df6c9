#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "KvTele2/cache/CacheImport.h"
#include "base/FileState.h"
#include "host/shared/SharedState.h"

namespace kv {

// What the import wizard does around the import itself. Texts are UTF-8, paths complete.

// The cache file that the user has chosen, as it was at that moment.
class ChosenCache {
 public:
  explicit ChosenCache(std::filesystem::path file) : mFile(std::move(file)), mState(FileStateOf(mFile)) {}

  [[nodiscard]] const std::filesystem::path& File() const { return mFile; }
  [[nodiscard]] std::string Name() const;  // without its folder
  // "File: " and the path. Of one with more than 40 characters the first 20 and the last 17.
  [[nodiscard]] std::string Label() const;
  [[nodiscard]] std::string Hint() const;  // "Selected File: " and the path
  // What the user consented to replace is another file by now, or none was there and there is one.
  [[nodiscard]] bool HasChanged() const { return FileStateOf(mFile) != mState; }

 private:
  std::filesystem::path mFile;
  std::optional<FileState> mState;
};

inline constexpr const char* kNoCacheChosen = "No File Was Selected";
inline constexpr const char* kCacheFilter = "Telepanel For Color Cache Files (*.ktc)|*.ktc";

// What is to be imported into that file: where the session has its working file, and the program its empty cache.
[[nodiscard]] cache::CacheImportOrder ImportOrder(const SharedState& shared, const std::filesystem::path& file);

// The name that a new cache of this model's gets, "K670-67-C30 - K390-29-C30.ktc".
[[nodiscard]] std::string CacheNameOf(std::string model);

// What is not read, because the file has it already: "4 of 4 fonts and 10 of 18 images are in the file already, and
// are not read again."; empty when everything is read.
[[nodiscard]] std::string KeptText(const cache::CacheImportPlan& plan);

// What an import with these wishes would read, and for how long: ReadingText of a plan for fonts and images that reads
// only what has changed.
[[nodiscard]] std::string PreviewText(const cache::CacheImportPlan& plan, const cache::CacheImportOrder& wishes);

// How far a step is: "Logo, 12 of 60 KiB, about 3 s left".
[[nodiscard]] std::string AmountText(const cache::CacheProgress& progress);

// Puts the file first into the session's list of recent ones, and hands both to the host, which draws the panel with it
// from now on. A list that cannot be kept is told.
void UseCache(SharedState& shared, RemoteHost& host, const std::filesystem::path& file);

}  // namespace kv
