#pragma once

#include <filesystem>

#include "link/PanelLink.h"

namespace kv::cache {

// What an import is to make, and where.
struct CacheImportOrder {
  std::filesystem::path file{};         // that is made or renewed
  std::filesystem::path workingFile{};  // "tmpfile.ktc" of the session; empty: none is kept
  std::filesystem::path emptyCache{};   // that the working file begins as: "TP_Temp_1" of the program
  bool fonts = true;
  bool images = true;
  bool readsAll = false;  // also what the file holds already

  [[nodiscard]] bool Wants(PanelResourceKind kind) const { return kind == PanelResourceKind::Font ? fonts : images; }
};

}  // namespace kv::cache
