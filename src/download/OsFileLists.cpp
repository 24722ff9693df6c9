#include "download/OsFileLists.h"

#include <algorithm>
#include <functional>
#include <system_error>
#include <tuple>
#include <vector>

#include "base/PathText.h"
#include "base/Texts.h"
#include "download/CompactOsFile.h"
#include "download/OsFileName.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostEntries = 100'000;  // of a folder; a bound for one that is no folder of O/S files

// The plain files of a folder; none when there is no such folder.
std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (std::size_t i = 0; !error && entry != fs::directory_iterator() && i < kMostEntries; ++i) {
    std::error_code ignored;  // a file that has gone meanwhile is no file
    if (entry->is_regular_file(ignored)) files.push_back(entry->path());
    entry.increment(error);
  }
  return files;
}

bool HasExtension(const fs::path& file, std::string_view upper) {
  return UpperCased(Utf8FromPath(file.extension())) == upper;
}

std::string BuildText(int build, std::size_t digits) {
  const std::string text = std::to_string(build);
  return std::string(digits - std::min(digits, text.size()), '0') + text;
}

// By number, those without one behind; then by name.
void Sort(std::vector<ListedFile>& files) {
  std::ranges::sort(files, {}, [](const ListedFile& file) {
    return std::tuple(!file.number, file.number.value_or(OsNumber()), file.path.filename());
  });
}

std::optional<std::size_t> Newest(const std::vector<ListedFile>& files,
                                  const std::function<bool(const ListedFile&)>& fits) {
  for (std::size_t i = files.size(); i-- > 0;) {
    if (files[i].number && fits(files[i])) return i;
  }
  return std::nullopt;
}

// What one of the two Aurex lists is made of.
struct AurexListKind {
  std::string_view extension;
  std::string_view prefix;
  std::size_t buildDigits;
  std::optional<OsNumber> (*numberIn)(std::string_view name);
};

constexpr AurexListKind kOsKind{".KOS", "OS - ", 2, AurexOsNumberIn};
constexpr AurexListKind kFontsKind{".KFT", "FONTS - ", 1, FontsNumberIn};

FileList ListAurex(const fs::path& folder, const AurexListKind& kind) {
  FileList list{.folder = folder, .files = {}, .preselected = {}};
  for (const fs::path& file : FilesIn(folder)) {
    if (!HasExtension(file, kind.extension)) continue;
    const std::string name = GetFileName(file);
    const auto number = kind.numberIn(name);
    const std::string shown =
        number ? "V" + VersionText(*number) + " (B" + BuildText(number->build, kind.buildDigits) + ")" : name;
    list.files.push_back({file, std::string(kind.prefix) + shown, number});
  }
  Sort(list.files);
  return list;
}

std::string_view FolderOf(CompactKind kind) {
  switch (kind) {
    case CompactKind::Q50:
      return "OS50";
    case CompactKind::Q51OrQ58:
      return "OS51";
    case CompactKind::PX1:
      return "OSPX";
    case CompactKind::PR1:
      return "OSPR";
  }
  return "";
}

// A boot loader of a Q51 or Q58 may not know which of the two it stands in.
bool IsOffered(const CompactOsName& name, const CompactController& controller) {
  const bool isEither = controller.kind == CompactKind::Q51OrQ58 && controller.isInBoot;
  return isEither ? name.model == "Q51" || name.model == "Q58" : name.model == controller.OsModel();
}

std::string CompactText(const CompactOsName& name, const fs::path& file) {
  const auto head = ReadCompactOsHead(file);
  const std::string remark = head ? head->remark : "";
  return "O/S " + name.model + " V" + VersionText(name.number) + " (B0" + std::to_string(name.number.build) + ")" +
         (remark.empty() ? "" : " (" + remark + ")");
}

}  // namespace

AurexOsLists ListAurexOsFiles(const ProgramPaths& paths, std::string_view model) {
  const std::string_view type = ExpectedAurexOsType(model);
  const fs::path folder = paths.AurexOs() / type.substr(type.size() - 4);
  AurexOsLists lists{ListAurex(folder, kOsKind), ListAurex(folder, kFontsKind)};
  const auto isOfType = [type](const ListedFile& file) { return AurexOsTypeIn(GetFileName(file.path)) == type; };
  lists.os.preselected = Newest(lists.os.files, isOfType);
  lists.fonts.preselected = Newest(lists.fonts.files, [](const ListedFile&) { return true; });
  return lists;
}

FileList ListCompactOsFiles(const ProgramPaths& paths, const CompactController& controller) {
  FileList list{.folder = paths.CompactOs() / FolderOf(controller.kind), .files = {}, .preselected = {}};
  for (const fs::path& file : FilesIn(list.folder)) {
    const auto name = CompactOsNameIn(GetFileName(file));
    if (name && IsOffered(*name, controller)) {
      list.files.push_back({file, CompactText(*name, file), name->number, CompactModelText(name->model)});
    }
  }
  Sort(list.files);
  list.preselected = Newest(list.files, [&controller](const ListedFile& file) {
    const auto name = CompactOsNameIn(GetFileName(file.path));
    return name && name->model == controller.OsModel();
  });
  return list;
}

}  // namespace kv
