#include "download/AurexProjectFile.h"

#include "download/DecodeFile.h"
#include "download/FileFields.h"
#include "download/ReadDownload.h"
#include "link/LinkLimits.h"

namespace kv {
namespace {

constexpr std::size_t kHead = 150;
constexpr std::size_t kRecordHead = 12;
constexpr std::uint8_t kNameTopic = 1;
constexpr std::string_view kSignature = "Aurex Download File";
constexpr std::size_t kLargestFile = std::size_t{32} << 20;  // twice the project memory of any controller

AurexProjectFile HeadOf(std::string_view bytes) {
  AurexProjectFile project;
  project.osVersion = static_cast<int>(LittleAt(bytes, 4, 2));
  project.osBuild = static_cast<int>(LittleAt(bytes, 6, 2));
  project.announcedTopics = static_cast<std::uint16_t>(LittleAt(bytes, 10, 2));
  for (std::size_t i = 0; i < project.passwordBlock.size(); ++i) {
    project.passwordBlock[i] = static_cast<std::uint8_t>(bytes[20 + i]);
  }
  project.model = ShownText(bytes.substr(50, 20));
  project.name = ShownText(bytes.substr(70, 20));
  return project;
}

// A record: 16 bits that nobody reads, first parameter (32), length (32), third and fourth parameter (8 each), data.
// What is wrong with it, or where the next one begins.
std::expected<std::size_t, std::string> ReadTopic(std::string_view bytes, std::size_t offset,
                                                  AurexProjectFile& project) {
  const std::size_t left = bytes.size() - offset;
  if (left < kRecordHead) return std::unexpected("expected a record of 12 bytes and its data: the file was cut");
  const std::uint32_t length = LittleAt(bytes, offset + 6, 4);
  if (length > kMostBlockData) {
    return std::unexpected("expected at most " + std::to_string(kMostBlockData) + " bytes of data, not " +
                           std::to_string(length));
  }
  if (length > left - kRecordHead) {
    return std::unexpected("expected " + std::to_string(length) + " bytes of data, and found " +
                           std::to_string(left - kRecordHead) + ": the file was cut");
  }
  const std::string_view data = bytes.substr(offset + kRecordHead, length);
  project.topics.push_back({.param1 = LittleAt(bytes, offset + 2, 4),
                            .param3 = static_cast<std::uint8_t>(bytes[offset + 10]),
                            .param4 = static_cast<std::uint8_t>(bytes[offset + 11]),
                            .data = Bytes(data.begin(), data.end())});
  project.dataBytes += length;
  if (project.topics.back().param3 == kNameTopic) {
    project.nameInController = ShownText(data.substr(0, data.find('\0')).substr(0, kLongestProjectName));
  }
  return offset + kRecordHead + length;
}

}  // namespace

std::expected<AurexProjectFile, DownloadFileError> ParseAurexProject(std::string_view scrambled,
                                                                     const std::string& file) {
  const FaultsOf faults(file);
  if (scrambled.size() < kHead) {
    return faults.NotLegal("expected at least " + std::to_string(kHead) + " bytes, not " +
                           std::to_string(scrambled.size()));
  }
  const std::string bytes = DecodeBytes(scrambled);
  if (TextAt(bytes, 30, 20) != kSignature) {
    return faults.NotLegal("expected the signature \"" + std::string(kSignature) + "\" at byte 30");
  }
  AurexProjectFile project = HeadOf(bytes);
  project.stamp = StampOf(scrambled);
  for (std::size_t offset = kHead; offset + 1 < bytes.size();) {  // one byte behind the last record does not count
    const auto next = ReadTopic(bytes, offset, project);
    if (!next) {
      return faults.Damaged("topic " + std::to_string(project.topics.size() + 1) + " at byte " + std::to_string(offset),
                            next.error());
    }
    offset = *next;
  }
  if (project.topics.size() < project.announcedTopics) {
    return faults.Damaged("byte " + std::to_string(bytes.size()),
                          "expected " + std::to_string(project.announcedTopics) + " topics, and found " +
                              std::to_string(project.topics.size()) + ": the file was cut");
  }
  return project;
}

std::expected<AurexProjectFile, DownloadFileError> ReadAurexProject(const std::filesystem::path& file) {
  const auto bytes = ReadDownloadBytes(file, kLargestFile);
  if (!bytes) return std::unexpected(bytes.error());
  return ParseAurexProject(*bytes, Utf8FromPath(file));
}

}  // namespace kv
