// Any bytes as a project of the compact family: each command that is taken can be sent, and DE comes before DI.

#include <algorithm>
#include <cstdint>
#include <string>

#include "download/CompactProjectFile.h"
#include "download/CompactProjectImage.h"
#include "download/DecodeFile.h"
#include "fuzz/Require.h"
#include "link/AsciiFrame.h"

namespace {

void Check(const std::string& bytes) {
  const auto project = kv::ParseCompactProject(bytes, "fuzz");
  if (!project) {
    Require(!project.error().where.what.empty(), "a refused file is refused with the reason");
    return;
  }
  Require(project->lineCount == project->commands.size() + kv::kCompactProjectHeadLines, "every line is a command");
  kv::CompactProjectOrder order;
  bool isErased = false;
  for (const std::string& command : project->commands) {
    Require(!command.empty() && command.size() <= kv::kMaxFrameText, "a command has the length of a frame's text");
    Require(std::ranges::all_of(command, [](char c) { return c >= 0x20 && c <= 0x7E; }), "a frame can carry it");
    const auto piece = kv::ReadCompactPiece(command);
    const bool isPlaced = piece && order.Take(command).empty();
    isErased = isErased || (isPlaced && command == "DE");
    Require(!isPlaced || isErased || piece->bytes.empty(), "nothing is written before the old project is erased");
    Require(!piece || piece->bytes.empty() || piece->end == piece->address + piece->bytes.size(),
            "the end is behind it");
  }
}

// The way into the file of lines that a person can read.
std::string Scrambled(const std::string& text) {
  std::string file;
  std::size_t number = 0;
  for (std::size_t i = 0; i < text.size(); ++number) {
    const std::size_t end = std::min(text.find('\n', i), text.size());
    std::string line = text.substr(i, end - i);
    std::ranges::reverse(line);
    for (char& c : line) c = static_cast<char>(static_cast<unsigned char>(c) + number % 3);
    Require(kv::DecodeLine(line, number) == text.substr(i, end - i), "a line comes back as it was");
    file += line + "\n";
    i = end + 1;
  }
  return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Check(bytes);
  Check(Scrambled(bytes));
  return 0;
}
