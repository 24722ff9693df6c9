#include "help/ChmFile.h"

#include <chm_lib.h>

#include <utility>

#include "base/AtomicFile.h"
#include "base/FilePlatform.h"
#include "base/PathText.h"

namespace kv {
namespace {

constexpr std::size_t kLargestFile = 256U << 20U;

}  // namespace

void ChmFile::Closer::operator()(chmFile* file) const {
  chm_close(file);
}

std::expected<ChmFile, std::string> ChmFile::Open(const std::filesystem::path& file) {
  const std::string name = "The help file " + Utf8FromPath(file) + " cannot be used: ";
  const auto bytes = ReadWholeFile(file, kLargestFile);
  if (!bytes) return std::unexpected(name + bytes.error().what);
  auto directory = ReadChmDirectory(*bytes);
  if (!directory) return std::unexpected(name + directory.error());
  chmFile* opened = chm_open(NarrowName(file).c_str());
  if (!opened) return std::unexpected(name + "it is damaged");
  return ChmFile(opened, std::move(*directory));
}

std::vector<std::string> ChmFile::Names() const {
  std::vector<std::string> names;
  for (const auto& [path, object] : mDirectory) {
    if (path.starts_with('/') && !path.ends_with('/')) names.push_back(path.substr(1));
  }
  return names;
}

std::optional<std::string> ChmFile::Read(std::string_view name) const {
  const auto found = mDirectory.find("/" + std::string(name));
  if (found == mDirectory.end() || name.empty() || name.ends_with('/')) return std::nullopt;
  const ChmObject& object = found->second;
  if (object.length > kLargestObject) return std::nullopt;
  chmUnitInfo unit{};
  unit.start = object.start;
  unit.length = object.length;
  unit.space = static_cast<int>(object.section);
  std::string content(object.length, '\0');
  const auto length = static_cast<LONGINT64>(content.size());
  auto* bytes = reinterpret_cast<unsigned char*>(content.data());
  if (length > 0 && chm_retrieve_object(mFile.get(), &unit, bytes, 0, length) != length) return std::nullopt;
  return content;
}

}  // namespace kv
