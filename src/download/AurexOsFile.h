#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"
#include "download/ContentStamp.h"
#include "download/DownloadFileError.h"
#include "download/OsNumber.h"

namespace kv {

// Numbers of the topics of an O/S transfer: 0 is its header, 1 to 15 are parts of the O/S, 16 the system fonts.
inline constexpr int kLastOsTopic = 15;
inline constexpr int kFontsTopic = 16;

// One part of an O/S.
struct AurexOsTopic {
  int number = 0;             // 1 to kLastOsTopic; they rise in the file
  std::string name;           // for people, UTF-8
  std::uint32_t base = 0;     // its address in the controller
  bool isCompressed = false;  // it is compressed before it is sent, when that makes it smaller
  Bytes data;                 // as it lies in the controller, at least one byte

  bool operator==(const AurexOsTopic&) const = default;
};

// An O/S of the Aurex family (*.kos).
struct AurexOsFile {
  std::string model;  // O/S model of the controllers that take it: "K220", "K222" or "K330"
  OsNumber number;
  std::string remark;                // for people, UTF-8; may be empty
  std::vector<AurexOsTopic> topics;  // at least one; their places do not overlap
  std::uint64_t dataBytes = 0;       // of all topics
  ContentStamp stamp;
};

// NotLegal: no O/S file. Damaged: its length or CRC-32 is not what it says, or its topics do not fit the controller.
// ReadAurexOsFile looks at the name, too: Damaged when model, version or build in it are not those of the file, because
// what a user is told before a download is taken from the name. `file` stands in errors.
[[nodiscard]] std::expected<AurexOsFile, DownloadFileError> ParseAurexOsFile(std::string_view bytes,
                                                                             const std::string& file);
[[nodiscard]] std::expected<AurexOsFile, DownloadFileError> ReadAurexOsFile(const std::filesystem::path& file);

}  // namespace kv
