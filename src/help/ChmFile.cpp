#include "help/ChmFile.h"

#include <chm_lib.h>

#include <array>
#include <system_error>

#include "base/LittleEndian.h"
#include "base/PathText.h"

namespace kv {
namespace {

// The library trusts the lengths in a file's head; these are what every help file has, and what keeps it within bounds.
constexpr std::size_t kHeadBytes = 0x60;
constexpr std::uintmax_t kLargestFile = 256U << 20U;

std::optional<std::string> WhyNoHelpFile(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  if (error) return "it cannot be read (" + error.message() + ")";
  if (size < kHeadBytes || size > kLargestFile) return "it is no help file: its size is wrong";
  return std::nullopt;
}

int Collect(chmFile*, chmUnitInfo* unit, void* context) {
  auto& names = *static_cast<std::vector<std::string>*>(context);
  const std::string_view path(unit->path);
  if (path.starts_with('/') && !path.ends_with('/')) names.emplace_back(path.substr(1));
  return names.size() < ChmFile::kMostObjects ? CHM_ENUMERATOR_CONTINUE : CHM_ENUMERATOR_SUCCESS;
}

}  // namespace

void ChmFile::Closer::operator()(chmFile* file) const {
  chm_close(file);
}

std::expected<ChmFile, std::string> ChmFile::Open(const std::filesystem::path& file) {
  const std::string name = Utf8FromPath(file);
  if (const auto why = WhyNoHelpFile(file))
    return std::unexpected("The help file " + name + " cannot be used: " + *why);
  chmFile* opened = chm_open(file.string().c_str());
  if (!opened) return std::unexpected("The help file " + name + " cannot be used: it is damaged, or no help file");
  return ChmFile(opened);
}

std::vector<std::string> ChmFile::Names() const {
  std::vector<std::string> names;
  chm_enumerate(mFile.get(), CHM_ENUMERATE_ALL, Collect, &names);
  return names;
}

std::optional<std::string> ChmFile::Read(std::string_view name) const {
  const std::string path = "/" + std::string(name);
  chmUnitInfo unit{};
  if (path.ends_with('/') || path.size() > CHM_MAX_PATHLEN) return std::nullopt;
  if (chm_resolve_object(mFile.get(), path.c_str(), &unit) != CHM_RESOLVE_SUCCESS) return std::nullopt;
  if (unit.length > kLargestObject) return std::nullopt;
  std::string content(static_cast<std::size_t>(unit.length), '\0');
  const auto length = static_cast<LONGINT64>(content.size());
  auto* bytes = reinterpret_cast<unsigned char*>(content.data());
  if (length > 0 && chm_retrieve_object(mFile.get(), &unit, bytes, 0, length) != length) return std::nullopt;
  return content;
}

}  // namespace kv
