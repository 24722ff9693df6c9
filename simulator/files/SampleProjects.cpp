#include <algorithm>

#include "base/Hex.h"
#include "simulator/HexText.h"
#include "simulator/LittleEndian.h"
#include "simulator/files/SampleBytes.h"
#include "simulator/files/SampleFiles.h"

namespace sim {
namespace {

constexpr std::size_t kLongestName = 20;

// Head of 150 bytes, then the topics: the name with 1 as its third parameter, and the program in pieces.
FileOrFault MakeAurexProject(const Model& model, const SampleProject& project) {
  constexpr std::size_t kPiece = 4096;
  constexpr std::size_t kMostTopics = 0xFFFF;
  constexpr int kNameTopic = 1;
  constexpr int kProgramTopic = 2;
  const std::size_t pieces = (project.size + kPiece - 1) / kPiece;
  if (pieces >= kMostTopics) return std::unexpected("a project has at most 65535 topics of 4096 bytes");
  if (VersionNumber(project.os) > 0xFFFF) return std::unexpected("a project names an O/S of at most 655.35");

  std::string file(4, '\0');
  AppendLittle(file, static_cast<std::uint32_t>(VersionNumber(project.os)), 2);
  AppendLittle(file, static_cast<std::uint32_t>(project.os.build), 2);
  AppendLittle(file, 0, 2);
  AppendLittle(file, static_cast<std::uint32_t>(pieces + 1), 2);
  file += Padded("", 8) + "PASSWORD" + Padded("", 2);
  file += Padded("Aurex Download File", 20) + Padded(model.reported, 20) + Padded(project.name, 20) + Padded("", 60);
  const auto append = [&file](std::uint32_t param1, int param3, std::string_view data) {
    AppendLittle(file, 0, 2);
    AppendLittle(file, param1, 4);
    AppendLittle(file, static_cast<std::uint32_t>(data.size()), 4);
    file += {static_cast<char>(param3), '\0'};
    file += data;
  };
  append(0, kNameTopic, Padded(project.name, kLongestName));
  const std::string program = SampleBytes(project.size, project.seed);
  for (std::size_t i = 0; i < project.size; i += kPiece) {
    append(static_cast<std::uint32_t>(i), kProgramTopic, std::string_view(program).substr(i, kPiece));
  }
  for (std::size_t i = 0; i < file.size(); ++i) file[i] = static_cast<char>(file[i] ^ static_cast<char>(i & 0xFF));
  return file;
}

// Lines that the controller gets as commands, each written backwards with its characters moved up by 0, 1 or 2.
FileOrFault MakeCompactProject(const Model& model, const SampleProject& project) {
  constexpr std::size_t kPiece = 64;
  constexpr std::size_t kMostAddress = 0xFFFFFF;
  if (project.size > kMostAddress) return std::unexpected("a compact project has at most 16777215 bytes");
  std::string file;
  std::size_t count = 0;
  const auto append = [&](std::string line) {
    std::ranges::reverse(line);
    for (char& c : line) c = static_cast<char>(c + static_cast<char>(count % 3));
    file += line + "\r\n";
    ++count;
  };
  append(project.name);
  append(std::string(model.reported));
  for (const char* line : {"T50 Ladder Download File", "CCS", "DE", "DI"}) append(line);
  append("LN" + HexOfBytes(project.name));
  const std::string program = SampleBytes(project.size, project.seed);
  for (std::size_t i = 0; i < project.size; i += kPiece) {
    append("LD" + kv::ToHex(static_cast<std::uint32_t>(i), 6) + HexOfBytes(program.substr(i, kPiece)));
  }
  append("CCE");
  return file;
}

}  // namespace

FileOrFault MakeProject(const Model& model, const SampleProject& project) {
  const bool isName = project.name.size() <= kLongestName &&
                      std::ranges::all_of(project.name, [](char c) { return c >= ' ' || c < 0; });
  if (!isName) return std::unexpected("a project's name has at most 20 characters");
  return model.family == Family::Aurex ? MakeAurexProject(model, project) : MakeCompactProject(model, project);
}

std::string_view ProjectExtension(const Model& model) {
  return model.family == Family::Aurex ? ".dai" : ".d50";
}

}  // namespace sim
