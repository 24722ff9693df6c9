// Puts the page that is to be seen into the slots of the screen.

#include "simulator/panel/ColourPages.h"
#include "simulator/panel/Panel.h"
#include "simulator/panel/TextPages.h"

namespace sim {
namespace {

constexpr std::size_t kOperatorSlot = 1;
constexpr std::size_t kCursorSlot = 2;
constexpr std::size_t kLampSlot = 3;
constexpr std::size_t kFirstRow = 16;
constexpr std::size_t kFirstKey = 32;
constexpr std::size_t kFirstItem = 64;

}  // namespace

PanelView Panel::ViewOf(const Around& around) const {
  const bool isSystem = around.inSystemMode && mDisplay.kind == Display::Kind::ColourDots;
  return {.operands = around.operands,
          .facts = around.facts,
          .page = isSystem ? PageNumber::System : mPage,
          .programRuns = around.programRuns,
          .isAwake = mPlant.IsAwake(),
          .held = mHeld,
          .entry = isSystem ? std::nullopt : mEntry,
          .setting = mSetting};
}

void Panel::Draw(const Around& around) {
  const PanelView view = ViewOf(around);
  mScreen.Put(kOperatorSlot, RecordKind::Operator, OperatorBody(mOperator.Name()));
  mPlaces.clear();
  if (mDisplay.kind == Display::Kind::TextCells) {
    DrawTexts(view);
  } else {
    DrawColour(view);
  }
}

void Panel::DrawColour(const PanelView& view) {
  const PageContent content = DrawColourPage(Layout(mDisplay), view);
  if (mScreen.Page() != content.number) mScreen.ShowPage(content.number, content.background, content.name);
  std::size_t slot = kFirstItem;
  for (const PageContent::Piece& piece : content.pieces) mScreen.Put(slot++, piece.kind, piece.body);
  for (const PageContent::Area& area : content.areas) {
    mPlaces.push_back({kFirstItem + area.piece, area.box, area.control});
  }
}

void Panel::DrawTexts(const PanelView& view) {
  const TextContent content = DrawTextPage(mDisplay, view);
  if (mScreen.Page() != content.number) mScreen.ShowPage(content.number, 0, content.name);
  const auto& cursor = content.cursor;
  mScreen.Put(kCursorSlot, RecordKind::Cursor, CursorBody(cursor.column, cursor.row, cursor.form));
  mScreen.Put(kLampSlot, RecordKind::Lamps, LampsBody(content.lamps));
  for (std::size_t row = 0; row < content.rows.size(); ++row) {
    mScreen.Put(kFirstRow + row, RecordKind::Row, RowBody(content.rows[row], content.attributes[row]));
  }
  for (std::size_t id = 0; id < content.keys.size(); ++id) {
    const auto& key = content.keys[id];
    if (!key) {
      mScreen.Empty(kFirstKey + id);
      continue;
    }
    mScreen.Put(kFirstKey + id, RecordKind::TouchArea, TouchAreaBody({}, key->role, key->state, key->name));
    mPlaces.push_back({kFirstKey + id, {}, *key});
  }
}

}  // namespace sim
