#include "journal/PassedChanges.h"

#include <string>
#include <system_error>
#include <utility>

#include "base/AtomicFile.h"
#include "base/Numbers.h"
#include "base/Texts.h"

namespace kv {
namespace {

constexpr std::size_t kLongest = 32;  // bytes of the file: a number and a line end

}  // namespace

PassedChanges::PassedChanges(std::filesystem::path headFile) : mFile(std::move(headFile)) {
  if (!mFile.empty()) mFile.replace_extension(".unrecorded");
}

std::uint64_t PassedChanges::Kept() const {
  const auto text = mFile.empty() ? std::unexpected(FileError{}) : ReadWholeFile(mFile, kLongest);
  if (!text) return 0;
  std::string_view rest = *text;
  const auto number = ParseInteger(TakeField(rest, '\n'));
  return number && *number > 0 ? static_cast<std::uint64_t>(*number) : 0;
}

std::uint64_t PassedChanges::Count() const {
  return Kept() + mNotKept;
}

void PassedChanges::Add() {
  std::error_code ignored;
  std::filesystem::create_directories(mFile.parent_path(), ignored);
  const bool isKept = !mFile.empty() && SaveAtomically(mFile, std::to_string(Kept() + 1) + "\n");
  if (!isKept) ++mNotKept;
}

void PassedChanges::Clear() {
  mNotKept = 0;
  std::error_code ignored;
  if (!mFile.empty()) std::filesystem::remove(mFile, ignored);
}

}  // namespace kv
