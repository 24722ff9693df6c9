#pragma once

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "help/ChmDirectory.h"

struct chmFile;

namespace kv {

// A compiled help file (.chm). Its directory is read here, and checked; the library that this folder wraps, which takes
// it on trust, only unpacks what lies at a place of it.
class ChmFile {
 public:
  // An object of more bytes is not read.
  static constexpr std::size_t kLargestObject = 16U << 20U;

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
  ChmFile(chmFile* file, ChmDirectory directory) : mFile(file), mDirectory(std::move(directory)) {}

  std::unique_ptr<chmFile, Closer> mFile;
  ChmDirectory mDirectory;
};

}  // namespace kv
