#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "base/Time.h"
#include "link/LinkError.h"

namespace kv {

// Most that a screen can have.
inline constexpr std::uint16_t kMostPanelSlots = 1024;
inline constexpr std::size_t kMostPanelBody = 80;       // bytes of a record
inline constexpr std::uint16_t kLeastPanelPiece = 100;  // bytes of changes that one reply may be bounded to
inline constexpr std::size_t kLongestOperator = 20;     // characters of Windows-1252

enum class PanelKind : std::uint8_t { Text = 1, Colour = 2 };

// A key beside a text display.
struct PanelKey {
  std::uint8_t id = 0;                 // below 40
  std::optional<std::uint8_t> lamp{};  // its number
  std::string name{};                  // "F1", Windows-1252

  bool operator==(const PanelKey&) const = default;
};

// What a controller's panel is. It never changes while the controller runs.
struct PanelDescription {
  PanelKind kind = PanelKind::Text;
  std::uint16_t width = 0;   // columns (at most 40), or dots (at most 1280)
  std::uint16_t height = 0;  // rows (at most 16), or dots (at most 1024)
  std::uint16_t pages = 0;
  std::uint32_t fontsCheck = 0;  // CRC-32 of the directory of fonts; 0 on a text display
  std::uint32_t imagesCheck = 0;
  std::vector<PanelKey> keys{};  // of a text display

  bool operator==(const PanelDescription&) const = default;
};

// Names a state of a screen: the epoch is another one after each start of the controller, the number counts changes.
// Both 0: nothing of the screen is known.
struct PanelRevision {
  std::uint16_t epoch = 0;
  std::uint32_t number = 0;

  bool operator==(const PanelRevision&) const = default;
};

// The newest state of one slot of the screen. What the body of a kind holds is for who draws it.
struct PanelRecord {
  std::uint16_t slot = 0;  // below kMostPanelSlots
  std::uint8_t kind = 0;
  std::string body{};  // at most kMostPanelBody bytes
};

struct PanelChangesRequest {
  PanelRevision have{};     // of what the asker has
  std::uint16_t most = 0;   // bytes of changes, at least kLeastPanelPiece; cut to what the controller's family may send
  std::uint16_t lease = 0;  // the operator's, which this renews; 0: only looks on
};

enum class PanelAction : std::uint8_t { Operate = 1, Leave = 2, Down = 3, Hold = 4, Up = 5, Tap = 6 };

// What became of an event. Anything but Done has changed nothing.
enum class PanelVerdict : std::uint8_t {
  Done = 0,
  NothingThere = 1,
  NotWhatWasSeen = 2,
  Late = 3,
  NoLease = 4,
  OperatedAtPanel = 5,
  NothingHeld = 6,
  NotNow = 7,
};

// An input to the panel.
struct PanelEvent {
  PanelAction action = PanelAction::Tap;
  std::optional<std::uint8_t> key{};  // its id; nothing: at the point
  std::uint16_t x = 0;                // dots
  std::uint16_t y = 0;
  bool takesOver = false;      // Operate only: also from who has the lease
  std::string operatorName{};  // Operate only, Windows-1252, at most kLongestOperator
  PanelRevision seen{};        // of the screen that the user saw
  std::uint16_t page = 0;      // that he saw
  std::uint32_t stamp = 0;     // of the last changes that have come
  std::uint16_t lease = 0;     // 0 for Operate
  std::uint32_t since = 0;     // the reply tells what is newer than this number of the same epoch
  std::uint16_t most = 0;      // as in a request for changes
  // Connection that the screen came over: over another one nothing is sent, and the link counts as lost.
  unsigned connection = 0;
};

// What has changed on a screen, and what became of an event.
struct PanelChanges {
  PanelRevision upTo{};     // what is had when this is taken in
  std::uint32_t stamp = 0;  // the controller's clock in milliseconds, modulo 2^32
  std::uint16_t page = 0;   // that is shown
  bool hasMore = false;     // than fitted: ask again
  bool isSystemMode = false;
  bool isOperatedAtPanel = false;
  bool isLeaseGood = false;  // the one that was named
  bool isLeaseElsewhere = false;
  bool beginsAnew = false;  // all that was had before is to be dropped
  bool isHeld = false;      // what the operator holds is held at this moment
  PanelVerdict verdict = PanelVerdict::Done;
  std::uint16_t lease = 0;
  std::vector<PanelRecord> records{};  // oldest first, a slot once at most
  // The answer to an event was lost and only its head could be asked for again: there are no records, and what is had
  // is what was had before.
  bool isCut = false;
};

enum class PanelResourceKind : std::uint8_t { Font = 1, Image = 2 };

// One entry of a directory of resources.
struct PanelResource {
  std::uint16_t id = 0;
  std::uint32_t length = 0;  // bytes
  std::uint32_t check = 0;   // CRC-32 of them
  std::string name{};        // Windows-1252, at most 32 characters

  bool operator==(const PanelResource&) const = default;
};

// A directory as its controller told it.
struct PanelDirectory {
  std::vector<PanelResource> entries{};
  std::uint32_t check = 0;  // CRC-32 over it, as the description names it
};

// What screen data costs on this link.
struct PanelLinkCost {
  Duration perByte{};           // on the wire, for one byte of changes; 0 where the link has no speed
  Duration perRequest{};        // request and reply without any changes
  std::uint16_t mostPiece = 0;  // bytes of changes that one reply may have
};

// What tools ask of a controller's panel. Each call is one request, as with Channel: nothing means failure, and
// LastError() says why until the next call. A controller without a panel refuses.
// Replies are checked for their envelope, lengths and ranges; what the records mean is for who draws them to judge.
//
// Used on the thread of the link.
class PanelLink {
 public:
  virtual ~PanelLink() = default;

  [[nodiscard]] virtual std::optional<PanelDescription> Describe(std::uint8_t unit) = 0;
  [[nodiscard]] virtual std::optional<PanelChanges> Changes(const PanelChangesRequest& request, std::uint8_t unit) = 0;
  // Executed at most once. After a failure MeansNotExecuted() of the error says whether it is certain that it was not.
  [[nodiscard]] virtual std::optional<PanelChanges> Send(const PanelEvent& event, std::uint8_t unit) = 0;

  // All entries, in as many requests as they take.
  [[nodiscard]] virtual std::optional<PanelDirectory> Directory(PanelResourceKind kind, std::uint8_t unit) = 0;
  // `length` bytes, 1 to 4096, from `offset` on.
  [[nodiscard]] virtual std::optional<Bytes> ReadPiece(PanelResourceKind kind, std::uint16_t id, std::uint32_t offset,
                                                       std::uint32_t length, std::uint8_t unit) = 0;

  // Asks the unit who it is where that is not known yet; else sends nothing.
  [[nodiscard]] virtual std::optional<PanelLinkCost> Cost(std::uint8_t unit) = 0;
  // Number of the connection that the link has now; another one after each reconnect.
  [[nodiscard]] virtual unsigned Connection() const = 0;

  [[nodiscard]] virtual const LinkError& LastError() const = 0;
};

}  // namespace kv
