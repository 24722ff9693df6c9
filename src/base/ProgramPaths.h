#pragma once

#include <filesystem>
#include <string_view>
#include <utility>

namespace kv {

// Where the program keeps its files: all below one program folder. Names are UTF-8; one that begins with a separator
// still stays below the folder that it is joined to.
class ProgramPaths {
 public:
  explicit ProgramPaths(std::filesystem::path home) : mHome(std::move(home)) {}

  [[nodiscard]] const std::filesystem::path& Home() const { return mHome; }
  [[nodiscard]] std::filesystem::path Sessions() const { return mHome / "Sessions"; }
  [[nodiscard]] std::filesystem::path Session(std::string_view name) const;
  [[nodiscard]] std::filesystem::path SessionFile(std::string_view name, std::string_view file) const;

  [[nodiscard]] std::filesystem::path Help() const { return mHome / "help"; }
  [[nodiscard]] std::filesystem::path Temporary() const { return mHome / "TP_Temp"; }
  [[nodiscard]] std::filesystem::path Templates() const { return mHome / "Templates"; }
  [[nodiscard]] std::filesystem::path CompactOs() const { return mHome / "OS"; }
  [[nodiscard]] std::filesystem::path AurexOs() const { return mHome / "Os Aurex"; }

 private:
  std::filesystem::path mHome;
};

// The folder in which the running executable stands, links resolved: the program folder unless the user names another.
// The working folder when the platform does not tell.
[[nodiscard]] std::filesystem::path ExecutableFolder();

}  // namespace kv
