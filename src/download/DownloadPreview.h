#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Time.h"
#include "download/FoundController.h"
#include "link/Channel.h"

namespace kv {

// One side of a download: the controller as it answers, or what a file makes of it. Texts are UTF-8, as people read
// them; nothing is what is not known, or what the file leaves as it is.
struct DownloadSide {
  std::optional<std::string> model;
  std::optional<std::string> os;       // "4.60 (B19)"
  std::optional<std::string> fonts;    // the same
  std::optional<std::string> project;  // its name; empty: there is none

  bool operator==(const DownloadSide&) const = default;
};

[[nodiscard]] DownloadSide SideOf(const FoundController& controller);

// One look at both sides, before anything is changed.
struct DownloadPreview {
  std::string controller;  // whose it is: ControllerText (clone/RestoreCheck.h)
  DownloadSide now;
  DownloadSide then;                       // as the file says
  std::uint64_t bytes = 0;                 // of the file's content, as they are sent
  Duration about{};                        // on this link: TimeOnLink
  std::string clones = {};                 // how long those take that come on top: CloneTimeText; empty: none
  std::vector<std::string> losses = {};    // what will be lost, a sentence each
  std::vector<std::string> warnings = {};  // what else is worth knowing, a sentence each
};

// How often a clone before a download takes the controller's memory over the link: read and compared, or read, written
// back and compared.
inline constexpr int kPassesOfBackup = 2;
inline constexpr int kPassesOfSave = 3;
// "its memory goes over it 3 times for the clones, each time about 4 min for 100 KiB of it": how much it has, the
// controller tells only with its password. Empty without passes.
[[nodiscard]] std::string CloneTimeText(const Channel& link, int passes);

// Both sides in rows of a table. Rows of which neither side tells anything are left out; "-" is a text that is not
// known, and "(none)" an empty one.
struct SideRow {
  std::string label;  // "O/S"
  std::string first;
  std::string second;
};
[[nodiscard]] std::vector<SideRow> RowsOf(const DownloadSide& first, const DownloadSide& second);

// "12000 bytes, about 3 s on this link, and the time that the controller takes to erase and to program"
[[nodiscard]] std::string AmountText(const DownloadPreview& preview);

// The controller before and after a download.
struct DownloadReview {
  DownloadSide before;
  DownloadSide after;
};

// A controller keeps no more of a project's name, and blanks at its end are not seen.
[[nodiscard]] std::string KeptName(const std::string& name);

// In what `after` is not what the file says, a sentence each.
[[nodiscard]] std::vector<std::string> DifferencesFrom(const DownloadSide& file, const DownloadSide& after);

}  // namespace kv
