#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "download/OsFileLists.h"

namespace kv {

// The files that were chosen for an Aurex controller; empty paths when none were, or a list had none.
struct AurexOsChoice {
  std::filesystem::path os;
  std::filesystem::path fonts;
};

// What the user answers to the warning that an O/S may erase the project. The numbers are the window's result codes.
enum class BiosAnswer : std::uint8_t { Continue = 1, Abort = 3 };

// What the download engines ask of their surroundings while they work: the download window, a terminal or a test.
class DownloadWindow {
 public:
  virtual ~DownloadWindow() = default;

  // The status line, UTF-8; an empty text clears it.
  virtual void SetStatus(std::string_view text) = 0;

  // Something worth knowing while the work goes on, UTF-8.
  virtual void Note(std::string_view /*text*/) {}

  // The bar: its maximum is `maximum`, at least 1, its value 0.
  virtual void ResetProgress(std::int64_t maximum) = 0;
  // One more; not past the maximum.
  virtual void StepProgress() = 0;

  // Of an O/S: chunk or block `current` of `count` of phase `phase`, all counted from 1.
  virtual void ProgressInfo(int phase, std::int64_t current, std::int64_t count) = 0;

  // Bytes of the file's content that have gone, and all of them; told after each message that carries some. Amount,
  // rate and remaining time are made of it (DownloadProgress.h).
  virtual void AmountSent(std::uint64_t /*done*/, std::uint64_t /*total*/) {}

  // The same of what is read back and compared.
  virtual void AmountCompared(std::uint64_t done, std::uint64_t total) { AmountSent(done, total); }
  // The controller is waited for, and the bar only goes round: what for, UTF-8. Told with each question to it, and once
  // more when that `isOver`.
  virtual void Waiting(std::string_view /*text*/, bool /*isOver*/) {}

  // All has been sent, and the controller programs it.
  virtual void Programmed(int /*percent*/) {}

  // Lets the user choose from both lists.
  [[nodiscard]] virtual AurexOsChoice ChooseAurexOs(const AurexOsLists& lists) = 0;
  // The place in the list; nothing when the user cancels.
  [[nodiscard]] virtual std::optional<std::size_t> ChooseCompactOs(const FileList& list) = 0;

  [[nodiscard]] virtual BiosAnswer WarnOfIncompatibleBios() = 0;
};

}  // namespace kv
