#pragma once

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct chmFile;

namespace kv {

// A compiled help file (.chm), through the library that this folder wraps. Its bytes are not trusted: sizes are
// bounded, and what does not fit is not there.
class ChmFile {
 public:
  // An object of more bytes is not read, and no more objects than these are listed.
  static constexpr std::size_t kLargestObject = 16U << 20U;
  static constexpr std::size_t kMostObjects = 4096;

  // The error is a sentence for the user: which file, and what is wrong with it.
  [[nodiscard]] static std::expected<ChmFile, std::string> Open(const std::filesystem::path& file);

  // The names of all files in it, without the "/" at their front: "cloner.html", "#IVB".
  [[nodiscard]] std::vector<std::string> Names() const;

  // The content of one of them; nothing when it is not there, too large or damaged.
  [[nodiscard]] std::optional<std::string> Read(std::string_view name) const;

 private:
  struct Closer {
    void operator()(chmFile* file) const;
  };
  explicit ChmFile(chmFile* file) : mFile(file) {}

  std::unique_ptr<chmFile, Closer> mFile;
};

}  // namespace kv
