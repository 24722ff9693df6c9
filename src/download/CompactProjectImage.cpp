#include "download/CompactProjectImage.h"

#include <algorithm>
#include <array>

#include "base/Hex.h"
#include "download/FileFields.h"
#include "link/LinkLimits.h"

namespace kv {
namespace {

struct Form {
  std::string_view command;
  std::size_t addressDigits;
  std::size_t fewest;  // bytes
  std::size_t most;
  const char* expected;
};
constexpr std::array kForms = {
    Form{"LD", 6, 1, 256, "expected an address of 6 digits and 1 to 256 bytes, as digits"},
    Form{"FW", 8, 0, 64, "expected an address of 8 digits and at most 64 bytes, as digits; 00000000 without bytes"},
    Form{"LN", 0, 0, kLongestProjectName, "expected a name of at most 20 bytes, as digits"},
    Form{"RX", 8, 0, 0, "expected an address of 8 digits"},
    Form{"DRS", 4, 1, 1, "expected an address and a count of system bytes, 4 and 2 digits, of 256 in all"},
};
constexpr std::string_view kName = "LN";
constexpr std::string_view kBytes = "LD";
constexpr std::string_view kFlash = "FW";
constexpr std::string_view kRead = "RX";
constexpr std::string_view kSystem = "DRS";
// What a project consists of beside the lines with a form: stop, erase, wait, reset; the announcement of a download;
// and what only asks. Whatever else a controller understands would change something that nobody has agreed to (the O/S,
// the memory past the project, operands, the line's speed), and what it does not understand would be refused behind the
// erasing of the old project.
constexpr auto kWhole = std::to_array<std::string_view>({"CCS", "CCE", "DE", "DI", "PV000A", "ID", "FI"});

const Form* FormOf(std::string_view line) {
  const auto form = std::ranges::find_if(kForms, [&](const Form& each) { return line.starts_with(each.command); });
  return form == kForms.end() ? nullptr : &*form;
}

// Of fields that are whole: whether there is what they name.
bool Exists(std::string_view command, const CompactPiece& piece) {
  constexpr std::uint32_t kSystemBytes = 256;
  if (command == kFlash) return !piece.bytes.empty() || piece.address == 0;
  if (command != kSystem) return true;
  return piece.bytes.front() > 0 && piece.address + piece.bytes.front() <= kSystemBytes;
}

std::expected<CompactPiece, std::string> Read(const Form& form, std::string_view line) {
  const std::string_view digits = line.substr(form.command.size());
  const std::size_t count = digits.size() < form.addressDigits ? 0 : digits.size() - form.addressDigits;
  const bool fits = digits.size() >= form.addressDigits && count % 2 == 0 && count / 2 >= form.fewest &&
                    count / 2 <= form.most && AreUpperHexDigits(digits);
  if (!fits) return std::unexpected(form.expected);
  CompactPiece piece;
  if (form.addressDigits > 0) {
    piece.address = ParseHex(digits.substr(0, form.addressDigits)).value_or(0);
  }
  piece.bytes = HexStringToBytes(digits.substr(form.addressDigits)).value_or(Bytes());
  if (!Exists(form.command, piece)) return std::unexpected(form.expected);
  return piece;
}

bool WritesProject(std::string_view line) {
  const Form* form = FormOf(line);
  return form != nullptr && (form->command == kName || form->command == kBytes || form->command == kFlash);
}

}  // namespace

std::expected<CompactPiece, std::string> ReadCompactPiece(std::string_view line) {
  const Form* form = FormOf(line);
  if (form == nullptr && std::ranges::find(kWhole, line) == kWhole.end()) {
    return std::unexpected("this command has no place in a project, and is not sent");
  }
  if (form == nullptr) return CompactPiece{};
  auto piece = Read(*form, line);
  if (!piece) return piece;
  if (form->command == kRead) return CompactPiece{.end = std::uint64_t{piece->address} + 1};
  if (form->command != kBytes && form->command != kFlash) return CompactPiece{};
  if (!piece->bytes.empty()) piece->end = std::uint64_t{piece->address} + piece->bytes.size();
  return piece;
}

std::string CompactProjectOrder::Take(std::string_view line) {
  const bool isErase = line == "DE";
  if (mPlace == Place::Restarted && (isErase || line == "CCS" || WritesProject(line))) {
    return "it stands behind the restart (CCE), with which a project ends";
  }
  if (mPlace == Place::BeforeErase && WritesProject(line)) {
    return "it stands before the command that erases the old project (DE)";
  }
  if (isErase) mPlace = Place::Loading;
  if (line == "CCE" && mPlace == Place::Loading) mPlace = Place::Restarted;
  return "";
}

std::optional<std::string> ReadCompactName(std::string_view line) {
  if (line == "DE") return std::string();
  const Form* form = FormOf(line);
  if (form == nullptr || form->command != kName) return std::nullopt;
  const auto name = Read(*form, line);
  if (!name) return std::nullopt;
  const std::string ansi(name->bytes.begin(), name->bytes.end());
  return ShownText(std::string_view(ansi).substr(0, ansi.find('\0')));
}

void CompactProjectImage::Take(std::string_view line) {
  if (line == "DE") return Clear();
  const auto piece = ReadCompactPiece(line);
  if (!piece || piece->bytes.empty()) return;
  if (piece->end > mBytes.size()) {
    mBytes.resize(piece->end);
    mIsWritten.resize(piece->end);
  }
  for (std::size_t i = 0; i < piece->bytes.size(); ++i) {
    const std::size_t place = piece->address + i;
    mBytes[place] = piece->bytes[i];
    mWritten += mIsWritten[place] ? 0 : 1;
    mIsWritten[place] = true;
  }
}

void CompactProjectImage::Clear() {
  mBytes.clear();
  mIsWritten.clear();
  mWritten = 0;
}

std::optional<std::uint32_t> CompactProjectImage::NextFrom(std::uint32_t place) const {
  if (place >= mIsWritten.size()) return std::nullopt;
  const auto next = std::find(mIsWritten.begin() + place, mIsWritten.end(), true);
  if (next == mIsWritten.end()) return std::nullopt;
  return static_cast<std::uint32_t>(next - mIsWritten.begin());
}

std::optional<std::uint32_t> CompactProjectImage::DifferenceIn(std::uint32_t place, const Bytes& found) const {
  for (std::size_t i = 0; i < found.size() && place + i < mBytes.size(); ++i) {
    if (mIsWritten[place + i] && mBytes[place + i] != found[i]) return static_cast<std::uint32_t>(place + i);
  }
  return std::nullopt;
}

}  // namespace kv
