#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/sheets/SheetFile.h"

namespace kv {

// Reads the streams of an OLE2 compound file that is in memory and outlives the reader. Nothing that the file says
// about itself is believed: each chain of sectors is followed for as many steps as the file has sectors.
class CompoundReader {
 public:
  [[nodiscard]] static bool IsCompound(std::string_view content);
  [[nodiscard]] static std::expected<CompoundReader, SheetError> Open(std::string_view content);

  [[nodiscard]] bool Has(std::string_view streamName) const;
  [[nodiscard]] std::expected<std::string, SheetError> Stream(std::string_view streamName) const;

 private:
  struct Entry {
    std::string name;
    std::uint32_t firstSector = 0;
    std::size_t size = 0;
  };

  explicit CompoundReader(std::string_view content);
  [[nodiscard]] std::expected<void, SheetError> ReadTable();
  [[nodiscard]] std::expected<void, SheetError> ReadDirectory();
  [[nodiscard]] std::expected<std::string, SheetError> Chain(std::uint32_t first, const std::string& what) const;
  [[nodiscard]] std::expected<std::string, SheetError> SmallStream(const Entry& entry) const;
  [[nodiscard]] std::string_view Sector(std::uint32_t number) const;
  [[nodiscard]] const Entry* Find(std::string_view streamName) const;

  std::string_view mContent;
  std::size_t mSectorSize = 0;
  std::size_t mSectors = 0;
  std::vector<std::uint32_t> mNext;  // by sector: where its chain goes on
  std::vector<Entry> mStreams;
  std::uint32_t mSmallSectors = 0;  // the first sector of what small streams stand in
};

}  // namespace kv
