#include "journal/JournalHead.h"

#include <algorithm>
#include <array>

#include "base/Crc32.h"
#include "base/Hex.h"
#include "base/Numbers.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "digest/Sha256.h"
#include "journal/JournalRecord.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

// Two places, which are written in turn: what a crash leaves half written is never the only one.
constexpr std::size_t kSlot = 256;
constexpr std::size_t kSlots = 2;
constexpr std::string_view kWord = "journal-head";

struct Slot {
  std::int64_t turn = 0;  // raised with each write
  JournalHead head;
};

std::string CheckOf(std::string_view text) {
  return ToHex(Crc32(text), 8);
}

std::string PrintSlot(const Slot& slot) {
  std::string text = std::string(kWord) + " " + std::to_string(slot.turn) + " " + slot.head.journal + " " +
                     std::to_string(slot.head.number) + " " + slot.head.hash + " " + std::to_string(slot.head.segment) +
                     " " + std::to_string(slot.head.end) + " ";
  text += CheckOf(text);
  text.resize(kSlot - 1, ' ');
  return text + "\n";
}

std::optional<Slot> ParseSlot(std::string_view text) {
  const std::string_view all = text;
  if (TakeField(text, ' ') != kWord) return std::nullopt;
  const auto turn = ParseInteger(TakeField(text, ' '));
  const std::string_view journal = TakeField(text, ' ');
  const auto number = ParseInteger(TakeField(text, ' '));
  const std::string_view hash = TakeField(text, ' ');
  const auto segment = ParseInteger(TakeField(text, ' '));
  const auto end = ParseInteger(TakeField(text, ' '));
  const std::string_view before = all.substr(0, all.size() - text.size());
  const bool isWhole = TakeField(text, ' ') == CheckOf(before) && turn && number && segment && end;
  const bool isSound = isWhole && *number > 0 && *segment > 0 && *segment <= kMostSegments && *end > 0;
  if (!isSound || hash.size() != kNoHash.size()) return std::nullopt;
  return Slot{*turn,
              {std::string(journal), static_cast<std::uint64_t>(*number), std::string(hash),
               static_cast<unsigned>(*segment), static_cast<std::uint64_t>(*end)}};
}

std::optional<Slot> NewestSlot(JournalFile& file) {
  const auto bytes = file.Read(0, kSlot * kSlots);
  std::optional<Slot> newest;
  for (std::size_t i = 0; bytes && i < kSlots && bytes->size() >= (i + 1) * kSlot; ++i) {
    const auto slot = ParseSlot(std::string_view(*bytes).substr(i * kSlot, kSlot));
    if (slot && (!newest || slot->turn > newest->turn)) newest = slot;
  }
  return newest;
}

// The same folder has one name here, however it was written.
std::string FolderText(const fs::path& folder) {
  std::error_code error;
  fs::path whole = fs::weakly_canonical(folder, error);
  if (error) whole = fs::absolute(folder, error);
  std::string text = Utf8FromPath(whole);
#ifdef _WIN32
  text = UpperCased(text);
#endif
  return text;
}

}  // namespace

std::string HeadText(std::uint64_t number, std::string_view hash) {
  return std::to_string(number) + " " + std::string(hash);
}

fs::path HeadFile(const JournalPlaces& places) {
  constexpr std::size_t kDigits = 32;
  if (places.stateFolder.empty()) return {};
  Sha256 digest;
  digest.Add(FolderText(places.folder));
  return places.stateFolder / (digest.Hex().substr(0, kDigits) + ".head");
}

std::optional<JournalHead> ReadHead(JournalDisk& disk, const fs::path& file) {
  if (file.empty()) return std::nullopt;
  const auto opened = disk.Open(file, JournalDisk::Access::Read);
  if (!opened) return std::nullopt;
  const auto slot = NewestSlot(**opened);
  return slot ? std::optional(slot->head) : std::nullopt;
}

bool IsHeadDamaged(JournalDisk& disk, const fs::path& file) {
  const auto opened = file.empty() ? std::unexpected(std::error_code()) : disk.Open(file, JournalDisk::Access::Read);
  const auto bytes = opened ? (*opened)->Read(0, kSlot * kSlots) : std::unexpected(opened.error());
  if (!bytes) return false;
  for (std::string_view rest = *bytes; !rest.empty(); rest.remove_prefix(std::min(kSlot, rest.size()))) {
    const std::string_view slot = rest.substr(0, kSlot);
    if (slot.find_first_not_of('\0') != std::string_view::npos && !ParseSlot(slot)) return true;
  }
  return false;
}

std::error_code WriteHead(JournalDisk& disk, const fs::path& file, const JournalHead& head) {
  if (file.empty()) return std::make_error_code(std::errc::no_such_file_or_directory);
  auto opened = disk.Open(file, JournalDisk::Access::Replace);
  if (!opened) {
    std::error_code ignored;
    fs::create_directories(file.parent_path(), ignored);
    opened = disk.Open(file, JournalDisk::Access::Replace);
  }
  if (!opened) return opened.error();
  const auto before = NewestSlot(**opened);
  const Slot slot{before ? before->turn + 1 : 1, head};
  return (*opened)->Write(static_cast<std::uint64_t>(slot.turn) % kSlots * kSlot, PrintSlot(slot));
}

}  // namespace kv
