#include "KvTele2/panel/Drawing.h"

#include <algorithm>
#include <utility>

#include "KvTele2/panel/CellFont.h"
#include "KvTele2/panel/ItemDrawing.h"

namespace kv::panel {
namespace {

// Of a text display: dark characters on the green of its glass.
constexpr Dot kGlass = kOpaque | 0xC6D8A8;
constexpr Dot kInk = kOpaque | 0x1C2A18;

// More rectangles than these are drawn as the one that holds them all: to look through all items for each of them
// would take longer.
constexpr std::size_t kMostDirty = 64;

Picture EmptyPicture(const PanelDescription& panel) {
  if (panel.kind == PanelKind::Colour) return {panel.width, panel.height, DotOfColour(0)};
  return {panel.width * kCellWidth, panel.height * kCellHeight, kGlass};
}

std::int64_t SizeOf(const PixelRect& area) {
  return std::int64_t{area.width} * area.height;
}

}  // namespace

Drawing::Drawing(const ScreenModel& model, const ScreenResources& resources)
    : mModel(model),
      mResources(resources),
      mPicture(EmptyPicture(model.Panel())),
      mBounds(model.SlotCount()),
      mGeneration(resources.Generation()) {
  NoteAll();
}

void Drawing::Note(const ScreenDelta& delta) {
  if (delta.isAll) return NoteAll();
  for (const std::uint16_t slot : delta.changed) NoteSlot(slot);
}

void Drawing::NoteAll() {
  mAreBoundsOld = true;
  mDirty.assign(1, mPicture.Bounds());
}

void Drawing::NoteSlot(std::uint16_t slot) {
  if (mModel.Panel().kind == PanelKind::Colour) {
    if (slot < kFirstItemSlot || mAreBoundsOld) return;
    NoteArea(std::exchange(mBounds[slot], BoundsOf(mModel.Slot(slot), mResources)));
    return NoteArea(mBounds[slot]);
  }
  if (slot >= kFirstRowSlot && slot < kFirstKeySlot) NoteRow(slot - kFirstRowSlot);
  if (slot != kCursorSlot) return;
  NoteRow(mCursorRow);
  if (const auto* cursor = mModel.Get<CursorItem>(kCursorSlot)) NoteRow(cursor->row);
}

void Drawing::NoteRow(int row) {
  if (row >= 0) NoteArea({0, row * kCellHeight, mPicture.Width(), kCellHeight});
}

// Two rectangles that overlap are drawn as one where that costs no more dots.
void Drawing::NoteArea(PixelRect area) {
  area = area.Inside(mPicture.Bounds());
  if (area.IsEmpty()) return;
  for (PixelRect& dirty : mDirty) {
    const PixelRect both = dirty.UnitedWith(area);
    if (SizeOf(both) > SizeOf(dirty) + SizeOf(area)) continue;
    dirty = both;
    return;
  }
  mDirty.push_back(area);
  if (mDirty.size() <= kMostDirty) return;
  PixelRect all;
  for (const PixelRect& dirty : mDirty) all = all.UnitedWith(dirty);
  mDirty.assign(1, all);
}

void Drawing::ShowBlinking(bool isSeen) {
  if (std::exchange(mIsBlinkSeen, isSeen) == isSeen) return;
  for (int row = 0; row < mModel.Panel().height; ++row) {
    if (Blinks(row)) NoteRow(row);
  }
}

bool Drawing::HasBlinking() const {
  if (mModel.Panel().kind != PanelKind::Text) return false;
  for (int row = 0; row < mModel.Panel().height; ++row) {
    if (Blinks(row)) return true;
  }
  return false;
}

bool Drawing::Blinks(int row) const {
  const auto* item = mModel.Get<RowItem>(static_cast<std::uint16_t>(kFirstRowSlot + row));
  return item != nullptr && std::ranges::any_of(item->attributes, &CellAttributes::isBlinking);
}

std::vector<PixelRect> Drawing::Draw() {
  if (std::exchange(mGeneration, mResources.Generation()) != mResources.Generation()) NoteAll();
  if (std::exchange(mAreBoundsOld, false)) {
    for (std::uint16_t slot = kFirstItemSlot; slot < mModel.SlotCount(); ++slot) {
      mBounds[slot] = BoundsOf(mModel.Slot(slot), mResources);
    }
  }
  std::vector<PixelRect> areas = std::exchange(mDirty, {});
  for (const PixelRect& area : areas) {
    Pen pen(mPicture, area);
    if (mModel.Panel().kind == PanelKind::Colour) {
      DrawColour(pen);
    } else {
      DrawText(pen);
    }
  }
  return areas;
}

// The background and every item that reaches into the area, in the order of the slots.
void Drawing::DrawColour(Pen& pen) {
  const PageItem* page = mModel.Page();
  pen.Fill(pen.Clip(), DotOfColour(page != nullptr ? page->background : std::uint16_t{0}));
  for (std::uint16_t slot = kFirstItemSlot; slot <= mModel.LastUsedSlot(); ++slot) {
    if (!mBounds[slot].Inside(pen.Clip()).IsEmpty()) DrawItem(pen, mModel.Slot(slot), mResources);
  }
}

void Drawing::DrawText(Pen& pen) {
  const PixelRect& clip = pen.Clip();
  const int last = (clip.Bottom() - 1) / kCellHeight;
  for (int row = clip.y / kCellHeight; row <= last; ++row) DrawRow(pen, row);
  DrawCursor(pen);
}

void Drawing::DrawRow(Pen& pen, int row) {
  const int y = row * kCellHeight;
  pen.Fill({0, y, mPicture.Width(), kCellHeight}, kGlass);
  const auto* item = mModel.Get<RowItem>(static_cast<std::uint16_t>(kFirstRowSlot + row));
  if (item == nullptr) return;
  for (std::size_t column = 0; column < item->characters.size(); ++column) {
    const CellAttributes& cell = item->attributes[column];
    const int x = static_cast<int>(column) * kCellWidth;
    const Dot ink = cell.isInverse ? kGlass : kInk;
    if (cell.isInverse) pen.Fill({x, y, kCellWidth, kCellHeight}, kInk);
    if (cell.isBlinking && !mIsBlinkSeen) continue;
    pen.Bits(x, y, kCellWidth, CellGlyph(item->characters[column]).rows, ink);
    if (cell.isUnderlined) pen.Fill({x, y + kCellHeight - 2, kCellWidth, 1}, ink);
  }
}

void Drawing::DrawCursor(Pen& pen) {
  const auto* cursor = mModel.Get<CursorItem>(kCursorSlot);
  const bool isSeen = cursor != nullptr && cursor->form != CursorItem::Form::None;
  mCursorRow = isSeen ? cursor->row : -1;
  if (!isSeen) return;
  const bool isBlock = cursor->form == CursorItem::Form::Block;
  const int top = cursor->row * kCellHeight;
  const PixelRect cell{cursor->column * kCellWidth, isBlock ? top : top + kCellHeight - 2, kCellWidth,
                       isBlock ? kCellHeight : 2};
  pen.Invert(cell, kInk, kGlass);
}

std::vector<Drawing::Missing> Drawing::MissingResources() const {
  std::vector<Missing> missing;
  const auto note = [&](const Missing& one) {
    if (std::ranges::find(missing, one) == missing.end()) missing.push_back(one);
  };
  for (std::uint16_t slot = kFirstItemSlot; slot <= mModel.LastUsedSlot(); ++slot) {
    const auto* text = mModel.Get<TextItem>(slot);
    const auto* image = mModel.Get<ImageItem>(slot);
    if (text != nullptr && mResources.FontOf(text->font) == nullptr) note({PanelResourceKind::Font, text->font});
    if (image != nullptr && mResources.ImageOf(image->id) == nullptr) note({PanelResourceKind::Image, image->id});
  }
  return missing;
}

}  // namespace kv::panel
