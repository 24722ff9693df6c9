#include "sessions/SessionIni.h"

#include <algorithm>
#include <system_error>

#include "base/AnsiText.h"
#include "base/Crc32.h"
#include "base/DateText.h"
#include "base/Hex.h"
#include "base/KeepSetting.h"
#include "base/PathText.h"
#include "base/ProfileStrings.h"
#include "base/Texts.h"
#include "models/ModelCatalogue.h"

namespace kv {
namespace {

// The executable's name is both the file's base name and its section.
constexpr std::string_view kProgram = "KvTeleExe";
constexpr std::string_view kHost = "KvTele2";
constexpr std::string_view kLastModelKey = "LastModel";
constexpr std::string_view kFirstModel = "K220-22-R1";
constexpr std::string_view kLastUsedKey = "LastUsed";

std::filesystem::path IniFile(const SharedState& shared, std::string_view owner) {
  return SessionFile(shared, std::string(owner) + ".ini");
}

std::string TrimmedAtNul(std::string text) {
  text.resize(std::min(text.find('\0'), text.size()));
  return std::string(TrimBlanks(text));
}

std::string ReadIni(const SharedState& shared, std::string_view owner, std::string_view key,
                    std::string_view fallback) {
  return AnsiToUtf8(TrimmedAtNul(ReadProfileString(IniFile(shared, owner), owner, key, Utf8ToAnsi(fallback))));
}

// Behind the time stands whose it is: a session is copied with its settings, and the copy has not been used.
std::string MarkOfName(const SharedState& shared) {
  constexpr std::size_t kDigits = 8;
  return " " + ToHex(Crc32(shared.CurrentSession), kDigits);
}

}  // namespace

std::filesystem::path SessionFolder(const SharedState& shared) {
  return shared.paths.Session(shared.CurrentSession);
}

std::filesystem::path SessionFile(const SharedState& shared, std::string_view fileName) {
  return shared.paths.SessionFile(shared.CurrentSession, fileName);
}

bool SessionExists(const SharedState& shared) {
  std::error_code error;
  return std::filesystem::is_directory(SessionFolder(shared), error);
}

std::string ReadSessionIni(const SharedState& shared, std::string_view key, std::string_view fallback) {
  return ReadIni(shared, kProgram, key, fallback);
}

std::expected<void, std::string> WriteSessionIni(const SharedState& shared, std::string_view key,
                                                 std::string_view value) {
  return KeepSetting(IniFile(shared, kProgram), kProgram, key, value);
}

std::expected<void, std::string> RemoveSessionIni(const SharedState& shared, std::string_view key) {
  const std::filesystem::path file = IniFile(shared, kProgram);
  if (!WriteProfileString(file, kProgram, key, std::nullopt)) return std::unexpected(NotWritableText(file));
  return {};
}

std::string ReadHostIni(const SharedState& shared, std::string_view key, std::string_view fallback) {
  return ReadIni(shared, kHost, key, fallback);
}

std::string LastModel(const SharedState& shared) {
  return ReadSessionIni(shared, kLastModelKey, kFirstModel);
}

std::expected<void, std::string> SetLastModel(const SharedState& shared, std::string_view model) {
  auto kept = WriteSessionIni(shared, kLastModelKey, model);
  if (!kept) return std::unexpected("The model was not kept for the next start. " + kept.error());
  return kept;
}

void NoteSessionUsed(const SharedState& shared, std::chrono::local_seconds time) {
  const std::string text = DateText(time) + " " + TimeOfDayText(time);
  // A time that cannot be kept is no reason to disturb anybody.
  (void)WriteSessionIni(shared, kLastUsedKey, text + MarkOfName(shared));
}

std::string LastUsed(const SharedState& shared) {
  const std::string kept = ReadSessionIni(shared, kLastUsedKey, "");
  const std::string mark = MarkOfName(shared);
  return kept.ends_with(mark) ? kept.substr(0, kept.size() - mark.size()) : "";
}

void MarkSessionInUse(const SharedState& shared, bool inUse) {
  if (shared.CurrentSession == kDefaultSession) return;
  using std::filesystem::perms;
  constexpr perms kWrite = perms::owner_write | perms::group_write | perms::others_write;
  const auto file = SessionFile(shared, kSessionMarkFile);
  std::error_code error;
  if (inUse) {
    std::filesystem::permissions(file, kWrite, std::filesystem::perm_options::remove, error);
  } else {
    std::filesystem::permissions(file, perms::owner_write, std::filesystem::perm_options::add, error);
  }
}

void ConfigureDriverForSession(SharedState& shared, ListeningSocket* socket) {
  shared.ComDriver->ConfigureForSession(LinkOfSession(shared, shared.Remote->Model(), socket));
}

SessionLink LinkOfSession(const SharedState& shared, const std::string& model, ListeningSocket* socket) {
  const std::string offered = ModelOfIdentification(model);
  const bool isOffered = std::ranges::find(SelectableModels(), offered) != SelectableModels().end();
  return {
      .folder = Utf8FromPath(SessionFolder(shared)),
      .model = isOffered ? offered : "",
      .isCompactDriver = IsCompactDriverModel(model),
      .isBrio = IsBrioModel(model),
      .isColour = IsColourModel(model),
      .socket = socket,
  };
}

}  // namespace kv
