#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Time.h"
#include "simulator/FaultRandom.h"
#include "simulator/panel/Display.h"
#include "simulator/panel/Operator.h"
#include "simulator/panel/PanelView.h"
#include "simulator/panel/PanelWire.h"
#include "simulator/panel/Plant.h"
#include "simulator/panel/Screen.h"

namespace sim {

// The panel of one controller: what its screen shows, who operates it from afar, and the plant that it belongs to.
// Time passes in Advance only, and everything that ends by itself (a hold, a lease) ends at its own moment, however
// long nobody has asked. The screen is drawn when somebody looks at it.
class Panel {
 public:
  // The controller around it, at this moment.
  struct Around {
    PlantOperands& operands;
    bool programRuns = true;  // state R
    bool inSystemMode = false;
    PanelFacts facts;  // looked at when the screen is drawn
  };

  // `chance` is where epochs, leases and the clock's start come from.
  Panel(const Display& display, std::uint64_t chance);

  [[nodiscard]] const Display& TheDisplay() const { return mDisplay; }
  [[nodiscard]] bool HasDisplay() const { return mDisplay.kind != Display::Kind::None; }

  // After a reset or a power failure: nobody operates, the first page is shown, the plant stands still.
  void Restart(PlantOperands& operands);
  void Advance(kv::Instant now, PlantOperands& operands, bool programRuns, bool inSystemMode);

  // The data of the three requests. `limit` bounds what a reply may have.
  [[nodiscard]] std::string Describe(std::uint32_t fontsCrc, std::uint32_t imagesCrc) const;
  [[nodiscard]] Result<std::string> TellChanges(std::string_view request, std::size_t limit, const Around& around);
  [[nodiscard]] Result<std::string> TakeEvent(std::string_view request, std::size_t limit, const Around& around);

  // The lease that the last event has given out, once.
  [[nodiscard]] std::optional<std::uint16_t> TakeNewLease() { return std::exchange(mNewLease, std::nullopt); }
  // The connection on which it was given out has ended.
  void EndLease(std::uint16_t lease, PlantOperands& operands);

  [[nodiscard]] const Screen& TheScreen() const { return mScreen; }
  [[nodiscard]] bool IsPlantAwake() const { return mPlant.IsAwake(); }

 private:
  // What can be pressed on the page that is shown.
  struct Place {
    std::size_t slot;
    Box box;
    Control control;
  };

  void LetGo(PlantOperands& operands);
  void EndLease(PlantOperands& operands);

  void Draw(const Around& around);
  void DrawColour(const PanelView& view);
  void DrawTexts(const PanelView& view);
  [[nodiscard]] PanelView ViewOf(const Around& around) const;

  [[nodiscard]] const Place* PlaceOf(const PanelEvent& event) const;
  [[nodiscard]] bool IsAnother(const PanelEvent& event) const;
  [[nodiscard]] Verdict Judge(const PanelEvent& event, const Around& around) const;
  [[nodiscard]] Verdict JudgePress(const PanelEvent& event) const;
  void Do(const PanelEvent& event, PlantOperands& operands);
  void Press(const PanelEvent& event, PlantOperands& operands);
  void Obey(const Order& order, PlantOperands& operands);
  void ShowPage(PageNumber page, PlantOperands& operands);
  void Type(int digit);
  void Confirm(PlantOperands& operands);

  [[nodiscard]] std::string Answer(const Screen::Changes& changes, const Around& around, Verdict verdict,
                                   std::uint16_t lease) const;
  [[nodiscard]] std::uint32_t Stamp() const;
  [[nodiscard]] std::uint16_t ChanceWord();  // never 0

  Display mDisplay;
  FaultRandom mChance;
  kv::Instant mNow;
  std::uint32_t mFirstStamp;
  bool mProgramRuns = true;
  bool mInSystemMode = false;
  Screen mScreen;
  Operator mOperator;
  Plant mPlant;
  PageNumber mPage = PageNumber::Overview;
  std::optional<Entry> mEntry;
  int mSetting = 0;
  std::optional<Order> mHeld;
  std::optional<std::uint16_t> mNewLease;
  std::vector<Place> mPlaces;  // in the order of their slots
};

}  // namespace sim
