#pragma once

#include <cstdint>
#include <filesystem>

namespace kv {

// How many operations changed controllers without a record, until the journal of their session tells it. Kept beside
// the journal's head, in the user's folder: the program that let them pass may have ended long before.
class PassedChanges {
 public:
  // `headFile` as HeadFile gives it; empty: the number is known for as long as this object is.
  explicit PassedChanges(std::filesystem::path headFile);

  void Add();
  [[nodiscard]] std::uint64_t Count() const;
  // They have been told.
  void Clear();

 private:
  [[nodiscard]] std::uint64_t Kept() const;

  std::filesystem::path mFile;
  std::uint64_t mNotKept = 0;  // where the file cannot be written
};

}  // namespace kv
