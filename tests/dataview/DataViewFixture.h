#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dataview/DataTypesView.h"
#include "dataview/operands/OperandCatalogue.h"
#include "desktop/MemoryClipboard.h"
#include "desktop/VirtualPacer.h"
#include "editors/clsHexSelector.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/Recorded.h"
#include "tests/support/SessionFixture.h"

namespace kv::test {

using namespace mdlDataTypesView;
using enum OperandTypeCode;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

inline constexpr auto kOk = PromptAnswer::Ok;

// A controller that answers list reads with `value`, and keeps what is written to MI and ML. Its calls stand in the
// fixture's log.
class OperandChannel : public FakeChannel {
 public:
  explicit OperandChannel(CallLog& log) {
    version.emplace().osVersion = "4.00";
    info.emplace().serialNumber = 1001;
    succeeds = true;
    onCall = [this, &log](const std::string& call) {
      log.push_back(call);
      if (during) during();
      return failAt-- != 0;
    };
  }

  std::function<std::uint32_t(std::int32_t address)> value = [](std::int32_t address) {
    return static_cast<std::uint32_t>(address);
  };
  int failAt = -1;                                                      // the call that fails, from 0; less: none
  std::function<void()> during;                                         // each call
  bool isLying = false;                                                 // only says that it has written
  std::map<std::pair<std::int32_t, std::int32_t>, std::uint32_t> kept;  // by list code and address
  ChangeObserver* changes = nullptr;

  ChangeObserver* Changes() override { return changes; }

  std::optional<std::vector<OperandListValues>> ReadOperandList(std::span<const OperandListRequest> records,
                                                                std::uint8_t unitId) override {
    OperandListValues values;
    const OperandListRequest& list = records.front();
    for (std::int32_t at = list.start; at < list.start + list.count; ++at) {
      const auto written = kept.find({list.driverTypeCode, at});
      const bool isTriple = list.driverTypeCode == kDriverTypeTimers || list.driverTypeCode == kDriverTypeCounters;
      values.insert(values.end(), isTriple ? 3 : 1, written != kept.end() ? written->second : value(at));
    }
    lists = std::vector<OperandListValues>{values};
    return FakeChannel::ReadOperandList(records, unitId);
  }
  bool WriteMI(Int16 start, WordSpan values, Unit u) override {
    return FakeChannel::WriteMI(start, values, u) && Keep(kMI, start, values);
  }
  bool WriteML(Int16 start, LongSpan values, Unit u) override {
    return FakeChannel::WriteML(start, values, u) && Keep(kML, start, values);
  }

 private:
  static constexpr std::int32_t kMI = 3;
  static constexpr std::int32_t kML = 5;

  template <typename Value>
  bool Keep(std::int32_t code, std::int32_t start, std::span<const Value> values) {
    for (const Value each : values) {
      if (!isLying) kept[{code, start}] = static_cast<std::uint32_t>(each);
      ++start;
    }
    return true;
  }
};

// The view on fakes: whatever it asks, sends and tells is in one log, and with what it shows and what then stands in
// its grids in the record of the test.
struct DataViewFixture : SessionFixture, GridListener, HexSelectorWindow {
  explicit DataViewFixture(const std::string& model = "K220-22-R1") {
    host.model = model;
    driver.channel = channel;
    pacer.OnTurn([this] { shown += "turn\n"; });
    view.Open();
  }
  ~DataViewFixture() override {
    ShowGrids();
    ExpectAsRecorded([this] { return WithoutHome(shown, home.Path()); });
  }

  void GridsChanged(const GridChanges& of) override {
    changed.push_back(of);
    const auto& [top, left, bottom, right] = of.operands;
    for (const std::int32_t each : {top, left, bottom, right, of.firstRegion, of.lastRegion})
      shown += std::to_string(each) + " ";
    shown += std::string(of.onlyValues ? "values " : "") + (of.regionRowsReplaced ? "rows " : "") +
             (of.operandsReplaced ? "operands" : "") + "\n";
  }
  void StatusChanged() override {
    const ViewStatus& now = view.Status();
    shown += "mode " + std::to_string(static_cast<int>(now.mode)) + (now.isError ? ", error" : "") +
             (now.loss ? ", lost" : "") + ", " + std::to_string(now.edited) + " edited: " + now.message +
             (now.refusal.empty() ? "" : ", refused: " + now.refusal) + "\n";
  }
  std::optional<std::string> Edit(const std::string& hexCode) override { return separator(hexCode); }

  // Adds what the grid's cells of one type and these addresses make.
  void Add(OperandTypeCode type, std::int32_t from, std::int32_t to) {
    view.Select({.top = RowOfType(type), .left = from + 1, .bottom = RowOfType(type), .right = to + 1});
    view.Run("ID_AddRegion");
  }
  // Runs a command whose boxes are answered so, and gives what was logged meanwhile.
  CallLog Run(std::string_view tool, std::initializer_list<PromptAnswer> answers = {}) {
    for (const PromptAnswer answer : answers) prompts.Press(answer);
    Taken();
    changed.clear();
    view.Run(tool);
    CallLog calls = Taken();
    shown += "--> " + std::string(tool) + "\n";
    for (const std::string& call : calls) shown += call + "\n";
    ShowGrids();
    return calls;
  }
  // The regions with their values and age, and the operands: "12" was read, "=12" is to be written.
  [[nodiscard]] std::string Grids() const {
    std::string text;
    const auto rows = view.Regions().Rows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const auto& [region, description, size, format, values, readAt, isFromFile] = rows[i];
      text += "  [" + std::string(TypeName(region.type)) + " " + std::to_string(region.from) + ".." +
              std::to_string(region.to) + "] " + description + " (" + std::string(SizeName(size)) + ", " +
              std::string(FormatName(format)) + ")" + values + (isFromFile ? " (of a file) " : " ") + view.AgeText(i) +
              "\n";
    }
    const OperandStore& cells = view.Operands();
    for (std::int32_t row = 1; row <= kOperandTypeCount; ++row) {
      const OperandTypeCode type = TypeOfRow(row);
      for (std::int32_t at = 0, last = -2; at < cells.CountOf(type); ++at) {
        if (cells.Origin(type, at) == CellOrigin::None) continue;
        if (std::exchange(last, at) != at - 1)
          text += "\n  " + std::string(TypeName(type)) + " " + std::to_string(at) + ":";
        text += (cells.Origin(type, at) == CellOrigin::Edited ? " =" : " ") + cells.Text(type, at);
      }
    }
    return text + "\n";
  }
  // As far as they are others than they were.
  void ShowGrids() {
    std::string now = Grids();
    if (now != mGrids) shown += now;
    mGrids = std::move(now);
  }

  std::function<std::optional<std::string>(const std::string&)> separator = [](const std::string& offered) {
    return offered;
  };
  std::vector<GridChanges> changed;
  std::string shown;
  std::shared_ptr<OperandChannel> channel = std::make_shared<OperandChannel>(log);
  VirtualPacer pacer;
  MemoryClipboard clipboard;
  clsHexSelector selector{*this};
  DataTypesView view{{shared, prompts, pacer, clipboard, selector, pacer}, *this};

 private:
  std::string mGrids = "\n";
};

}  // namespace kv::test
