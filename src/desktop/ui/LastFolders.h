#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace kv {

// In which folder a file was chosen last, for each purpose: kept beside the places of windows, for all sessions, since
// a folder belongs to the user's habits and not to the installation that is served. Paths are UTF-8.
class LastFolders {
 public:
  // Remembers in `file`, section "Folders"; without one, until the program ends. It may be write-protected.
  explicit LastFolders(std::filesystem::path file = {}) : mFile(std::move(file)) {}

  // The folder used last for this purpose, else the one used last for any other; the user's documents when there is
  // none, or it is not there any more.
  [[nodiscard]] std::string Of(const std::string& purpose) const;
  void Remember(const std::string& purpose, const std::string& folder);

 private:
  [[nodiscard]] std::string Kept(const std::string& purpose) const;

  std::filesystem::path mFile;
  std::map<std::string, std::string> mFolders;  // of this run, by purpose
  std::string mLatest;
};

}  // namespace kv
