#include "dataview/DataTypesView.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/PathText.h"
#include "dataview/WriteQuestion.h"
#include "dataview/files/GridText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "desktop/RemainingTime.h"

namespace kv::mdlDataTypesView {
namespace {

using namespace std::chrono_literals;

constexpr Duration kMarkFades = 2s;

}  // namespace

DataTypesView::DataTypesView(DataTypesViewParts parts, GridListener& listener) : mContext(parts, listener) {}

void DataTypesView::Open() {
  const SharedState& shared = mContext.parts.shared;
  const std::string model = shared.Remote != nullptr ? shared.Remote->Model() : std::string();
  const bool isRecovered = RecoverInterruptedGrids(shared.paths, shared.CurrentSession);
  LoadedGrids loaded = LoadGrids(SessionGridFiles(shared.paths, shared.CurrentSession), model);
  mContext.state = std::move(loaded.state);
  mFiles = StatesOf(SessionGridFiles(shared.paths, shared.CurrentSession));
  mOpenedWith = GridsText();
  mContext.status.link = mContext.CurrentLink();
  mContext.history.Clear();
  mAll.Forget();
  mContext.changes.operandsReplaced = true;
  mContext.RowsReplaced();
  SayLoaded(isRecovered, loaded.notes);
  mIsOpen = true;
  Tell(true);
}

void DataTypesView::SayLoaded(bool isRecovered, const std::vector<std::string>& notes) {
  std::string text;
  if (isRecovered)
    text = "The program ended during a read or write of all values; the grids are as they were before it.";
  for (const std::string& note : notes) text += (text.empty() ? "" : " ") + note;
  if (notes.empty()) return mContext.Say(text);
  mContext.SayError(text);
}

bool DataTypesView::Close() {
  if (!mIsOpen) return true;
  if (IsBusy()) {
    mContext.parts.pacer.RequestStop();
    return false;
  }
  mOnline.Stop();
  if (!SaveState()) return Tell(false);
  mOnline.StopAtOnce();
  mIsOpen = false;
  return true;
}

std::string DataTypesView::GridsText() {
  const std::string& session = mContext.parts.shared.CurrentSession;
  GridSettings settings = std::exchange(mContext.state.settings, {});
  std::string text = PrintRegionsGrid(mContext.state, session) + PrintOperandsGrid(mContext.state, session);
  mContext.state.settings = std::move(settings);
  return text;
}

// A second copy of the program may have the same session open: neither loses what the other one has saved.
bool DataTypesView::SaveState() {
  const SharedState& shared = mContext.parts.shared;
  const GridFilePair files = SessionGridFiles(shared.paths, shared.CurrentSession);
  const bool areOthers = AreSavedSince(files, mFiles);
  if (areOthers && GridsText() == mOpenedWith) return true;
  auto saved = areOthers ? KeepOldGrids(files) : std::expected<void, FileError>();
  if (saved) saved = SaveSessionGrids(shared.paths, mContext.state, shared.CurrentSession);
  if (!saved) {
    mContext.SayError("The grids could not be saved. " + saved.error().Text() + ".");
    return mContext.AskYesNo(
        mContext.status.message + "\r\n\r\nClose the view all the same, and lose what was changed in it?", true);
  }
  if (areOthers) {
    mContext.ShowBox(
        "Another program has saved the grids of this session since the view was opened. The session now has "
        "those of this view; the others are kept beside them, with .old behind their names:\r\n" +
        Utf8FromPath(files.regions) + ".old\r\n" + Utf8FromPath(files.operands) + ".old");
  }
  return true;
}

void DataTypesView::Select(const GridSelection& operands) {
  mSelection = operands;
  const GridSelection at = operands.Normalised();
  mContext.state.settings.currentRow = at.top;
  mContext.state.settings.currentColumn = at.left;
}

void DataTypesView::SelectRegions(std::vector<std::size_t> rows) {
  mSelectedRegions = std::move(rows);
}

// ---- edits ----

std::string DataTypesView::EditFault(OperandTypeCode type, std::int32_t address, std::string_view text) const {
  if (!mIsOpen) return "The view is closed.";
  if (IsBusy()) return "A read or write is running: wait for its end, or cancel it.";
  if (mContext.IsReadOnline(type, address)) {
    return "This operand is being watched, which would take the place of what you enter: press Watch to end that "
           "first.";
  }
  return mEdits.EntryFault(type, address, text);
}

bool DataTypesView::Edit(OperandTypeCode type, std::int32_t address, std::string_view text) {
  std::string fault = EditFault(type, address, text);
  if (fault.empty()) {
    mEdits.Enter(type, address, text);
    mContext.NoteSuccess();
  } else {
    mContext.SayError(fault);
  }
  return Tell(fault.empty());
}

bool DataTypesView::SetDescription(std::size_t row, std::string_view text) {
  return !IsBusy() && Tell(mEdits.SetDescription(row, text));
}

bool DataTypesView::SetSize(std::size_t row, SizeCode size) {
  return !IsBusy() && Tell(mEdits.SetSize(row, size));
}

bool DataTypesView::SetFormat(std::size_t row, FormatCode format) {
  return !IsBusy() && Tell(mEdits.SetFormat(row, format));
}

void DataTypesView::SetHidden(const HiddenRows& hidden) {
  if (IsBusy()) return;
  mEdits.SetHidden(hidden);
  Tell(true);
}

void DataTypesView::SetLayout(std::vector<std::int32_t> regionColumnWidths, std::int32_t operandColumnWidth) {
  mContext.state.settings.regionColumnWidths = std::move(regionColumnWidths);
  mContext.state.settings.operandColumnWidth = operandColumnWidth;
}

bool DataTypesView::Tell(bool result) {
  mContext.TellChanges();
  mContext.TellStatus();
  return result;
}

// ---- commands ----

void DataTypesView::ToggleOnline() {
  if (!IsOnline()) return mOnline.Run(OnlineMode::With::Any);
  mOnline.Stop();
  mContext.Say("Watching ends with the pass that runs.");
}

void DataTypesView::WatchAgain(bool isByItself) {
  if (IsOnline() || !WhyNot("ID_OnLine").empty()) return;
  mOnline.Run(isByItself ? OnlineMode::With::SameController : OnlineMode::With::Any);
  Tell(true);
}

bool DataTypesView::IsOtherController() const {
  const auto& loss = mContext.status.loss;
  return loss && loss->error.code == LinkErrorCode::OtherController;
}

bool DataTypesView::CanTakeOther() const {
  const CommDriver* driver = mContext.parts.shared.ComDriver;
  return IsOtherController() && driver != nullptr && !driver->TiedSerialNumber();
}

void DataTypesView::TakeOtherController() {
  if (!CanTakeOther() || IsOnline() || IsBusy()) return;
  if (CommDriver* driver = mContext.parts.shared.ComDriver) driver->CloseDriver();
  const bool wasWatching = mContext.status.loss->wasWatching;
  mContext.status.loss.reset();
  mContext.NoteSuccess();
  mContext.Say("The link was closed: the next command connects to the controller that answers now.");
  if (wasWatching) WatchAgain(false);
  Tell(true);
}

void DataTypesView::Refuse(std::string why) {
  mContext.Say(std::move(why));
  Tell(false);
}

void DataTypesView::WriteRegions() {
  const std::vector<Region> regions = mContext.state.regions.Regions();
  if (mEngine.IsInRange(regions) && IsWanted(regions)) mEngine.Write(regions);
}

// A write sends all values of its regions, so the old ones beside the one that was just entered go with it.
bool DataTypesView::IsWanted(const std::vector<Region>& regions) {
  const std::int64_t old = CountOldValues(mContext.state.operands, regions);
  if (old == 0) return true;
  std::size_t count = 0;
  for (const Region& region : regions) {
    count += IsWritableType(region.type) ? static_cast<std::size_t>(region.Count()) : 0;
  }
  MessageBox question = WriteQuestion(count, mContext.CurrentLink());
  question.title = mContext.Caption();
  question.text += OldValuesText(old);
  if (mContext.parts.prompts.Show(question) == PromptAnswer::Yes) return true;
  mContext.Say("Nothing was written.");
  return false;
}

void DataTypesView::RemoveRegion() {
  mEdits.RemoveRegions(mSelectedRegions);
  mSelectedRegions.clear();
}

// ---- whose operands these are ----

std::string DataTypesView::ControllerText() const {
  const std::string& link = mContext.status.link;
  return mContext.Model() + (link.empty() ? "" : " on " + link);
}

std::string DataTypesView::OtherModel() const {
  const RemoteHost* host = mContext.parts.shared.Remote;
  if (host == nullptr || host->Model() == mContext.Model()) return {};
  return "The model is now " + host->Model() + ", but these grids are those of " + mContext.Model() +
         ": close the view and open it again.";
}

std::string DataTypesView::HostDifference() const {
  if (std::string other = OtherModel(); !other.empty()) return other;
  const std::string link = mContext.CurrentLink();
  if (link == mContext.status.link) return {};
  return "The link is now " + link + ", but these values are those of " + mContext.status.link +
         ": read them again, or set the link back.";
}

// ---- marks ----

std::string DataTypesView::AgeText(std::size_t row) const {
  const auto rows = Regions().Rows();
  if (row >= rows.size() || !rows[row].readAt) return {};
  return kv::AgeText(mContext.Now() - *rows[row].readAt);
}

double DataTypesView::ChangeMark(OperandTypeCode type, std::int32_t address) const {
  return MarkOf(Operands().ChangedAt(type, address));
}

double DataTypesView::RegionMark(std::size_t row) const {
  if (row >= Regions().Rows().size()) return 0.0;
  const Region& region = Regions().Rows()[row].region;
  Instant last = Instant::min();
  for (std::int32_t address = region.from; address <= region.to; ++address) {
    last = std::max(last, Operands().ChangedAt(region.type, address));
  }
  return MarkOf(last);
}

double DataTypesView::MarkOf(Instant changedAt) const {
  if (!IsOnline() || changedAt == Instant::min()) return 0.0;
  const std::chrono::duration<double> age = mContext.Now() - changedAt;
  return std::clamp(1.0 - age / std::chrono::duration<double>(kMarkFades), 0.0, 1.0);
}

}  // namespace kv::mdlDataTypesView
