#include "KvTele2/panel/ScreenText.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <utility>

#include "KvTele2/panel/CellFont.h"
#include "KvTele2/panel/ItemDrawing.h"
#include "base/AnsiText.h"

namespace kv::panel {
namespace {

// A character that no terminal and no screen reader can take is a blank.
void AddRows(const ScreenModel& model, std::vector<ScreenText>& texts) {
  for (int row = 0; row < model.Panel().height; ++row) {
    const auto* item = model.Get<RowItem>(static_cast<std::uint16_t>(kFirstRowSlot + row));
    std::string text = item != nullptr ? ReadableText(item->characters) : std::string();
    if (text.empty()) continue;
    texts.push_back(
        {.text = std::move(text), .place = {0, row * kCellHeight, model.Panel().width * kCellWidth, kCellHeight}});
  }
  for (const PanelKey& key : model.Panel().keys) {
    const auto* meaning = model.Get<TouchItem>(static_cast<std::uint16_t>(kFirstKeySlot + key.id));
    ScreenText text{.text = ReadableText(key.name), .place = {}, .touch = std::nullopt, .key = key.id};
    if (meaning != nullptr) text.touch = *meaning;
    texts.push_back(std::move(text));
  }
}

void AddItems(const ScreenModel& model, const ScreenResources& resources, std::vector<ScreenText>& texts) {
  for (std::uint16_t slot = kFirstItemSlot; slot <= model.LastUsedSlot(); ++slot) {
    if (const auto* text = model.Get<TextItem>(slot)) {
      std::string readable = ReadableText(text->text);
      if (readable.empty()) continue;
      texts.push_back({.text = std::move(readable), .place = BoundsOf(*text, resources)});
    } else if (const auto* touch = model.Get<TouchItem>(slot)) {
      texts.push_back({.text = ReadableText(touch->name), .place = touch->area, .touch = *touch});
    }
  }
  std::ranges::sort(texts, {}, [](const ScreenText& text) {
    return std::tuple(text.place.y, text.place.x, text.place.width, text.touch.has_value());
  });
}

// Whether a reader takes the two for one line: their middles are less apart than half the smaller height.
bool AreBeside(const PixelRect& one, const PixelRect& other) {
  const int apart = std::abs(2 * one.y + one.height - 2 * other.y - other.height);
  return apart < std::min(one.height, other.height);
}

std::string LinesOf(std::vector<ScreenText> texts) {
  std::erase_if(texts, [](const ScreenText& text) { return text.touch.has_value(); });
  std::string lines;
  while (!texts.empty()) {
    const PixelRect first = texts.front().place;
    std::vector<ScreenText> line;
    std::erase_if(texts, [&](ScreenText& text) {
      const bool isBeside = AreBeside(first, text.place);
      if (isBeside) line.push_back(std::move(text));
      return isBeside;
    });
    std::ranges::sort(line, {}, [](const ScreenText& text) { return std::tuple(text.place.x, text.place.y); });
    for (const ScreenText& text : line) lines += (&text == line.data() ? "" : "  ") + text.text;
    lines += '\n';
  }
  return lines;
}

}  // namespace

std::string ReadableText(std::string_view ansi) {
  std::string text(ansi);
  std::ranges::replace_if(
      text, [](char character) { return static_cast<unsigned char>(character) < ' ' || character == 0x7F; }, ' ');
  text.erase(text.find_last_not_of(' ') + 1);
  return AnsiToUtf8(text);
}

std::vector<ScreenText> TextsOf(const ScreenModel& model, const ScreenResources& resources) {
  std::vector<ScreenText> texts;
  if (model.Panel().kind == PanelKind::Text) {
    AddRows(model, texts);
  } else {
    AddItems(model, resources, texts);
  }
  return texts;
}

std::string PlainText(const ScreenModel& model, const ScreenResources& resources) {
  if (model.Panel().kind == PanelKind::Colour) return LinesOf(TextsOf(model, resources));
  std::string lines;
  for (int row = 0; row < model.Panel().height; ++row) {
    const auto* item = model.Get<RowItem>(static_cast<std::uint16_t>(kFirstRowSlot + row));
    lines += (item != nullptr ? ReadableText(item->characters) : std::string()) + "\n";
  }
  return lines;
}

std::string_view RoleName(TouchRole role) {
  switch (role) {
    case TouchRole::Button:
      return "button";
    case TouchRole::HeldButton:
      return "button to hold";
    case TouchRole::Switch:
      return "switch";
    case TouchRole::Entry:
      return "entry";
    case TouchRole::PageLink:
      return "link";
  }
  return "place";
}

std::string TouchText(const TouchItem& touch) {
  std::string text = std::string(RoleName(touch.role)) + " \"" + ReadableText(touch.name) + "\"";
  if (touch.isOn) text += ", on";
  if (touch.isDisabled) text += ", disabled";
  return text;
}

}  // namespace kv::panel
