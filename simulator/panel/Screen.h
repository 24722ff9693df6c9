#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "simulator/panel/ScreenRecords.h"

namespace sim {

// What a panel shows, in numbered slots, and in which order they changed. Each change gets the next number, so that a
// host can ask for what is newer than the last one it knows; the epoch tells this screen from the one before a restart.
class Screen {
 public:
  static constexpr std::size_t kSlots = 1024;
  static constexpr std::size_t kFirstOfPage = 16;  // slots from here on belong to the page that is shown

  struct Slot {
    RecordKind kind = RecordKind::Nothing;
    std::uint32_t number = 0;  // of its last change; 0: none on this page
    std::string body;
    std::uint32_t targetNumber = 0;  // of its last change to something else that can be pressed
    Box formerArea;                  // where a touch area was that went from here
    std::uint32_t formerNumber = 0;  // the change with which it went; 0: none
  };

  // Records for a host, one behind the other.
  struct Changes {
    bool beginsAnew = false;  // the host has to drop what it has
    bool hasMore = false;
    std::uint32_t number = 0;  // up to which the host has everything then
    std::string records;
  };

  explicit Screen(std::uint16_t epoch) : mEpoch(epoch) {}

  [[nodiscard]] std::uint16_t Epoch() const { return mEpoch; }
  [[nodiscard]] std::uint32_t Number() const { return mNumber; }
  [[nodiscard]] std::uint16_t Page() const { return mPage; }
  [[nodiscard]] const Slot& At(std::size_t slot) const { return mSlots[slot]; }

  // Shows another page: everything that belonged to the one before is gone.
  void ShowPage(std::uint16_t page, Colour background, std::string_view name);
  // A slot's new content. What it holds already is no change.
  void Put(std::size_t slot, RecordKind kind, std::string body);
  void Empty(std::size_t slot) { Put(slot, RecordKind::Nothing, {}); }

  // What has changed since `number` of `epoch`, oldest first, as many whole records as `room` bytes hold.
  [[nodiscard]] Changes Since(std::uint16_t epoch, std::uint32_t number, std::size_t room) const;

  // Whether a touch area that was at this point has changed or gone since `number`.
  [[nodiscard]] bool HasAreaChangedAt(int x, int y, std::uint32_t number) const;

 private:
  void Forget(std::size_t slot);

  std::uint16_t mEpoch;
  std::uint32_t mNumber = 0;
  std::uint16_t mPage = 0;
  std::array<Slot, kSlots> mSlots;
  std::map<std::uint32_t, std::uint16_t> mOrder;  // slot of each change that is the newest of its slot
};

}  // namespace sim
