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

}  // namespace kv::test
