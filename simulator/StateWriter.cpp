#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "base/Hex.h"
#include "base/LineReader.h"
#include "simulator/HexText.h"
#include "simulator/StateFile.h"

namespace sim {
namespace {

constexpr std::size_t kCellsALine = 16;
constexpr std::size_t kBytesALine = 64;
constexpr std::uint8_t kErased = 255;

std::string CellLines(const AreaRow& row, std::span<const std::uint32_t> cells) {
  std::string lines;
  for (std::size_t first = 0; first < cells.size(); first += kCellsALine) {
    const auto piece = cells.subspan(first, std::min(kCellsALine, cells.size() - first));
    if (std::ranges::all_of(piece, [](std::uint32_t cell) { return cell == 0; })) continue;
    lines += "cells " + std::string(row.name) + " " + kv::ToHex(static_cast<std::uint32_t>(first), 4) + " ";
    for (const std::uint32_t cell : piece) lines += kv::ToHex(cell, 8);
    lines += "\n";
  }
  return lines;
}

std::string MemoryLines(const Segment& segment, const kv::Bytes& content) {
  std::string lines;
  for (std::size_t first = 0; first < content.size(); first += kBytesALine) {
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(first);
    const std::string piece(begin, begin + static_cast<std::ptrdiff_t>(std::min(kBytesALine, content.size() - first)));
    if (std::ranges::all_of(piece, [](char byte) { return static_cast<std::uint8_t>(byte) == kErased; })) continue;
    lines += "memory " + std::string(segment.code) + " " + kv::ToHex(static_cast<std::uint32_t>(first), 8) + " ";
    lines += HexOfBytes(piece) + "\n";
  }
  return lines;
}

std::string Head(const Machine& machine) {
  const Identity& identity = machine.identity;
  return "KVSIM-STATE 1\nmodel " + std::string(machine.model.name) + "\nserial " + kv::ToHex(identity.serial, 8) +
         "\nos " + identity.os.number + "\nbuild " + std::to_string(identity.os.build) + "\nos-loaded " +
         (identity.hasOs ? "1" : "0") + "\nstate " + machine.StateLetter() + "\nproject " +
         HexOfBytes(identity.projectName) + "\n";
}

}  // namespace

std::string WriteState(const Machine& machine) {
  std::string text = Head(machine);
  for (const AreaRow& row : AllAreas()) text += CellLines(row, machine.operands.Cells(row.area));
  const auto segments = machine.memory.Segments();
  for (std::size_t i = 0; i < segments.size(); ++i) text += MemoryLines(segments[i], machine.memory.Content(i));
  return kv::WithCheckLine(std::move(text));
}

}  // namespace sim
