#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "base/ProgramPaths.h"

namespace kv {

// The folders that a program may keep its files in.
struct ProgramPlaces {
  std::filesystem::path program;  // in which the executable stands, with what is shipped
  std::filesystem::path user;     // this user's; need not be there. Empty: the system does not tell
};
// Those of the running program.
[[nodiscard]] ProgramPlaces PlacesOfProgram();

// Why the home is where it is.
enum class HomeReason : std::uint8_t {
  Named,            // the user named it
  Own,              // the program folder is the user's own, or he may write to it
  InstalledForAll,  // the program folder is for all users of the computer
  NotWritable,      // the program folder cannot be written to
};
[[nodiscard]] const char* HomeReasonText(HomeReason reason);

struct ProgramFolders {
  ProgramPaths paths;
  HomeReason reason = HomeReason::Own;
};

struct FoldersFault {
  std::string happened;
  std::string cause;
  std::string cure;
};

// What is wrong with the home that the user has named; nothing where he has named none.
[[nodiscard]] std::optional<FoldersFault> HomeFault(const std::filesystem::path& named);

// A program folder with a file of this name is for all users: nobody's sessions lie in it, not even those of an
// administrator, who could write to it.
inline constexpr const char* kInstalledForAll = "installed-for-all";

// Decides where sessions and everything else that is written lie: below `named` if that is not empty, else in the
// program folder, else in the user's place. That is made on its first use, with the default session as it was shipped.
// Refused when neither can be written to.
[[nodiscard]] std::expected<ProgramFolders, FoldersFault> FindProgramFolders(const ProgramPlaces& places,
                                                                             const std::filesystem::path& named);

// What the platforms do differently: whether files can be made in the folder, and this user's place for programs' data.
[[nodiscard]] bool IsWritableFolder(const std::filesystem::path& folder);
[[nodiscard]] std::filesystem::path UserDataFolder();

}  // namespace kv
