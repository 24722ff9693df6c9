#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

#include "simulator/ModelTable.h"
#include "simulator/OsVersion.h"

namespace sim {

// Writes download files as docs/file-formats.md has them, for the simulated controllers to take. The contents are made
// up: they depend on the seed alone, and compress to about half. On a failure the text says what does not fit.

using FileOrFault = std::expected<std::string, std::string>;

struct SampleProject {
  std::string name;  // Windows-1252
  OsVersion os;      // that it needs; of the Aurex family only
  std::size_t size = 0;
  std::uint32_t seed = 1;
};

// A .dai file for a model of the Aurex family, a .d50 file for one of the compact family.
[[nodiscard]] FileOrFault MakeProject(const Model& model, const SampleProject& project);
[[nodiscard]] std::string_view ProjectExtension(const Model& model);

struct SampleOs {
  OsVersion os;
  std::string remark;  // Windows-1252
  std::size_t size = 0;
  std::uint32_t seed = 1;
};

// A .kos file for a model of the Aurex family, an .OSI file for one of the compact family, and the name that it needs.
[[nodiscard]] FileOrFault MakeOs(const Model& model, const SampleOs& sample);
[[nodiscard]] std::string OsFileName(const Model& model, const OsVersion& os);

// A .kft file, for a model of the Aurex family.
[[nodiscard]] FileOrFault MakeFonts(const Model& model, const SampleOs& sample);
[[nodiscard]] std::string FontsFileName(const OsVersion& fonts);

}  // namespace sim
