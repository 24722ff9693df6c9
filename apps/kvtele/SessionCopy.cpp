#include "apps/kvtele/SessionCopy.h"

#include <array>
#include <system_error>

#include "base/FilePlatform.h"
#include "base/PathText.h"

namespace kv::cli {

namespace {

namespace fs = std::filesystem;

// Whose settings going on line reads or writes.
constexpr std::array<const char*, 2> kSettings{"KvTeleExe.ini", "KvTele2.ini"};
constexpr int kMostNames = 100;

// A folder of a name that nobody has: left-overs of a process of the same number are no reason to fail.
fs::path MakeFolder(std::error_code& error) {
  const fs::path parent = fs::temp_directory_path(error);
  for (int i = 0; !error && i < kMostNames; ++i) {
    const fs::path folder = parent / ("kvtele-" + std::to_string(ProcessNumber()) + "-" + std::to_string(i));
    if (fs::create_directory(folder, error)) return folder;
  }
  if (!error) error = std::make_error_code(std::errc::file_exists);
  return {};
}

Failure CannotCopy(const fs::path& what, const std::error_code& error) {
  return {ExitCode::Failed,
          "failed",
          "copying the settings of the session",
          Utf8FromPath(what) + ": " + error.message(),
          "there is no permission, or the disk is full",
          "make room and give this user the right to it; TMPDIR (on Windows TEMP) names the folder for the copy"};
}

}  // namespace

OrFailure<std::unique_ptr<SessionCopy>> SessionCopy::Make(const ProgramPaths& paths, const std::string& session) {
  std::error_code error;
  const fs::path home = MakeFolder(error);
  if (error) return std::unexpected(CannotCopy("the folder for temporary files", error));
  std::unique_ptr<SessionCopy> copy(new SessionCopy(home));
  fs::create_directories(copy->mPaths.Session(session), error);
  if (error) return std::unexpected(CannotCopy(home, error));
  for (const char* name : kSettings) {
    const fs::path from = paths.SessionFile(session, name);
    std::error_code ignored;
    if (!fs::exists(from, ignored)) continue;
    const fs::path to = copy->mPaths.SessionFile(session, name);
    fs::copy_file(from, to, error);
    if (error) return std::unexpected(CannotCopy(from, error));
    fs::permissions(to, fs::perms::owner_write, fs::perm_options::add, ignored);
  }
  return copy;
}

SessionCopy::~SessionCopy() {
  std::error_code ignored;
  std::filesystem::remove_all(mPaths.Home(), ignored);
}

}  // namespace kv::cli
