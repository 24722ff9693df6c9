#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace kv {

// A fresh folder that goes, with all that is in it, at the end of the test.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      mPath = std::filesystem::temp_directory_path() / ("kv-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(mPath));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return mPath; }

  // Puts a file there and returns its path.
  std::filesystem::path Put(std::string_view name, std::string_view content) const {
    std::ofstream(mPath / name, std::ios::binary) << content;
    return mPath / name;
  }
  // A link would need an administrator on Windows.
  void PutCopy(std::string_view name, const std::filesystem::path& folder) const {
    std::filesystem::create_directories(mPath / name);
    std::filesystem::copy(folder, mPath / name, std::filesystem::copy_options::recursive);
  }
  [[nodiscard]] static std::string Content(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  [[nodiscard]] std::ptrdiff_t EntryCount() const {
    return std::distance(std::filesystem::directory_iterator(mPath), std::filesystem::directory_iterator());
  }

 private:
  std::filesystem::path mPath;
};

}  // namespace kv
