#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "host/shared/SharedState.h"

namespace kv {

// The empty file of every other session that carries the mark.
inline constexpr std::string_view kSessionMarkFile = "tmp.txt";

// Names of the files of a session's change journal begin so. They tell of this session alone, and are not copied with
// it.
inline constexpr std::string_view kChangesFilePrefix = "Changes.";
// Key of this program's settings: "1" asks for a reason before a controller is changed.
inline constexpr std::string_view kAskReasonKey = "AskReason";

// The folder of the current session, and a file in it.
[[nodiscard]] std::filesystem::path SessionFolder(const SharedState& shared);
[[nodiscard]] std::filesystem::path SessionFile(const SharedState& shared, std::string_view fileName);

// Whether the current session's folder exists.
[[nodiscard]] bool SessionExists(const SharedState& shared);

// One value of this program's settings in the current session ("KvTeleExe.ini", section "KvTeleExe"), UTF-8. The value
// is cut at 254 characters and trimmed of blanks; a missing key reads as `fallback`, an empty value as "".
[[nodiscard]] std::string ReadSessionIni(const SharedState& shared, std::string_view key, std::string_view fallback);
// Fails when the file cannot be written, or cannot hold the value so that it is read back as it is; the file is then as
// it was. The error is what happened, the likely cause and what to do, in sentences for the user.
[[nodiscard]] std::expected<void, std::string> WriteSessionIni(const SharedState& shared, std::string_view key,
                                                               std::string_view value);
// Deletes the key.
[[nodiscard]] std::expected<void, std::string> RemoveSessionIni(const SharedState& shared, std::string_view key);

// The same read from the host's settings in the current session ("KvTele2.ini", section "KvTele2").
[[nodiscard]] std::string ReadHostIni(const SharedState& shared, std::string_view key, std::string_view fallback);

// The model that the session was last used with; a new session starts with "K220-22-R1".
[[nodiscard]] std::string LastModel(const SharedState& shared);
[[nodiscard]] std::expected<void, std::string> SetLastModel(const SharedState& shared, std::string_view model);

// Keeps when the current session went on line, in local time, as far as its settings can be written; and tells it
// ("2026-11-21 14:03:21"). Empty: never, and in a copy of a session that did.
void NoteSessionUsed(const SharedState& shared, std::chrono::local_seconds time);
[[nodiscard]] std::string LastUsed(const SharedState& shared);

// Marks the current session as in use, or no longer so: its "tmp.txt" becomes read-only or normal. "Default" is never
// marked; a session without that file is left alone.
void MarkSessionInUse(const SharedState& shared, bool inUse);

// What the driver is told about the current session, when it is served with `model`.
[[nodiscard]] SessionLink LinkOfSession(const SharedState& shared, const std::string& model, ListeningSocket* socket);
// Tells the driver which session and what kind of model it serves, and hands it the socket for controllers that dial
// in.
void ConfigureDriverForSession(SharedState& shared, ListeningSocket* socket);

}  // namespace kv
