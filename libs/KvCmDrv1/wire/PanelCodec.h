#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "link/PanelLink.h"

namespace kv {

// The data of the panel's requests and replies, the same in text commands and block messages. Readers give nothing
// where the data do not keep to their lengths and ranges.

inline constexpr std::size_t kPanelChangesHead = 16;  // bytes before the records
inline constexpr std::size_t kPanelChangesRequest = 10;
inline constexpr std::size_t kPanelEventHead = 26;  // bytes before the name
inline constexpr std::size_t kLongestDescription = 16 + 40 * 15;
inline constexpr std::uint16_t kMostTextPiece = 512;  // bytes of changes in a reply of the compact family
inline constexpr std::uint16_t kMostBlockPiece = 8192;

[[nodiscard]] std::string EncodeChangesRequest(const PanelChangesRequest& request);
[[nodiscard]] std::string EncodeEvent(const PanelEvent& event);

[[nodiscard]] std::optional<PanelDescription> ReadPanelDescription(std::string_view data);
[[nodiscard]] std::optional<PanelChanges> ReadPanelChanges(std::string_view data);

// The entries of one reply of operation 258, and how many the whole directory has.
struct PanelDirectoryPart {
  std::uint16_t countOfAll = 0;
  std::vector<PanelResource> entries;
  std::string_view bytes;  // of the entries
};
[[nodiscard]] std::optional<PanelDirectoryPart> ReadPanelDirectory(std::string_view data);

// The data in the reply text of a panel's command; nothing when it is not the reply to one with these letters and this
// tag.
struct PanelTextReply {
  std::string data;
  bool isCut = false;  // SY has told the reply, which has lost all behind the head of its changes
};
[[nodiscard]] std::optional<PanelTextReply> ReadPanelText(std::string_view reply, std::string_view letters,
                                                          std::uint16_t tag);

// What the data of an event say that it does, for trace and journal: "press key 3 of the panel".
[[nodiscard]] std::string PanelEventMeaning(std::string_view data);
// Whether the event may change something in the plant, or who operates it. Holding on, letting go and giving the lease
// back do not: letting go must never wait for a record.
[[nodiscard]] bool PanelEventChangesSomething(std::string_view data);

}  // namespace kv
