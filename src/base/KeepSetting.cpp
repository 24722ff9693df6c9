#include "base/KeepSetting.h"

#include "base/AnsiText.h"
#include "base/FilePlatform.h"
#include "base/IniText.h"
#include "base/PathText.h"
#include "base/ProfileStrings.h"

namespace kv {
namespace {

constexpr std::size_t kLongestValue = kProfileBuffer - 1;

// What keeps `ansi`, made from `value`, from being read back as it is; empty when nothing does.
std::string FaultOf(std::string_view value, std::string_view ansi, std::string_view section, std::string_view key) {
  if (AnsiToUtf8(ansi) != value)
    return "it has letters that a settings file cannot hold (they are not in Windows-1252)";
  if (ansi.size() > kLongestValue) {
    return "it has " + std::to_string(ansi.size()) + " characters, and a settings file holds at most " +
           std::to_string(kLongestValue);
  }
  IniText probe("");
  if (IniText::IsValue(ansi)) probe.SetValue(section, key, ansi);
  return probe.Value(section, key) == ansi ? ""
                                           : "a settings file cannot hold line ends, or blanks or quotes around it";
}

}  // namespace

std::expected<void, std::string> KeepSetting(const std::filesystem::path& file, std::string_view section,
                                             std::string_view key, std::string_view value) {
  const std::string ansi = Utf8ToAnsi(value);
  if (const std::string fault = FaultOf(value, ansi, section, key); !fault.empty()) {
    return std::unexpected("\"" + std::string(value) + "\" cannot be kept in " + Utf8FromPath(file.filename()) + ": " +
                           fault + ".\nWhat to do: use another name or a shorter path.");
  }
  if (!WriteProfileString(file, section, key, ansi)) return std::unexpected(NotWritableText(file));
  return {};
}

std::string NotWritableText(const std::filesystem::path& file) {
  const char* const why = IsHeldByAnother(ErrorOfReplacing(file))
                              ? "another program has the file open.\nWhat to do: close it there, and do it again."
                              : "the file or its folder is write-protected or has gone, or the disk is full.\nWhat to "
                                "do: make it writable for this user, or work in another session.";
  return Utf8FromPath(file) + " could not be written.\nLikely cause: " + why;
}

}  // namespace kv
