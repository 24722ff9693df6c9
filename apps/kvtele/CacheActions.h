#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "KvTele2/cache/CacheFile.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/VerbOutput.h"

namespace kv::cli {

// What `kvtele cache import` was told.
struct CacheOrder {
  bool readsAll = false;  // --all
  std::string only;       // "fonts" or "images"; empty: both
  bool replace = false;   // --replace
};

[[nodiscard]] VerbResult ImportCache(Environment& environment, const CommonOptions& common,
                                     const std::filesystem::path& file, const CacheOrder& order);
[[nodiscard]] VerbResult ReportCache(const std::filesystem::path& file);
[[nodiscard]] VerbResult CompareCaches(const std::filesystem::path& first, const std::filesystem::path& second);
[[nodiscard]] VerbResult CompareCacheWithController(Environment& environment, const CommonOptions& common,
                                                    const std::filesystem::path& file);

// The cache that a command takes fonts and images from, with the name by which its user knows it.
struct ChosenCache {
  cache::CacheContent content;
  std::string name;
};
// The file that its user has named; nothing: he has named none.
[[nodiscard]] OrFailure<std::optional<ChosenCache>> NamedCache(const std::string& named);
// The most recent one of the session whose link this is that fits a controller with this model's text. Nothing: there
// is none, or it cannot be read, which is said.
[[nodiscard]] std::optional<ChosenCache> RecentCache(Environment& environment, const CommonOptions& common,
                                                     const std::string& model);

[[nodiscard]] Failure CacheFailure(const cache::CacheError& error, std::string doing);

}  // namespace kv::cli
