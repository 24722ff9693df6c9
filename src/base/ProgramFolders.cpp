#include "base/ProgramFolders.h"

#include <system_error>

#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"

namespace kv {
namespace {

namespace fs = std::filesystem;

bool IsFolder(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

// What is shipped may be write-protected; its copy is the user's.
std::error_code CopyAndUnlock(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::copy(from, to, fs::copy_options::recursive, error);
  for (fs::recursive_directory_iterator entry(to, error), end; !error && entry != end; entry.increment(error)) {
    fs::permissions(entry->path(), fs::perms::owner_write, fs::perm_options::add, error);
  }
  return error;
}

// The folder of sessions comes into being as a whole: a program that is ended meanwhile leaves none, and of two that
// start at once one makes it.
std::error_code MakeSessions(const ProgramPaths& paths) {
  if (IsFolder(paths.Sessions())) return {};
  const fs::path half = paths.Home() / ("Sessions." + std::to_string(ProcessNumber()) + ".new");
  const ScopeGuard remove([&half] {
    std::error_code ignored;
    fs::remove_all(half, ignored);
  });
  std::error_code error;
  const fs::path drive = paths.Home().root_path();
  if (!drive.empty() && !IsFolder(drive))
    error = make_error_code(std::errc::no_such_device);  // the library misnames it
  if (!error) fs::create_directories(half, error);
  const fs::path shipped = paths.Shipped() / "Sessions" / kDefaultSession;
  if (!error && IsFolder(shipped)) error = CopyAndUnlock(shipped, half / kDefaultSession);
  if (!error) fs::create_directories(half / kDefaultSession, error);
  if (!error) fs::rename(half, paths.Sessions(), error);
  return IsFolder(paths.Sessions()) ? std::error_code{} : error;
}

FoldersFault NowhereToWrite(const ProgramPlaces& places, const std::string& why) {
  const std::string user = Utf8FromPath(places.user);
  return {.happened = "there is no folder for the sessions: " + Utf8FromPath(places.program) +
                      " is not this user's to write to, and " +
                      (user.empty() ? "the system names no folder for the data of this user"
                                    : user + " cannot be used: " + why),
          .cause = "the user has no profile folder on this computer, or it is write-protected or full",
          .cure = "name a folder that can be written to with --home, or have the profile folder put in order"};
}

// A folder with the help is an installation of its own.
ProgramPaths PathsBelow(const fs::path& named, const fs::path& program) {
  return IsFolder(named / "help") ? ProgramPaths(named) : ProgramPaths(named, program);
}

}  // namespace

const char* HomeReasonText(HomeReason reason) {
  switch (reason) {
    case HomeReason::Named:
      return "named by --home";
    case HomeReason::Own:
      return "the program folder, which this user can write to";
    case HomeReason::InstalledForAll:
      return "this user's own: the program is installed for all";
    case HomeReason::NotWritable:
      break;
  }
  return "this user's own: the program folder cannot be written to";
}

std::optional<FoldersFault> HomeFault(const fs::path& named) {
  std::error_code error;
  if (named.empty() || fs::is_directory(named, error)) return std::nullopt;
  return FoldersFault{.happened = "--home names " + Utf8FromPath(named) +
                                  ", which cannot be used: " + (error ? SystemMessage(error) : "it is no folder"),
                      .cause = "the name is mistyped or not UTF-8, or its drive is not connected",
                      .cure = "name the folder that holds the folder Sessions, or leave out --home"};
}

ProgramPlaces PlacesOfProgram() {
  return {.program = ExecutableFolder(), .user = UserDataFolder()};
}

std::expected<ProgramFolders, FoldersFault> FindProgramFolders(const ProgramPlaces& places, const fs::path& named) {
  if (!named.empty()) return ProgramFolders{PathsBelow(named, places.program), HomeReason::Named};
  std::error_code ignored;
  const bool isForAll = fs::exists(places.program / kInstalledForAll, ignored);
  if (!isForAll && IsWritableFolder(places.program)) {
    return ProgramFolders{ProgramPaths(places.program), HomeReason::Own};
  }
  if (places.user.empty()) return std::unexpected(NowhereToWrite(places, {}));
  ProgramFolders found{ProgramPaths(places.user, places.program),
                       isForAll ? HomeReason::InstalledForAll : HomeReason::NotWritable};
  if (const std::error_code error = MakeSessions(found.paths)) {
    return std::unexpected(NowhereToWrite(places, SystemMessage(error)));
  }
  if (!IsWritableFolder(places.user)) return std::unexpected(NowhereToWrite(places, "it is write-protected"));
  return found;
}

}  // namespace kv
