#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/AtomicFile.h"
#include "clone/CloneSegment.h"
#include "link/VersionInfo.h"

namespace kv {

// What is kept beside a clone file about it, in a file of ours: the clone file's own form is settled and has no place
// for it. Above all the digests: an erased line that was left out and one that was lost look alike in the file.
// docs/file-formats.md describes the form.
struct CloneManifest {
  struct Segment {
    CloneSegment segment;
    std::string sha256;  // of its bytes as they were read from the controller

    bool operator==(const Segment&) const = default;
  };

  std::uint64_t length = 0;  // of the clone file, bytes
  std::string sha256 = {};   // of the clone file as it was written; 64 lower-case hexadecimal digits
  VersionInfo version = {};  // Windows-1252, as everywhere
  std::uint8_t unit = 0;
  std::optional<std::uint32_t> serialNumber = {};
  std::string project = {};  // Windows-1252
  bool wasRunning = false;   // the program ran while the clone was made: what it changed is half old, half new
  std::string madeOn = {};   // date and time where the user sat
  std::string madeBy = {};   // UTF-8
  std::string comment = {};  // UTF-8
  std::string journal = {};  // head of the session's journal of changes; empty: nothing was recorded
  std::vector<Segment> segments = {};

  bool operator==(const CloneManifest&) const = default;
};

// "plc.kdf" -> "plc.kdf.manifest".
[[nodiscard]] std::filesystem::path ManifestPath(const std::filesystem::path& cloneFile);

// The text of a manifest and back. A text that lacks a field, or its last line, is refused, and so is one that goes on
// behind it; fields that are not known are passed over.
[[nodiscard]] std::string PrintManifest(const CloneManifest& manifest);
[[nodiscard]] std::expected<CloneManifest, std::string> ParseManifest(std::string_view text);

// Keeps a manifest beside `cloneFile`. When that fails, one that stood there for an earlier file is taken away.
[[nodiscard]] std::expected<void, FileError> SaveManifest(const std::filesystem::path& cloneFile,
                                                          const CloneManifest& manifest);

// The manifest beside `cloneFile`; nothing when there is none.
[[nodiscard]] std::expected<std::optional<CloneManifest>, FileError> ReadManifest(
    const std::filesystem::path& cloneFile);

}  // namespace kv
