#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "journal/JournalDisk.h"
#include "journal/JournalFiles.h"

namespace kv {

// The end of a journal: its last record, and where it stands.
struct JournalHead {
  std::string journal{};  // as the first record of the journal names it
  std::uint64_t number = 0;
  std::string hash{};
  unsigned segment = 0;
  std::uint64_t end = 0;  // offset in that file behind the record

  bool operator==(const JournalHead&) const = default;
};

// "42 0a1b...": what is written into manifests and tables, and what --expect takes, in either order.
[[nodiscard]] std::string HeadText(std::uint64_t number, std::string_view hash);

// The head of the journal in a session's folder is kept in a file of its own in the user's folder, so that whoever puts
// an older copy of the session in place does not put its head in place, too. Empty: none is kept.
[[nodiscard]] std::filesystem::path HeadFile(const JournalPlaces& places);
// Nothing when none is kept.
[[nodiscard]] std::optional<JournalHead> ReadHead(JournalDisk& disk, const std::filesystem::path& file);
// Whether one of its two places is neither empty nor whole, so that ReadHead gives the head before the last.
[[nodiscard]] bool IsHeadDamaged(JournalDisk& disk, const std::filesystem::path& file);
// In place and without a flush: a power failure may leave the head before, which is a record of the journal, too.
[[nodiscard]] std::error_code WriteHead(JournalDisk& disk, const std::filesystem::path& file, const JournalHead& head);

}  // namespace kv
