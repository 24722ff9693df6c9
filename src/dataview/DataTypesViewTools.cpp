// The commands of the tool bar: one table says what each needs and what it does.
#include <algorithm>
#include <array>

#include "dataview/DataTypesView.h"

namespace kv::mdlDataTypesView {

struct DataTypesView::Tool {
  enum class Online { Off, On };  // whether it can be used while on line
  enum Need : unsigned {
    kNothing = 0,
    kController = 1,
    kRegions = 2,
    kOperandsSelected = 4,
    kRegionsSelected = 8,
    kUndo = 16,
    kRedo = 32,
    kAllValues = 64
  };

  std::string_view id;
  Online online;
  unsigned needs;
  void (DataTypesView::*run)();
};

const DataTypesView::Tool* DataTypesView::FindTool(std::string_view toolId) {
  using V = DataTypesView;
  using enum Tool::Online;
  using enum Tool::Need;
  // clang-format off
  static constexpr auto kTools = std::to_array<Tool>({
      // id                 on line  needs                    does
      {"ID_OnLine",         On,      kController | kRegions,  &V::ToggleOnline},
      {"ID_ReadRegions",    Off,     kController | kRegions,  &V::ReadRegions},
      {"ID_WriteRegions",   Off,     kController | kRegions,  &V::WriteRegions},
      {"ID_ReadAll",        Off,     kController,             &V::ReadAll},
      {"ID_WriteAll",       Off,     kController,             &V::WriteAll},
      {"ID_TakeAllValues",  Off,     kAllValues,              &V::TakeAllValues},
      {"ID_NewRegions",     Off,     kNothing,                &V::NewRegions},
      {"ID_AddRegion",      Off,     kOperandsSelected,       &V::AddRegion},
      {"ID_RemoveRegion",   Off,     kRegionsSelected,        &V::RemoveRegion},
      {"ID_SaveRegions",    Off,     kNothing,                &V::SaveRegions},
      {"ID_LoadRegions",    Off,     kNothing,                &V::LoadRegions},
      {"ID_Export",         Off,     kNothing,                &V::ExportSheet},
      {"ID_Import",         Off,     kNothing,                &V::ImportSheet},
      {"ID_ExportToCSV",    On,      kNothing,                &V::ExportToCsv},
      {"ID_ImportFromCSV",  On,      kNothing,                &V::ImportFromCsv},
      {"ID_Copy",           Off,     kOperandsSelected,       &V::Copy},
      {"ID_Cut",            Off,     kOperandsSelected,       &V::Cut},
      {"ID_Clear",          Off,     kOperandsSelected,       &V::Clear},
      {"ID_Paste",          Off,     kOperandsSelected,       &V::Paste},
      {"ID_Undo",           Off,     kUndo,                   &V::Undo},
      {"ID_Redo",           Off,     kRedo,                   &V::Redo},
  });
  // clang-format on
  const auto* tool = std::ranges::find(kTools, toolId, &Tool::id);
  return tool != kTools.end() ? tool : nullptr;
}

void DataTypesView::Run(std::string_view toolId) {
  const Tool* tool = FindTool(toolId);
  if (tool == nullptr || !WhyNot(toolId).empty()) return;
  mContext.EndReading();
  const std::uint64_t said = mContext.SaidCount();
  (this->*tool->run)();
  if (mContext.SaidCount() != said && !mContext.status.isError) mContext.NoteSuccess();
  Tell(true);
}

std::string DataTypesView::WhyNot(std::string_view toolId) const {
  const Tool* tool = FindTool(toolId);
  if (tool == nullptr) return {};
  std::string fault = ModeFault(*tool);
  return fault.empty() ? NeedFault(*tool) : fault;
}

std::string DataTypesView::ModeFault(const Tool& tool) const {
  if (!mIsOpen) return "The view is closed.";
  if (IsBusy()) return "A read or write is running: wait for its end, or cancel it.";
  if (IsOnline() && tool.online == Tool::Online::Off) return "Not while watching: press Watch to end that.";
  return {};
}

std::string DataTypesView::NeedFault(const Tool& tool) const {
  const auto needs = [&tool](Tool::Need need) { return (tool.needs & need) != 0; };
  if (needs(Tool::kController)) {
    if (std::string other = OtherModel(); !other.empty()) return other;
  }
  if (needs(Tool::kRegions) && Regions().Rows().empty()) {
    return "There are no regions: select operands in the grid and add them as a region first.";
  }
  if (needs(Tool::kOperandsSelected) && mSelection.Normalised().right < 1) return "Select operands in the grid first.";
  if (needs(Tool::kRegionsSelected) && mSelectedRegions.empty()) return "Select rows of the regions table first.";
  if (needs(Tool::kAllValues) && !mAll.HasRead()) return "All values have not been read yet: use Read All first.";
  if (needs(Tool::kUndo) && UndoText().empty()) return "There is nothing to take back.";
  if (needs(Tool::kRedo) && RedoText().empty()) return "There is nothing to do again.";
  return {};
}

}  // namespace kv::mdlDataTypesView
