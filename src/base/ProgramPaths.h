#pragma once

#include <filesystem>
#include <string_view>
#include <utility>

namespace kv {

// The session that every start begins in. It always exists, is never marked as in use and cannot be deleted.
inline constexpr std::string_view kDefaultSession = "Default";

// Where the program keeps its files: all below one folder, its home. What is shipped and never written may lie
// elsewhere. Names are UTF-8; one that begins with a separator still stays below the folder that it is joined to.
class ProgramPaths {
 public:
  explicit ProgramPaths(const std::filesystem::path& home = {}) : ProgramPaths(home, home) {}
  ProgramPaths(std::filesystem::path home, std::filesystem::path shipped)
      : mHome(std::move(home)), mShipped(std::move(shipped)) {}

  [[nodiscard]] const std::filesystem::path& Home() const { return mHome; }
  // Where the programs stand, with what comes with them.
  [[nodiscard]] const std::filesystem::path& Shipped() const { return mShipped; }

  [[nodiscard]] std::filesystem::path Sessions() const { return mHome / "Sessions"; }
  [[nodiscard]] std::filesystem::path Session(std::string_view name) const;
  [[nodiscard]] std::filesystem::path SessionFile(std::string_view name, std::string_view file) const;
  [[nodiscard]] std::filesystem::path Temporary() const { return mHome / "TP_Temp"; }
  [[nodiscard]] std::filesystem::path CompactOs() const { return mHome / "OS"; }
  [[nodiscard]] std::filesystem::path AurexOs() const { return mHome / "Os Aurex"; }

  // Shipped; a folder of that name in the home goes before it.
  [[nodiscard]] std::filesystem::path Help() const { return OwnOrShipped("help"); }
  [[nodiscard]] std::filesystem::path Templates() const { return OwnOrShipped("Templates"); }
  // The colour cache without anything in it.
  [[nodiscard]] std::filesystem::path EmptyCache() const { return mShipped / "TP_Temp" / "TP_Temp_1"; }

 private:
  [[nodiscard]] std::filesystem::path OwnOrShipped(const char* name) const;

  std::filesystem::path mHome;
  std::filesystem::path mShipped;
};

// The folder in which the running executable stands, links resolved. The working folder when the platform does not
// tell.
[[nodiscard]] std::filesystem::path ExecutableFolder();

}  // namespace kv
