#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"
#include "download/ContentStamp.h"
#include "download/DownloadFileError.h"

namespace kv {

// One topic of a project: the fields of the block message that carries it, and its data.
struct AurexProjectTopic {
  std::uint32_t param1 = 0;
  std::uint8_t param3 = 0;
  std::uint8_t param4 = 0;
  Bytes data;  // at most what one block message carries

  bool operator==(const AurexProjectTopic&) const = default;
};

// A project of the Aurex family (*.dai), descrambled.
struct AurexProjectFile {
  int osVersion = 0;                            // that it needs: the version's digits without the points, 460
  int osBuild = 0;                              // that it needs
  std::uint16_t announcedTopics = 0;            // never more than topics.size()
  std::array<std::uint8_t, 8> passwordBlock{};  // sent as it stands
  std::string model;                            // that it is made for; UTF-8, without the zero bytes
  std::string name;                             // of the project; UTF-8, without the zero bytes
  // That it gets in the controller, UTF-8: what the topic with third parameter 1 says; nothing when there is none.
  std::optional<std::string> nameInController;
  std::vector<AurexProjectTopic> topics;  // in the order of sending; may be empty
  std::uint64_t dataBytes = 0;            // of all topics
  ContentStamp stamp;
};

// NotLegal: shorter than 150 bytes, or without its signature. Damaged: a record that runs past the end, a topic that no
// block message can carry, fewer topics than the head announces (a file that was cut between two of them).
// `file` stands in errors.
[[nodiscard]] std::expected<AurexProjectFile, DownloadFileError> ParseAurexProject(std::string_view bytes,
                                                                                   const std::string& file);
[[nodiscard]] std::expected<AurexProjectFile, DownloadFileError> ReadAurexProject(const std::filesystem::path& file);

}  // namespace kv
