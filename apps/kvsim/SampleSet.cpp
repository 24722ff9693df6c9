#include "apps/kvsim/SampleSet.h"

#include <system_error>
#include <utility>

#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "simulator/ModelTable.h"
#include "simulator/files/SampleFiles.h"

namespace kvsim {

namespace fs = std::filesystem;

namespace {

using Done = std::expected<void, std::string>;

// The second O/S and the second fonts belong together: an O/S from 3.74 on needs fonts from 1.30 on.
struct AurexSet {
  const char* model;
  const char* folder;
};
constexpr AurexSet kAurexSets[] = {{"K220-22-R1", "K220"}, {"K220-32", "K222"}, {"K330", "K330"}};
const sim::OsVersion kAurexVersions[] = {{"3.73", 10}, {"4.60", 19}, {"4.75", 3}};
const sim::OsVersion kFonts[] = {{"1.29", 0}, {"1.30", 0}};

struct CompactSet {
  const char* model;
  const char* folder;
};
constexpr CompactSet kCompactSets[] = {
    {"Q50", "OS50"}, {"Q51", "OS51"}, {"Q58", "OS51"}, {"PX1", "OSPX"}, {"PR1", "OSPR"}};
const sim::OsVersion kCompactVersions[] = {{"4.60", 2}, {"4.71", 5}};

constexpr std::size_t kAurexOsSize = 96'000;
constexpr std::size_t kFontsSize = 12'000;
constexpr std::size_t kCompactOsSize = 24'000;
constexpr std::size_t kProjectSize = 12'000;

Done WriteMade(const fs::path& file, const sim::FileOrFault& made) {
  return made ? WriteSample(file, *made) : std::unexpected(made.error());
}

Done WriteAurexSet(const fs::path& folder, const sim::Model& model) {
  for (const sim::OsVersion& os : kAurexVersions) {
    const auto made = sim::MakeOs(model, {.os = os, .remark = "sample", .size = kAurexOsSize});
    if (auto done = WriteMade(folder / sim::OsFileName(model, os), made); !done) return done;
  }
  for (const sim::OsVersion& fonts : kFonts) {
    const auto made = sim::MakeFonts(model, {.os = fonts, .remark = {}, .size = kFontsSize});
    if (auto done = WriteMade(folder / sim::FontsFileName(fonts), made); !done) return done;
  }
  return {};
}

Done WriteCompactSet(const fs::path& folder, const sim::Model& model) {
  for (const sim::OsVersion& os : kCompactVersions) {
    const auto made = sim::MakeOs(model, {.os = os, .remark = "sample", .size = kCompactOsSize});
    if (auto done = WriteMade(folder / sim::OsFileName(model, os), made); !done) return done;
  }
  return {};
}

Done WriteProject(const fs::path& folder, const char* modelName, const char* name) {
  const sim::Model& model = *sim::FindModel(modelName);
  const sim::OsVersion needed{"4.60", 19};
  const auto made = sim::MakeProject(model, {.name = name, .os = needed, .size = kProjectSize});
  return WriteMade(folder / (std::string(name) + std::string(sim::ProjectExtension(model))), made);
}

}  // namespace

Done WriteSample(const fs::path& file, const std::string& content) {
  std::error_code error;
  fs::create_directories(file.parent_path(), error);  // when that fails, the file says why
  const auto saved = kv::SaveAtomically(file, content);
  if (!saved) return std::unexpected(saved.error().Text());
  return {};
}

Done WriteSampleSet(const fs::path& folder) {
  for (const AurexSet& set : kAurexSets) {
    const fs::path place = folder / "Os Aurex" / set.folder;
    if (auto done = WriteAurexSet(place, *sim::FindModel(set.model)); !done) return done;
  }
  for (const CompactSet& set : kCompactSets) {
    const fs::path place = folder / "OS" / set.folder;
    if (auto done = WriteCompactSet(place, *sim::FindModel(set.model)); !done) return done;
  }
  const fs::path projects = folder / "Samples";
  if (auto done = WriteProject(projects, "K220-22-R1", "Conveyor"); !done) return done;
  return WriteProject(projects, "Q50", "Pump station");
}

}  // namespace kvsim
