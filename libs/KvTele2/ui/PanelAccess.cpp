#include "KvTele2/ui/PanelAccess.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <QWindow>

#include "KvTele2/ui/PanelView.h"

namespace kv {
namespace {

using panel::ScreenText;
using panel::TouchRole;

QAccessible::Role RoleOf(const ScreenText& text) {
  if (!text.touch) return text.key ? QAccessible::PushButton : QAccessible::StaticText;
  switch (text.touch->role) {
    case TouchRole::Switch:
      return QAccessible::CheckBox;
    case TouchRole::Entry:
      return QAccessible::EditableText;
    case TouchRole::PageLink:
      return QAccessible::Link;
    case TouchRole::Button:
    case TouchRole::HeldButton:
      break;
  }
  return QAccessible::PushButton;
}

// One text, or one thing to press, by its place in the order in which one reads.
class ItemAccess final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  ItemAccess(PanelView& view, std::size_t index) : mView(&view), mIndex(index) {}

  [[nodiscard]] bool isValid() const override { return Text() != nullptr; }
  [[nodiscard]] QObject* object() const override { return nullptr; }
  [[nodiscard]] QWindow* window() const override { return mView ? mView->window()->windowHandle() : nullptr; }
  [[nodiscard]] QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(mView); }
  [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
  [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  [[nodiscard]] int childCount() const override { return 0; }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }

  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    const ScreenText* text = Text();
    if (!text) return {};
    if (kind == QAccessible::Name) return QString::fromStdString(text->text);
    const bool isDescribed = kind == QAccessible::Description && text->touch;
    return isDescribed ? QString::fromStdString(panel::TouchText(*text->touch)) : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}
  [[nodiscard]] QRect rect() const override {
    const ScreenText* text = Text();
    if (!text || text->place.IsEmpty()) return {};
    const QRect place = mView->PlaceOf(text->place);
    return {mView->mapToGlobal(place.topLeft()), place.size()};
  }
  [[nodiscard]] QAccessible::Role role() const override { return Text() ? RoleOf(*Text()) : QAccessible::StaticText; }
  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state;
    const ScreenText* text = Text();
    state.invalid = text == nullptr;
    state.readOnly = text && !text->touch;
    if (!text || !text->touch) return state;
    state.disabled = text->touch->isDisabled;
    state.pressed = text->touch->isPressed;
    state.checkable = text->touch->role == TouchRole::Switch;
    state.checked = text->touch->isOn;
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    const bool isPressable = Text() && Text()->touch;
    return type == QAccessible::ActionInterface && isPressable ? static_cast<QAccessibleActionInterface*>(this)
                                                               : nullptr;
  }
  [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& name) override {
    const ScreenText* text = Text();
    if (!text || !text->touch || name != pressAction()) return;
    const panel::PixelRect& area = text->place;
    mView->Press().Tap({.key = text->key, .x = area.x + area.width / 2, .y = area.y + area.height / 2});
  }
  [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  [[nodiscard]] const ScreenText* Text() const {
    return mView && mIndex < mView->Texts().size() ? &mView->Texts()[mIndex] : nullptr;
  }

  QPointer<PanelView> mView;
  std::size_t mIndex;
};

class ViewAccess final : public QAccessibleWidget {
 public:
  explicit ViewAccess(PanelView& view) : QAccessibleWidget(&view, QAccessible::Pane), mView(view) {}
  ~ViewAccess() override {
    for (const QAccessible::Id id : mItems) QAccessible::deleteAccessibleInterface(id);
  }

  [[nodiscard]] int childCount() const override { return static_cast<int>(mView.Texts().size()); }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    const auto at = static_cast<std::size_t>(index);
    while (mItems.size() <= at) {
      mItems.push_back(QAccessible::registerAccessibleInterface(new ItemAccess(mView, mItems.size())));
    }
    return QAccessible::accessibleInterface(mItems[at]);
  }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* item) const override {
    for (std::size_t i = 0; i < mItems.size(); ++i) {
      if (QAccessible::accessibleInterface(mItems[i]) == item) return static_cast<int>(i);
    }
    return -1;
  }
  [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
    for (int i = childCount() - 1; i >= 0; --i) {  // what can be pressed lies above its words
      if (child(i)->rect().contains(x, y)) return child(i);
    }
    return nullptr;
  }

 private:
  PanelView& mView;
  mutable std::vector<QAccessible::Id> mItems;
};

QAccessibleInterface* MakeAccess(const QString&, QObject* object) {
  auto* view = dynamic_cast<PanelView*>(object);
  return view ? new ViewAccess(*view) : nullptr;
}

void Tell(QAccessibleInterface* item, QAccessible::Event what) {
  QAccessibleEvent event(item, what);
  QAccessible::updateAccessibility(&event);
}

}  // namespace

void LetScreenReadersIn() {
  static const bool isKnown = [] {
    QAccessible::installFactory(MakeAccess);
    return true;
  }();
  (void)isKnown;
}

// Another number of texts, or other places: another page. Else each that reads otherwise is told by itself.
void TellScreenReaders(PanelView& view, const std::vector<ScreenText>& before) {
  if (!QAccessible::isActive()) return;
  QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&view);
  const std::vector<ScreenText>& texts = view.Texts();
  if (!access || texts.size() != before.size()) {
    if (access) Tell(access, QAccessible::ObjectReorder);
    return;
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (texts[i].text != before[i].text) Tell(access->child(static_cast<int>(i)), QAccessible::NameChanged);
    if (texts[i].touch == before[i].touch) continue;
    QAccessible::State changed;
    changed.checked = changed.disabled = changed.pressed = true;
    QAccessibleStateChangeEvent event(access->child(static_cast<int>(i)), changed);
    QAccessible::updateAccessibility(&event);
  }
}

}  // namespace kv
