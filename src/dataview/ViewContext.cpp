#include "dataview/ViewContext.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "link/ErrorMeaning.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr Duration kProgressPause = std::chrono::milliseconds(100);
constexpr std::string_view kTitle = "Operand View";

// A message is noticed within two seconds, and read at some 16 characters a second.
constexpr Duration kNoticing = std::chrono::seconds(2);
constexpr Duration kReadingACharacter = std::chrono::milliseconds(60);
constexpr Duration kLongestReading = std::chrono::seconds(15);

Duration ReadingTime(std::string_view message) {
  return std::min(kNoticing + static_cast<std::int64_t>(message.size()) * kReadingACharacter, kLongestReading);
}

std::size_t IndexOf(OperandTypeCode type) {
  return static_cast<std::size_t>(type) - 1;
}

}  // namespace

void CellSpans::Add(OperandTypeCode type, std::int32_t from, std::int32_t to) {
  if (to < from) return;
  Span& span = mSpans[IndexOf(type)];
  const bool isFirst = span.to < span.from;
  span = {.from = isFirst ? from : std::min(span.from, from), .to = isFirst ? to : std::max(span.to, to)};
}

bool CellSpans::Touches(const Region& region) const {
  const Span& span = mSpans[IndexOf(region.type)];
  return Region{span.from, span.to, region.type}.Overlaps(region);
}

void CellSpans::AddTo(GridChanges& changes) const {
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    const auto type = static_cast<OperandTypeCode>(code);
    changes.AddOperands(type, mSpans[IndexOf(type)].from, mSpans[IndexOf(type)].to);
  }
}

ViewContext::ViewContext(DataTypesViewParts viewParts, GridListener& viewListener)
    : parts(viewParts), state{.operands = OperandStore({}), .regions = {}, .settings = {}}, mListener(viewListener) {}

std::string ViewContext::Caption() const {
  return std::string(kTitle) + " - " + parts.shared.CurrentSession;
}

std::string ViewContext::CurrentLink() const {
  return parts.shared.ComDriver ? parts.shared.ComDriver->LinkDescription() : std::string();
}

bool ViewContext::IsReadOnline(OperandTypeCode type, std::int32_t address) const {
  return status.mode == ViewMode::Online && std::ranges::any_of(state.regions.Rows(), [&](const RegionRow& row) {
           return row.region.Contains(type, address);
         });
}

void ViewContext::Say(std::string message) {
  Show(std::move(message), false);
  mReadUntil = Now() + ReadingTime(status.message);
}

void ViewContext::SayError(std::string message) {
  status.lastError = {.text = message, .at = parts.clock.LocalTime()};
  Show(std::move(message), true);
  mReadUntil = Now() + ReadingTime(status.message);
}

void ViewContext::SayRefusal(const std::string& message) {
  SayError(message);
  status.refusal = message;
}

void ViewContext::SayLinkError(const LinkError& error, const std::string& whatElse) {
  const LinkLoss loss{.error = error, .consequence = whatElse};
  SayError(loss.Text());
  if (!MeansLostLink(error.code)) {
    if (error.code != LinkErrorCode::Stopped) status.refusal = loss.Text();
    return;
  }
  status.refusal.clear();
  status.loss = loss;
  state.operands.NoteLoss(Now());
}

void ViewContext::NoteSuccess() {
  status.lastError.reset();
  status.refusal.clear();
}

void ViewContext::SayInPassing(std::string message) {
  if (Now() < mReadUntil) {
    mInPassing = std::move(message);
  } else {
    Show(std::move(message), false);
  }
}

void ViewContext::Show(std::string message, bool isError) {
  status.message = std::move(message);
  status.isError = isError;
  mInPassing.clear();
  ++mSaidCount;
}

void ViewContext::ShowBox(std::string_view text, PromptIcon icon) {
  parts.prompts.Show({.text = std::string(text), .title = Caption(), .icon = icon});
}

bool ViewContext::AskYesNo(std::string_view text, bool canLose) {
  return parts.prompts.Show({.text = std::string(text),
                             .title = Caption(),
                             .icon = PromptIcon::Question,
                             .buttons = PromptButtons::YesNo,
                             .canLose = canLose}) == PromptAnswer::Yes;
}

void ViewContext::SetMode(ViewMode mode) {
  status.mode = mode;
  status.done = 0;
  status.total = 0;
  TellStatus();
}

void ViewContext::TellStatus() {
  if (!mInPassing.empty() && Now() >= mReadUntil) Show(std::exchange(mInPassing, {}), false);
  status.edited = state.operands.EditedCount();
  mProgressToldAt = Now();
  mListener.StatusChanged();
}

void ViewContext::TellProgress() {
  if (mProgressToldAt == Instant::min() || Now() - mProgressToldAt >= kProgressPause) TellStatus();
}

void ViewContext::TellChanges() {
  const GridChanges told = std::exchange(changes, {});
  if (!told.IsEmpty()) mListener.GridsChanged(told);
}

void ViewContext::CellsChanged(const CellSpans& spans) {
  spans.AddTo(changes);
  const auto rows = state.regions.Rows();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (spans.Touches(rows[row].region)) RefreshRow(row);
  }
}

void ViewContext::RefreshRow(std::size_t row) {
  if (state.regions.RefreshValues(row, state.operands)) changes.AddRegion(static_cast<std::int32_t>(row));
}

void ViewContext::RefreshRowsOf(const Region& region) {
  const auto rows = state.regions.Rows();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (rows[row].region.Overlaps(region)) RefreshRow(row);
  }
}

void ViewContext::RowSettingsChanged(std::size_t row) {
  state.regions.RefreshValues(row, state.operands);
  changes.AddRegion(static_cast<std::int32_t>(row));
  changes.onlyValues = false;
}

void ViewContext::RowsReplaced() {
  for (std::size_t row = 0; row < state.regions.Rows().size(); ++row) {
    if (state.regions.Rows()[row].values.empty()) state.regions.RefreshValues(row, state.operands);
  }
  changes.regionRowsReplaced = true;
  changes.onlyValues = false;
}

}  // namespace kv::mdlDataTypesView
