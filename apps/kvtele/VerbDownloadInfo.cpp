#include <array>
#include <string>
#include <vector>

#include "apps/kvtele/DownloadActions.h"
#include "apps/kvtele/VerbOutput.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "clone/CloneSegment.h"
#include "download/DownloadFile.h"

namespace kv::cli {

namespace {

using Json = nlohmann::ordered_json;

// What each kind of file tells of itself, in the order in which it is shown.
Json DocumentOf(const AurexProjectFile& file) {
  return {{"kind", "project, Aurex family"},
          {"model", file.model},
          {"project", file.name},
          {"neededOsVersion", file.osVersion},
          {"neededOsBuild", file.osBuild},
          {"topics", file.topics.size()},
          {"bytes", file.dataBytes}};
}

Json DocumentOf(const CompactProjectFile& file) {
  return {{"kind", "project, compact family"},
          {"model", file.model},
          {"project", file.name},
          {"commands", file.commands.size()},
          {"endsWithReset", file.endsWithReset}};
}

Json DocumentOf(const AurexOsFile& file) {
  Json document = {{"kind", "O/S, Aurex family"}, {"model", file.model},   {"version", VersionText(file.number)},
                   {"build", file.number.build},  {"remark", file.remark}, {"bytes", file.dataBytes}};
  document["topics"] = Json::array();
  for (const AurexOsTopic& topic : file.topics) {
    document["topics"].push_back({{"number", topic.number},
                                  {"name", topic.name},
                                  {"base", ToHex(topic.base, kAddressDigits)},
                                  {"bytes", topic.data.size()},
                                  {"compressed", topic.isCompressed}});
  }
  return document;
}

Json DocumentOf(const FontsFile& file) {
  return {{"kind", "system fonts, Aurex family"},
          {"model", file.model},
          {"version", VersionText(file.number)},
          {"build", file.number.build},
          {"bytes", file.data.size()}};
}

Json DocumentOf(const CompactOsFile& file) {
  return {{"kind", "O/S, compact family"},   {"model", file.head.model},   {"version", VersionText(file.head.number)},
          {"build", file.head.number.build}, {"remark", file.head.remark}, {"bytes", file.image.size()}};
}

std::string TextOf(const Json& document) {
  constexpr std::size_t kLabel = 18;
  std::vector<std::string> keys;
  for (const auto& [key, value] : document.items()) {
    if (!value.is_array()) keys.push_back(key);
  }
  std::string text;
  for (const std::string& key : keys) {
    const std::string label = key + std::string(kLabel - key.size(), ' ');
    text += DocumentText(document, std::array{DocumentLine{label, key}});
  }
  if (!document.contains("topics") || !document["topics"].is_array()) return text;
  for (const Json& topic : document["topics"]) {
    text += "topic             " + topic["number"].dump() + "  " + topic["base"].get<std::string>() + "  " +
            topic["bytes"].dump() + " bytes" + (topic["compressed"] ? ", compressed on its way" : "") + "\n";
  }
  return text;
}

}  // namespace

VerbResult ReportDownloadFile(const std::filesystem::path& file) {
  const auto read = ReadDownloadFile(file);
  if (!read) {
    return std::unexpected(
        Failure{ExitCode::BadFile, "badFile", "reading the download file", read.error().Text(), {}, {}});
  }
  VerbOutput output;
  output.document = {{"file", Utf8FromPath(file)}};
  output.document.update(std::visit([](const auto& each) { return DocumentOf(each); }, *read));
  output.text = TextOf(output.document);
  return output;
}

}  // namespace kv::cli
