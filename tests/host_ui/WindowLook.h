#pragma once

#include <QAction>
#include <QComboBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>
#include <set>
#include <string>
#include <vector>

namespace kv::test {

// A window in words: what stands in it in which order, how it reads, what it allows, where the keys go. No places and
// sizes, which follow fonts and screens; nothing of the toolkit's own, whose names begin with a q.
class WindowLook {
 public:
  explicit WindowLook(const QWidget& window) {
    AddWidget(window, 0);
    for (const QAction* action : window.findChildren<QAction*>()) {
      const bool isOurs = !action->objectName().isEmpty() && !action->objectName().startsWith("qt_") &&
                          !action->objectName().startsWith("_q_");
      if (isOurs) Add(1, "command" + Facts(*action));
    }
    for (const QMenu* menu : window.findChildren<QMenu*>()) {
      if (!menu->actions().isEmpty()) Add(1, "menu " + menu->title().toStdString()), AddActions(*menu, 2);
    }
    AddKeys(window);
  }

  [[nodiscard]] const std::string& Text() const { return mText; }

 private:
  struct Property {
    const char* name;
    std::vector<std::string> usual = {""};  // not worth a word
  };
  static const std::vector<Property>& Properties() {
    static const std::vector<Property> properties = {
        {"windowTitle"},
        {"title"},
        {"text"},
        {"source"},
        {"currentText"},
        {"shortcut"},
        {"toolTip"},
        {"accessibleName"},
        {"placeholderText"},
        {"enabled", {"true"}},
        {"default", {"false"}},
        {"autoDefault", {"false"}},
        {"checkable", {"false"}},
        {"checked", {"false"}},
        {"readOnly", {"false"}},
        {"insertPolicy", {"InsertAtBottom"}},
        {"wordWrap", {"false"}},
        {"textFormat", {"AutoText"}},
        {"textInteractionFlags", {"LinksAccessibleByMouse"}},
        {"margin", {"0"}},
        {"alignment", {"", "AlignLeading|AlignVCenter", "AlignLeft|AlignLeading"}},
        {"frameShape", {"NoFrame", "StyledPanel"}},
        {"toolButtonStyle", {"ToolButtonIconOnly"}},
        {"iconSize", {"16", "-1"}},
        {"widgetResizable", {"false"}},
        {"autoFillBackground", {"false"}},
        {"selectionBehavior", {"SelectItems"}},
        {"selectionMode", {"ExtendedSelection"}},
        {"editTriggers", {"DoubleClicked|EditKeyPressed|AnyKeyPressed"}},
        {"tabKeyNavigation", {"true"}},
        {"childrenCollapsible", {"true"}},
        {"echoMode", {"Normal"}},
        {"maxLength", {"32767"}},
        {"maximum"},
        {"value"},
        {"modal", {"false"}},
        {"acceptDrops", {"false", "true"}},
        {"alternatingRowColors", {"false"}},
        {"showGrid", {"true"}},
        {"sortingEnabled", {"false"}},
        {"textElideMode", {"ElideRight"}},
        {"lineWrapMode", {"WidgetWidth"}},
        {"tabChangesFocus", {"false"}},
        {"horizontalScrollBarPolicy", {"ScrollBarAsNeeded"}},
        {"verticalScrollBarPolicy", {"ScrollBarAsNeeded"}},
    };
    return properties;
  }

  void Add(int depth, const std::string& line) {
    mText += std::string(2 * static_cast<std::size_t>(depth), ' ') + line + "\n";
  }

  static std::string NameOf(const QObject& object) {
    const QString kind = QString(object.metaObject()->className()).section("::", -1);
    return (object.objectName().isEmpty() ? kind : object.objectName()).toStdString();
  }

  static std::string Value(const QObject& object, const QMetaProperty& property) {
    const QVariant value = property.read(&object);
    if (property.isEnumType()) return property.enumerator().valueToKeys(value.toInt()).toStdString();
    if (value.typeId() == QMetaType::QSize) return std::to_string(value.toSize().height());
    return value.toString().replace('\n', " / ").toStdString();
  }

  static std::string Facts(const QObject& object) {
    std::string facts = " " + object.objectName().toStdString();
    for (const auto& [name, usual] : Properties()) {
      const int at = object.metaObject()->indexOfProperty(name);
      if (at < 0) continue;
      const std::string value = Value(object, object.metaObject()->property(at));
      if (std::ranges::find(usual, value) == usual.end()) facts += std::string(" ") + name + "=" + value;
    }
    if (const auto* label = dynamic_cast<const QLabel*>(&object); label && label->buddy()) {
      facts += " for " + NameOf(*label->buddy());
    }
    const auto* widget = dynamic_cast<const QWidget*>(&object);
    if (widget && widget->font().bold()) facts += " bold";
    if (widget && widget->palette().color(QPalette::WindowText) == QColor(Qt::red)) facts += " red";
    if (const auto* action = dynamic_cast<const QAction*>(&object); action && !action->isVisible()) facts += " hidden";
    if (const auto* text = dynamic_cast<const QPlainTextEdit*>(&object)) {
      facts += " says " + text->toPlainText().replace('\n', " / ").toStdString();
    }
    if (const auto* box = dynamic_cast<const QMessageBox*>(&object); box && box->escapeButton()) {
      facts += " Escape is " + NameOf(*box->escapeButton());
    }
    return facts;
  }

  void AddWidget(const QWidget& widget, int depth) {
    const QString kind = QString(widget.metaObject()->className()).section("::", -1);
    Add(depth, kind.toStdString() + Facts(widget) + (widget.isHidden() ? " hidden" : ""));
    if (const auto* box = dynamic_cast<const QMessageBox*>(&widget)) {
      for (const QAbstractButton* button : box->buttons()) AddWidget(*button, depth + 1);
      return;
    }
    if (const auto* view = dynamic_cast<const QTableView*>(&widget)) AddColumns(*view, depth + 1);
    if (const auto* view = dynamic_cast<const QAbstractItemView*>(&widget)) return AddRows(*view, depth + 1);
    if (const auto* area = dynamic_cast<const QScrollArea*>(&widget)) return AddWidget(*area->widget(), depth + 1);
    if (const auto* splitter = dynamic_cast<const QSplitter*>(&widget)) return AddShares(*splitter, depth + 1);
    if (const auto* bar = dynamic_cast<const QToolBar*>(&widget)) return AddActions(*bar, depth + 1);
    if (const auto* tabs = dynamic_cast<const QTabWidget*>(&widget)) return AddTabs(*tabs, depth + 1);
    if (const auto* list = dynamic_cast<const QComboBox*>(&widget)) return AddItems(*list, depth + 1);
    if (widget.inherits("QLineEdit")) return;
    const auto* label = dynamic_cast<const QLabel*>(&widget);
    if (label && !label->pixmap().isNull()) Add(depth + 1, "a picture");
    std::set<const QWidget*> placed;
    if (widget.layout()) AddLayout(*widget.layout(), depth + 1, placed);
    for (const QWidget* child : widget.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      const bool isInner = child->objectName().startsWith("qt_") || child->isWindow() || !child->isVisible();
      if (!isInner && !placed.contains(child)) AddWidget(*child, depth + 1);
    }
  }

  void AddLayout(const QLayout& layout, int depth, std::set<const QWidget*>& placed) {
    const bool isBare = layout.contentsMargins().isNull();
    Add(depth, std::string("in ") + layout.metaObject()->className() + (isBare ? " without margins" : ""));
    const auto* form = dynamic_cast<const QFormLayout*>(&layout);
    for (int i = 0; i < (form ? 3 * form->rowCount() : layout.count()); ++i) {
      const auto role = static_cast<QFormLayout::ItemRole>(i % 3);
      QLayoutItem* item = form ? form->itemAt(i / 3, role) : layout.itemAt(i);
      if (!item) continue;
      const std::string place = PlaceIn(layout, i, *item);
      if (!place.empty()) Add(depth + 1, place);
      if (const QWidget* widget = item->widget()) {
        placed.insert(widget);
        AddWidget(*widget, depth + 1);
      } else if (item->layout()) {
        AddLayout(*item->layout(), depth + 1, placed);
      } else {
        Add(depth + 1, "room");
      }
    }
  }

  // What follows has this cell, and that share of what room is left.
  static std::string PlaceIn(const QLayout& layout, int index, const QLayoutItem& item) {
    QStringList place;
    if (const auto* grid = dynamic_cast<const QGridLayout*>(&layout)) {
      int cell[4];
      grid->getItemPosition(index, &cell[0], &cell[1], &cell[2], &cell[3]);
      place << QString("row %1 column %2 rows %3 columns %4").arg(cell[0]).arg(cell[1]).arg(cell[2]).arg(cell[3]);
    }
    const auto* box = dynamic_cast<const QBoxLayout*>(&layout);
    if (box && box->stretch(index) != 0) place << QString("share %1").arg(box->stretch(index));
    if (item.alignment() != 0) place << QString("alignment %1").arg(static_cast<int>(item.alignment()));
    return place.join(' ').toStdString();
  }

  void AddTabs(const QTabWidget& tabs, int depth) {
    for (int i = 0; i < tabs.count(); ++i) {
      Add(depth, "tab " + tabs.tabText(i).toStdString());
      AddWidget(*tabs.widget(i), depth + 1);
    }
  }

  void AddShares(const QSplitter& splitter, int depth) {
    for (int i = 0; i < splitter.count(); ++i) {
      const QSizePolicy policy = splitter.widget(i)->sizePolicy();
      const bool isHigh = splitter.orientation() == Qt::Vertical;
      Add(depth, "share " + std::to_string(isHigh ? policy.verticalStretch() : policy.horizontalStretch()));
      AddWidget(*splitter.widget(i), depth + 1);
    }
  }

  // What can be entered as well, such as a port, is what this computer has.
  void AddItems(const QComboBox& list, int depth) {
    for (int i = 0; i < list.count() && !list.isEditable(); ++i) Add(depth, "item " + list.itemText(i).toStdString());
  }

  void AddActions(const QWidget& bar, int depth) {
    for (const QAction* action : bar.actions()) {
      const bool isNamed = !action->objectName().isEmpty();
      const std::string shown = bar.inherits("QToolBar") ? " " + action->iconText().toStdString() : "";
      Add(depth, action->isSeparator() ? "|" : isNamed ? NameOf(*action) + shown : "item" + Facts(*action));
    }
  }

  void AddColumns(const QTableView& view, int depth) {
    constexpr int kMost = 12;  // the rest of the operand grid reads like its beginning
    for (int column = 0; column < std::min(view.model()->columnCount(), kMost); ++column) {
      const auto heading = [&](int role) { return view.model()->headerData(column, Qt::Horizontal, role); };
      const QVariant own = heading(Qt::TextAlignmentRole);
      const int alignment = own.isValid() ? own.toInt() : view.horizontalHeader()->defaultAlignment().toInt();
      Add(depth, "column " + heading(Qt::DisplayRole).toString().toStdString() +
                     ((alignment & Qt::AlignLeft) != 0 ? " left" : "") +
                     ((view.model()->index(0, column).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight) != 0
                          ? " with cells at the right"
                          : "") +
                     (view.isColumnHidden(column) ? " hidden" : ""));
    }
    const QHeaderView& rows = *view.verticalHeader();
    const std::string last = view.horizontalHeader()->stretchLastSection() ? ", the last takes the rest" : "";
    Add(depth, (rows.isHidden() ? "without row heads" : "with row heads") + last);
  }

  // The first cells, whether they are selected, what lies below a row, and what is told of the one that is current.
  void AddRows(const QAbstractItemView& view, int depth, const QModelIndex& parent = {}) {
    constexpr int kMost = 12;
    const QAbstractItemModel* model = view.model();
    for (int row = 0; model && row < std::min(model->rowCount(parent), kMost); ++row) {
      QStringList cells;
      for (int column = 0; column < std::min(model->columnCount(parent), kMost); ++column) {
        const QModelIndex index = model->index(row, column, parent);
        const bool isSelected = view.selectionModel()->isSelected(index);
        cells << (isSelected ? "*" : "") + index.data().toString();
      }
      const QString text = cells.join('|');
      if (!QString(text).remove('|').isEmpty()) Add(depth, "row " + std::to_string(row) + " " + text.toStdString());
      AddRows(view, depth + 1, model->index(row, 0, parent));
    }
    const QModelIndex current = view.currentIndex();
    if (parent.isValid() || !current.isValid()) return;
    Add(depth, "at " + std::to_string(current.row()) + "," + std::to_string(current.column()));
    for (const int role : {Qt::AccessibleTextRole, Qt::ToolTipRole}) {
      const QString told = current.data(role).toString().replace('\n', " / ");
      if (!told.isEmpty()) Add(depth + 1, told.toStdString());
    }
    for (const QWidget* editor : view.viewport()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      if (editor->isVisible()) AddWidget(*editor, depth + 1);
    }
  }

  void AddKeys(const QWidget& window) {
    const QWidget* first = window.focusWidget();
    std::string order = first ? "the keys go to " + NameOf(*first) : "no control has the keys";
    const QWidget* at = first ? first : &window;
    for (const QWidget* next = at->nextInFocusChain(); next != at; next = next->nextInFocusChain()) {
      const bool isReached = (next->focusPolicy() & Qt::TabFocus) != 0 && next->isVisible() && next->isEnabled();
      if (isReached) order += ", " + NameOf(*next);
    }
    Add(1, order);
  }

  std::string mText;
};

}  // namespace kv::test
