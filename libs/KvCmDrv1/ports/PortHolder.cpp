#include "KvCmDrv1/ports/PortHolder.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#ifdef __linux__
#include <unistd.h>
#endif

#include "base/Numbers.h"

namespace kv {

#ifdef __linux__
namespace {

namespace fs = std::filesystem;

// How often a process has the device open; nothing when the system does not tell.
std::optional<int> HandlesOf(const fs::path& process, const fs::path& device) {
  std::error_code code;
  int count = 0;
  for (fs::directory_iterator handle(process / "fd", code), end; !code && handle != end; handle.increment(code)) {
    std::error_code gone;
    if (fs::read_symlink(handle->path(), gone) == device) ++count;
  }
  const bool hasEnded = code == std::errc::no_such_file_or_directory || code == std::errc::no_such_process;
  return !code || hasEnded ? std::optional(count) : std::nullopt;
}

std::string NameOf(const fs::path& process) {
  std::string name;
  std::ifstream stream(process / "comm");
  std::getline(stream, name);
  return (name.empty() ? "a program" : name) + " (process " + process.filename().string() + ")";
}

}  // namespace

PortHolder FindPortHolder(const std::string& path, int handles) {
  std::error_code code;
  const fs::path device = fs::canonical(path, code);
  PortHolder holder{.name = {}, .isCertain = !code};
  const std::string ourselves = std::to_string(::getpid());
  for (fs::directory_iterator process("/proc", code), end; !code && process != end; process.increment(code)) {
    const std::string number = process->path().filename().string();
    if (!ParseInteger(number)) continue;
    const std::optional<int> count = HandlesOf(process->path(), device);
    const bool isOurs = number == ourselves;
    if (count.value_or(0) > (isOurs ? handles : 0)) {
      return {.name = isOurs ? "this program" : NameOf(process->path()), .isCertain = true};
    }
    if (!count) holder.isCertain = false;
  }
  if (code) holder.isCertain = false;
  return holder;
}
#else
PortHolder FindPortHolder(const std::string&, int) {
  return {};
}
#endif

}  // namespace kv
