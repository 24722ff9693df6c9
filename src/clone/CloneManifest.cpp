#include "clone/CloneManifest.h"

#include <algorithm>
#include <system_error>

#include "base/AnsiText.h"
#include "base/FileToReplace.h"
#include "base/Hex.h"
#include "base/LineReader.h"
#include "base/Numbers.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "link/LinkLimits.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTitle = "Korvantis Clone Manifest\tV1";
constexpr std::size_t kDigestDigits = 64;
constexpr std::size_t kMostBytes = std::size_t{64} * 1024;

// A value may not end its line.
std::string OneLine(std::string text) {
  std::ranges::replace_if(text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  return text;
}

class Printer {
 public:
  void Add(std::string_view name, const std::string& value) {
    mText.append(name).append("\t").append(OneLine(value)).append("\r\n");
  }
  void AddSegment(const CloneManifest::Segment& each) {
    const CloneSegment& segment = each.segment;
    mText += "Segment\t" + AnsiToUtf8(segment.code) + "\t" + LetterOf(segment.kind) + "\t" +
             ToHex(segment.start, kAddressDigits) + "\t" + std::to_string(segment.length) + "\t" + each.sha256 + "\r\n";
  }
  std::string mText = std::string(kTitle) + "\r\n";
};

bool IsDigest(std::string_view text) {
  return text.size() == kDigestDigits &&
         std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

template <typename Number>
bool ReadNumber(std::string_view text, std::int64_t most, Number& number) {
  const auto parsed = ParseInteger(text);
  if (!parsed || *parsed < 0 || *parsed > most) return false;
  number = static_cast<Number>(*parsed);
  return true;
}

bool ReadText(std::string_view text, std::string& ansi) {
  ansi = Utf8ToAnsi(text);
  return true;
}

bool ReadSegment(std::string_view value, CloneManifest& manifest) {
  CloneManifest::Segment each;
  each.segment.code = Utf8ToAnsi(TakeField(value, '\t'));
  const std::string_view letter = TakeField(value, '\t');
  each.segment.kind = letter == "F" ? MemoryKind::Flash : MemoryKind::Ram;
  const std::string_view start = TakeField(value, '\t');
  each.segment.start = ParseHex(start).value_or(0);
  const bool hasLength = ReadNumber(TakeField(value, '\t'), 0xFFFFFFFF, each.segment.length);
  each.sha256 = value;
  manifest.segments.push_back(each);
  return each.segment.code.size() == 2 && (letter == "F" || letter == "R") && start.size() == 8 && ParseHex(start) &&
         hasLength && IsDigest(each.sha256);
}

bool ReadSerialNumber(std::string_view value, CloneManifest& manifest) {
  if (value.empty()) return true;
  return ReadNumber(value, UINT32_MAX, manifest.serialNumber.emplace());
}

bool ReadProgram(std::string_view value, CloneManifest& manifest) {
  manifest.wasRunning = value == "running";
  return value == "running" || value == "stopped";
}

struct Field {
  std::string_view name;
  bool isNeeded;
  bool (*read)(std::string_view value, CloneManifest& manifest);
};

// clang-format off
constexpr Field kFields[] = {
    {"Length",        true,  [](std::string_view v, CloneManifest& m) { return ReadNumber(v, INT64_MAX, m.length); }},
    {"SHA-256",       true,  [](std::string_view v, CloneManifest& m) { m.sha256 = v; return IsDigest(v); }},
    {"Model",         true,  [](std::string_view v, CloneManifest& m) { return ReadText(v, m.version.model); }},
    {"Hardware code", true,  [](std::string_view v, CloneManifest& m) { return ReadText(v, m.version.hardwareCode); }},
    {"O/S",           true,  [](std::string_view v, CloneManifest& m) { return ReadText(v, m.version.osVersion); }},
    {"Build",         true,  [](std::string_view v, CloneManifest& m) { return ReadText(v, m.version.osBuild); }},
    {"Unit",          true,  [](std::string_view v, CloneManifest& m) { return ReadNumber(v, kUnitIds.highest, m.unit); }},
    {"Serial number", true,  ReadSerialNumber},
    {"Project",       true,  [](std::string_view v, CloneManifest& m) { return ReadText(v, m.project); }},
    {"Program",       true,  ReadProgram},
    {"Made on",       true,  [](std::string_view v, CloneManifest& m) { m.madeOn = v; return true; }},
    {"Made by",       true,  [](std::string_view v, CloneManifest& m) { m.madeBy = v; return true; }},
    {"Comment",       true,  [](std::string_view v, CloneManifest& m) { m.comment = v; return true; }},
    {"Journal",       false, [](std::string_view v, CloneManifest& m) { m.journal = v; return true; }},
    {"Segment",       false, ReadSegment},
};
// clang-format on

}  // namespace

fs::path ManifestPath(const fs::path& cloneFile) {
  fs::path path = cloneFile;
  path += ".manifest";
  return path;
}

std::string PrintManifest(const CloneManifest& manifest) {
  Printer printer;
  printer.Add("Length", std::to_string(manifest.length));
  printer.Add("SHA-256", manifest.sha256);
  printer.Add("Model", AnsiToUtf8(manifest.version.model));
  printer.Add("Hardware code", AnsiToUtf8(manifest.version.hardwareCode));
  printer.Add("O/S", AnsiToUtf8(manifest.version.osVersion));
  printer.Add("Build", AnsiToUtf8(manifest.version.osBuild));
  printer.Add("Unit", std::to_string(manifest.unit));
  printer.Add("Serial number", manifest.serialNumber ? std::to_string(*manifest.serialNumber) : "");
  printer.Add("Project", AnsiToUtf8(manifest.project));
  printer.Add("Program", manifest.wasRunning ? "running" : "stopped");
  printer.Add("Made on", manifest.madeOn);
  printer.Add("Made by", manifest.madeBy);
  printer.Add("Comment", manifest.comment);
  if (!manifest.journal.empty()) printer.Add("Journal", manifest.journal);
  for (const CloneManifest::Segment& each : manifest.segments) printer.AddSegment(each);
  printer.Add("End", std::to_string(manifest.segments.size()));
  return printer.mText;
}

std::expected<CloneManifest, std::string> ParseManifest(std::string_view text) {
  CloneManifest manifest;
  std::vector<std::string_view> seen;
  LineReader lines(text);
  if (!lines.Next() || lines.Line() != kTitle) return std::unexpected("it is no manifest of version V1");
  while (lines.Next()) {
    std::string_view value = lines.Line();
    const std::string_view name = TakeField(value, '\t');
    if (name == "End") {
      if (value != std::to_string(manifest.segments.size())) return std::unexpected("segments are missing in it");
      if (!lines.IsAtEnd()) return std::unexpected("something stands behind its last line");
      for (const Field& field : kFields) {
        if (field.isNeeded && std::ranges::count(seen, field.name) != 1) {
          return std::unexpected("\"" + std::string(field.name) + "\" must stand in it once");
        }
      }
      return manifest;
    }
    const auto field = std::ranges::find(kFields, name, &Field::name);
    if (field == std::end(kFields)) continue;
    if (!field->read(value, manifest)) return std::unexpected("\"" + std::string(name) + "\" cannot be read");
    seen.push_back(name);
  }
  return std::unexpected("its last line is missing");
}

std::expected<void, FileError> SaveManifest(const fs::path& cloneFile, const CloneManifest& manifest) {
  const std::string text = PrintManifest(manifest);
  const auto save = [&]() -> std::expected<void, FileError> {
    if (text.size() <= kMostBytes) return SaveAtomically(ManifestPath(cloneFile), text);
    return std::unexpected(FileError{Utf8FromPath(ManifestPath(cloneFile)), "", "its comment is too long"});
  };
  auto saved = save();
  std::error_code ignored;
  if (!saved) fs::remove(ManifestPath(cloneFile), ignored);
  return saved;
}

std::expected<std::optional<CloneManifest>, FileError> ReadManifest(const fs::path& cloneFile) {
  const fs::path path = ManifestPath(BehindLinks(cloneFile).value_or(cloneFile));
  std::error_code error;
  if (fs::status(path, error).type() == fs::file_type::not_found) return std::nullopt;
  const auto text = ReadWholeFile(path, kMostBytes);
  if (!text) return std::unexpected(text.error());
  auto manifest = ParseManifest(*text);
  if (!manifest) return std::unexpected(FileError{Utf8FromPath(path.filename()), "", manifest.error()});
  return *std::move(manifest);
}

}  // namespace kv
