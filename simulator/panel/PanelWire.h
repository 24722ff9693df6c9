#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/Refusal.h"

namespace sim {

// The requests of a panel, as their bytes say. How many bytes the reply may have is bounded by `limit`, which depends
// on the envelope.
struct ChangesRequest {
  std::uint16_t epoch = 0;
  std::uint32_t number = 0;
  std::uint16_t most = 0;
  std::uint16_t lease = 0;
};

struct PanelEvent {
  enum class Action : std::uint8_t { Operate = 1, Leave = 2, Down = 3, Hold = 4, Up = 5, Tap = 6 };
  static constexpr std::uint8_t kAtPoint = 255;

  Action action = Action::Operate;
  std::uint8_t key = kAtPoint;
  std::uint16_t epoch = 0;
  std::uint32_t number = 0;
  std::uint32_t stamp = 0;
  std::uint16_t page = 0;
  std::uint16_t lease = 0;
  std::uint16_t x = 0;
  std::uint16_t y = 0;
  std::uint16_t most = 0;
  std::uint32_t since = 0;
  std::string name;
};

// What became of an event; the numbers are those on the wire.
enum class Verdict : std::uint8_t {
  Done = 0,
  NothingThere = 1,
  SomethingElseThere = 2,
  Late = 3,
  NoLease = 4,
  OperatedLocally = 5,
  NothingHeld = 6,
  NotNow = 7,
};

[[nodiscard]] Result<ChangesRequest> ReadChangesRequest(std::string_view data, std::size_t limit);
[[nodiscard]] Result<PanelEvent> ReadPanelEvent(std::string_view data, std::size_t limit);

// What stands before the records of a reply.
struct ChangesHead {
  enum Flag : std::uint8_t {
    HasMore = 1,
    SystemMode = 2,
    OperatedLocally = 4,
    LeaseIsGood = 8,
    SomebodyElses = 16,
    BeginsAnew = 32,
    IsHeld = 64,
  };
  static constexpr std::size_t kSize = 16;

  std::uint16_t epoch = 0;
  std::uint32_t number = 0;
  std::uint32_t stamp = 0;
  std::uint16_t page = 0;
  std::uint8_t flags = 0;
  Verdict verdict = Verdict::Done;
  std::uint16_t lease = 0;
};

[[nodiscard]] std::string WriteChangesHead(const ChangesHead& head);

}  // namespace sim
