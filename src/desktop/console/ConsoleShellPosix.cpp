#include <spawn.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <sstream>
#include <vector>

#include "base/PathText.h"
#include "desktop/console/ConsoleShell.h"

namespace kv {

namespace {

constexpr const char* kOpener = "xdg-open";  // the desktops' common way to the program that is meant for a file

std::vector<std::string> CommandLine(const std::string& file, std::string_view parameters, bool isProgram) {
  if (!isProgram) return {kOpener, file};
  std::vector<std::string> words = {file};
  std::istringstream rest{std::string(parameters)};
  for (std::string word; rest >> word;) words.push_back(word);
  return words;
}

// 0, or the number of the error.
int Start(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  return posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ);
}

}  // namespace

std::expected<void, std::string> ConsoleShell::Open(std::string_view /*verb*/, std::string_view file,
                                                    std::string_view parameters) {
  const std::string name(file);
  const bool isAddress = name.find("://") != std::string::npos;
  std::error_code error;
  const auto status = std::filesystem::status(PathFromUtf8(file), error);
  if (!isAddress && !std::filesystem::exists(status)) {
    return std::unexpected(name + " cannot be opened: it does not exist. Check the installation.");
  }
  const bool isProgram = !isAddress && std::filesystem::is_regular_file(status) && access(name.c_str(), X_OK) == 0;
  const int failed = Start(CommandLine(name, parameters, isProgram));
  if (failed == 0) return {};
  const std::string what = isProgram ? name : name + " (with " + kOpener + ")";
  return std::unexpected(what + " cannot be opened: " + std::strerror(failed) + ".");
}

}  // namespace kv
