#include <windows.h>

#include <algorithm>
#include <limits>

#include "base/AtomicFile.h"
#include "base/FilePlatform.h"
#include "base/ProfileFile.h"
#include "base/ScopeGuard.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

// The calls take the bytes of a file for letters of the system's code page. Where that has one byte a letter, each byte
// comes back as it was; where it has more, UTF-8 among them, bytes would be lost.
bool KeepBytes() {
  CPINFO facts{};
  return GetCPInfo(CP_ACP, &facts) && facts.MaxCharSize == 1;
}

// Longer names they do not take.
bool CanBeCalled(const fs::path& file) {
  return KeepBytes() && file.native().size() < MAX_PATH;
}

std::wstring Wide(std::string_view bytes) {
  std::wstring text(bytes.size(), L'\0');
  const int size = static_cast<int>(bytes.size());
  text.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), size)));
  return text;
}

std::string Narrow(std::wstring_view text) {
  std::string bytes(text.size(), '\0');
  const int size = static_cast<int>(text.size());
  bytes.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_ACP, 0, text.data(), size, bytes.data(), size, nullptr, nullptr)));
  return bytes;
}

bool IsTooLarge(const fs::path& file) {
  std::error_code error;
  const auto size = fs::file_size(file, error);
  return !error && size > kLargestProfile;
}

std::wstring Read(const fs::path& file, const std::wstring& section, const std::wstring& key, const wchar_t* fallback,
                  std::size_t bufferSize) {
  std::wstring value(std::min<std::size_t>(bufferSize, std::numeric_limits<DWORD>::max()), L'\0');
  value.resize(GetPrivateProfileStringW(section.c_str(), key.c_str(), fallback, value.data(),
                                        static_cast<DWORD>(value.size()), file.c_str()));
  return value;
}

// A file of this process alone, among those that the system keeps for a while.
fs::path FileForAWhile() {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  return folder / ("telepanel-" + std::to_string(ProcessNumber()) + ".ini");
}

}  // namespace

std::optional<std::string> ReadFromProfile(const fs::path& file, std::string_view section, std::string_view key,
                                           std::size_t bufferSize) {
  std::error_code error;
  const fs::path whole = fs::absolute(file, error);  // without a folder it would be looked for among the system's files
  if (!CanBeCalled(whole)) return ReadByLines(file, section, key, bufferSize);
  if (IsTooLarge(whole)) return std::nullopt;
  // Only a missing key gives two different answers to two different fallbacks.
  const std::wstring sectionName = Wide(section);
  const std::wstring keyName = Wide(key);
  constexpr std::size_t kShort = 3;
  const bool found = Read(whole, sectionName, keyName, L"a", kShort) == Read(whole, sectionName, keyName, L"b", kShort);
  if (!found) return std::nullopt;
  return Narrow(Read(whole, sectionName, keyName, L"", bufferSize));
}

// The call writes the file in place, so that a crash in the middle would leave half of it. It is made on a copy, whose
// bytes then replace those of the file as a whole.
bool WriteToProfile(const fs::path& file, std::string_view section, std::optional<std::string_view> key,
                    std::optional<std::string_view> value) {
  const fs::path copy = FileForAWhile();
  if (!CanBeCalled(copy)) return WriteByLines(file, section, key, value);
  std::error_code missing;
  const bool isThere = fs::exists(file, missing);
  const auto before = isThere ? ReadWholeFile(file, kLargestProfile) : std::string();
  DeleteFileW(copy.c_str());
  if (!before || WriteNewFile(copy, {}, *before)) return false;
  const ScopeGuard remove([&copy] { DeleteFileW(copy.c_str()); });
  const std::wstring keyName = Wide(key.value_or(""));
  const std::wstring valueText = Wide(value.value_or(""));
  const BOOL isWritten = WritePrivateProfileStringW(Wide(section).c_str(), key ? keyName.c_str() : nullptr,
                                                    key && value ? valueText.c_str() : nullptr, copy.c_str());
  WritePrivateProfileStringW(nullptr, nullptr, nullptr, copy.c_str());  // what older systems have not written as yet
  const auto after = ReadWholeFile(copy, 2 * kLargestProfile);
  if (!isWritten || !after) return false;
  return *after == *before || SaveAtomically(file, *after).has_value();
}

}  // namespace kv
