#pragma once

#include <expected>
#include <memory>
#include <string>
#include <string_view>

#include "dataview/sheets/SheetFile.h"

namespace kv {

// The parts of a zip archive that is in memory and outlives it.
class ZipParts {
 public:
  [[nodiscard]] static bool IsZip(std::string_view content);
  [[nodiscard]] static std::expected<ZipParts, SheetError> Open(std::string_view content);

  ZipParts(ZipParts&&) noexcept;
  ZipParts& operator=(ZipParts&&) noexcept;
  ~ZipParts();

  [[nodiscard]] bool Has(const std::string& name) const;
  // Unpacked, checked against its checksum; refused as soon as it grows past 24 MB, whatever size it declares.
  [[nodiscard]] std::expected<std::string, SheetError> Read(const std::string& name) const;

 private:
  struct Archive;
  explicit ZipParts(std::unique_ptr<Archive> archive);

  std::unique_ptr<Archive> mArchive;
};

}  // namespace kv
