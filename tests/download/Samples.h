#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "simulator/ModelTable.h"
#include "simulator/files/SampleFiles.h"

namespace kv::test {

inline const sim::Model& ModelCalled(const std::string& name) {
  return *sim::FindModel(name);
}

inline std::string Good(const sim::FileOrFault& made) {
  EXPECT_TRUE(made) << made.error();
  return made.value_or("");
}

// Puts a file there, and makes the folders that it needs.
inline std::filesystem::path PutFile(const std::filesystem::path& file, std::string_view content) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
  return file;
}

inline std::string SampleProject(const std::string& model, std::size_t size = 5000) {
  return Good(sim::MakeProject(ModelCalled(model), {.name = "Hall 7", .os = {"4.60", 19}, .size = size}));
}
inline std::string SampleOs(const std::string& model, const sim::OsVersion& os, std::size_t size = 200,
                            const std::string& remark = "beta") {
  return Good(sim::MakeOs(ModelCalled(model), {.os = os, .remark = remark, .size = size}));
}
inline std::string SampleFonts(const std::string& model, const sim::OsVersion& os, std::size_t size = 200) {
  return Good(sim::MakeFonts(ModelCalled(model), {.os = os, .remark = {}, .size = size}));
}

// Projects, operating systems and system fonts of several models, and the O/S folders of a program folder.
inline void PutDownloadFiles(const std::filesystem::path& home) {
  const std::string os = SampleOs("K220-22-R1", {"4.75", 3});
  const std::string fonts = SampleFonts("K220-22-R1", {"1.30", 0});
  const std::pair<const char*, std::string> files[] = {
      {"hall.dai", SampleProject("K220-22-R1")},
      {"hall.d50", SampleProject("Q50", 200)},
      {"cut.dai", SampleProject("K220-22-R1").substr(0, 2000)},
      {"q50.dai", SampleProject("AurexQ50")},
      {"no.dai", std::string(200, 'x')},
      {"Os Aurex/K220/AurexK220v47503.kos", os},
      {"Os Aurex/K220/AurexK220v37310.kos", SampleOs("K220-22-R1", {"3.73", 10})},
      {"Os Aurex/K220/AurexFontv1300.kft", fonts},
      {"Os Aurex/K330/AurexK330v47503.kos", SampleOs("K330", {"4.75", 3})},
      {"Os Aurex/K222/AurexK220v47503.kos", os},
      {"OS/OS51/Q51v4712.OSI", SampleOs("Q51", {"4.71", 2})},
      {"AurexFontv1300.kft", fonts},
      {"AurexK220v47503.kos", os},
      {"cut/AurexK220v47503.kos", os.substr(0, 300)},
  };
  for (const auto& [name, content] : files) PutFile(home / name, content);
}

}  // namespace kv::test
