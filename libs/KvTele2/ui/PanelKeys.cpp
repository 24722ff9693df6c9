#include "KvTele2/ui/PanelKeys.h"

#include <QApplication>
#include <QGridLayout>
#include <QStatusTipEvent>
#include <algorithm>
#include <array>

#include "KvTele2/panel/ScreenText.h"
#include "KvTele2/ui/PanelKeyButton.h"
#include "KvTele2/ui/PanelKeyMap.h"
#include "desktop/ui/Commands.h"

namespace kv {
namespace {

struct KeyPlace {
  std::string_view name;
  int row;
  int column;
};

// clang-format off
constexpr std::array kPlaces{
    KeyPlace{"F1", 0, 0},  KeyPlace{"F2", 0, 1},    KeyPlace{"F3", 0, 2},  KeyPlace{"F4", 0, 3},
    KeyPlace{"F5", 1, 0},  KeyPlace{"F6", 1, 1},    KeyPlace{"F7", 1, 2},  KeyPlace{"F8", 1, 3},
    KeyPlace{"7", 2, 0},   KeyPlace{"8", 2, 1},     KeyPlace{"9", 2, 2},   KeyPlace{"Esc", 2, 3},
    KeyPlace{"4", 3, 0},   KeyPlace{"5", 3, 1},     KeyPlace{"6", 3, 2},   KeyPlace{"Del", 3, 3},
    KeyPlace{"1", 4, 0},   KeyPlace{"2", 4, 1},     KeyPlace{"3", 4, 2},   KeyPlace{"Up", 4, 3},
    KeyPlace{"0", 5, 0},   KeyPlace{".", 5, 1},     KeyPlace{"-", 5, 2},   KeyPlace{"Down", 5, 3},
    KeyPlace{"Left", 6, 0}, KeyPlace{"Right", 6, 1}, KeyPlace{"Enter", 6, 3},
};
// clang-format on

std::optional<panel::Lamp> LampOf(const PanelKey& key, const panel::ScreenModel& model) {
  if (!key.lamp) return std::nullopt;
  const auto* lamps = model.Get<panel::LampsItem>(panel::kLampsSlot);
  return lamps && *key.lamp < lamps->lamps.size() ? lamps->lamps[*key.lamp] : panel::Lamp::Off;
}

// The foot of the window shows it anew only when the pointer comes.
void ShowTip(QAbstractButton& button, const QString& tip, const QString& keys) {
  Describe(button, tip, keys);
  QStatusTipEvent told(button.statusTip());
  if (button.underMouse()) QApplication::sendEvent(&button, &told);
}

}  // namespace

PanelKeys::PanelKeys(PanelPress& press, QWidget* parent) : QWidget(parent), mPress(press) {
  setObjectName("panKeys");
  new QGridLayout(this);
  hide();
}

void PanelKeys::Build(const std::vector<PanelKey>& keys) {
  for (QWidget* button : mButtons) delete button;
  mButtons.clear();
  mKeys = keys;
  auto* grid = static_cast<QGridLayout*>(layout());
  int more = kPlaces.back().row + 1;
  for (const PanelKey& key : mKeys) {
    auto* button = new PanelKeyButton(QString::fromStdString(panel::ReadableText(key.name)), this);
    button->onDown = [this, id = key.id] { mPress.Begin({.key = id}); };
    button->onUp = [this] { mPress.End(); };
    const auto place = std::ranges::find(kPlaces, std::string_view(key.name), &KeyPlace::name);
    if (place == kPlaces.end()) {
      grid->addWidget(button, more++, 0, 1, 4);
    } else {
      grid->addWidget(button, place->row, place->column);
    }
    mButtons.push_back(button);
  }
  grid->setRowStretch(more, 1);
}

void PanelKeys::Follow(const panel::PanelSession* session) {
  const auto* model = session ? session->Model() : nullptr;
  const std::vector<PanelKey> keys = model ? model->Panel().keys : std::vector<PanelKey>{};
  if (keys != mKeys) Build(keys);
  FitInto(mRoom);
  const bool isOperated = session && session->State().mode == panel::PanelMode::Operate;
  for (std::size_t i = 0; i < mKeys.size(); ++i) {
    const auto slot = model->MeaningOf(mKeys[i].id);
    const auto* touch = slot ? model->Get<panel::TouchItem>(*slot) : nullptr;
    const QString meaning = touch ? QString::fromStdString(panel::TouchText(*touch)) : QString();
    mButtons[i]->Show(meaning, LampOf(mKeys[i], *model));
    QString tip = meaning.isEmpty() ? "Does nothing on this page" : "Presses " + meaning;
    if (!isOperated && !meaning.isEmpty()) tip += ", once the panel is operated";
    if (tip != mButtons[i]->accessibleDescription()) ShowTip(*mButtons[i], tip, KeyboardText(mKeys[i]));
  }
}

void PanelKeys::FitInto(int room) {
  constexpr int kScreenLetters = 24;
  mRoom = room;
  setVisible(!mKeys.empty() && room >= sizeHint().width() + kScreenLetters * fontMetrics().averageCharWidth());
}

void PanelKeys::ShowBlinking(bool isSeen) {
  for (PanelKeyButton* button : mButtons) button->ShowBlinking(isSeen);
}

std::optional<panel::PanelPlace> PanelKeys::PressedNow() const {
  const bool isDown = std::ranges::any_of(mButtons, [](const PanelKeyButton* button) { return button->isDown(); });
  return isDown && isVisible() && isActiveWindow() ? mPress.Now() : std::nullopt;
}

}  // namespace kv
