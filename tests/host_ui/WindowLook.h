#pragma once

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <map>
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
      const bool isForWantOfRoom = menu->parent()->objectName().startsWith("qt_");  // what a bar cannot show
      if (!menu->actions().isEmpty() && !isForWantOfRoom)
        Add(1, "menu " + menu->title().toStdString()), AddActions(*menu, 2);
    }
    AddKeys(window);
  }

  [[nodiscard]] const std::string& Text() const { return mText; }

 private:
  template <typename... Kind>
  static std::map<std::string, const QObject*> NewOnes() {
    return {{Kind::staticMetaObject.className(), new Kind}...};
  }
  // One of the toolkit's kind that nobody has changed. They are never taken down, for the toolkit ends before them.
  static const QObject& NewOne(const QObject& like) {
    static const auto& kinds = *new auto(
        NewOnes<QObject, QAction, QWidget, QFrame, QLabel, QLineEdit, QPushButton, QToolButton, QCheckBox, QRadioButton,
                QComboBox, QTableView, QTreeView, QListView, QPlainTextEdit, QTextBrowser, QProgressBar, QSplitter,
                QScrollArea, QTabWidget, QStackedWidget, QToolBar, QDialog, QMainWindow, QMenu, QGroupBox>());
    const QMetaObject* kind = like.metaObject();
    while (!kinds.contains(kind->className())) kind = kind->superClass();
    return *kinds.at(kind->className());
  }
  // What is told otherwise, what is a place, and what the toolkit alone decides.
  static bool IsUntold(const char* property) {
    static const QStringList untold =
        QString(
            "acceptableInput backButtonAvailable baseSize blockCount childrenRect childrenRegion count "
            "currentData currentIndex cursor cursorPosition cursorWidth displayText document down focus font "
            "forwardButtonAvailable frameGeometry frameRect frameSize frameWidth geometry hasSelectedText height "
            "html iconText isActiveWindow layoutDirection locale markdown maximized maximumHeight maximumSize "
            "maximumWidth minimized minimumHeight minimumSize minimumSizeHint minimumWidth modified "
            "mouseTracking normalGeometry objectName palette picture pixmap plainText pos rect redoAvailable "
            "searchPaths size sizeHint sizeIncrement undoAvailable visible width windowIcon windowIconText x y ")
            .split(' ');
    return untold.contains(property);
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
    if (value.typeId() == QMetaType::QIcon) return value.value<QIcon>().name().toStdString();
    if (value.typeId() == QMetaType::QSizePolicy) {
      const auto policy = value.value<QSizePolicy>();
      const int numbers[] = {policy.horizontalPolicy(), policy.verticalPolicy(), policy.horizontalStretch(),
                             policy.verticalStretch()};
      return QString("%1,%2,%3,%4").arg(numbers[0]).arg(numbers[1]).arg(numbers[2]).arg(numbers[3]).toStdString();
    }
    return value.toString().replace('\n', " / ").toStdString();
  }

  // All that somebody has set, that of the object's own class before that of those below it.
  static std::string Properties(const QObject& object) {
    std::string facts;
    const QObject& usual = NewOne(object);
    const std::string tip = object.property("toolTip").toString().replace('\n', " / ").toStdString();
    for (const QMetaObject* kind = object.metaObject(); kind; kind = kind->superClass()) {
      for (int at = kind->propertyOffset(); at < kind->propertyCount(); ++at) {
        const QMetaProperty property = kind->property(at);
        const bool wantsRoom = object.objectName() == "toolBar" && !qstrcmp(property.name(), "toolButtonStyle");
        if (wantsRoom || IsUntold(property.name())) continue;
        const std::string value = Value(object, property);
        const bool isKnown = at < usual.metaObject()->propertyCount();
        if (value == (isKnown ? Value(usual, property) : "")) continue;
        const bool isTip = std::string_view(property.name()) != "toolTip" && value == tip;
        facts += std::string(" ") + property.name() + "=" + (isTip ? "tip" : value);
      }
    }
    for (const QByteArray& name : object.dynamicPropertyNames()) {
      if (!name.startsWith("_q_") && name != "kvTip")
        facts += " " + (name + "=" + object.property(name).toByteArray()).toStdString();
    }
    return facts;
  }

  static std::string Facts(const QObject& object) {
    std::string facts = " " + object.objectName().toStdString() + Properties(object);
    if (const auto* label = dynamic_cast<const QLabel*>(&object); label && label->buddy()) {
      facts += " for " + NameOf(*label->buddy());
    }
    const auto* widget = dynamic_cast<const QWidget*>(&object);
    if (widget && widget->isWindow()) facts += " icon " + widget->windowIcon().name().toStdString();
    if (widget && widget->font().bold()) facts += " bold";
    if (widget && widget->palette().color(QPalette::WindowText) == QColor(Qt::red)) facts += " red";
    if (widget && !widget->inherits("QToolBar") && !widget->inherits("QMenu")) {
      for (const QAction* action : widget->actions()) {
        facts += " /" + (action->objectName().isEmpty() ? action->text() : action->objectName()).toStdString();
      }
    }
    const auto* action = dynamic_cast<const QAction*>(&object);
    if (action && !action->isVisible()) facts += " hidden";
    const auto keys = action ? action->shortcuts() : QList<QKeySequence>();
    if (keys.size() > 1) facts += " or " + keys.back().toString().toStdString();
    if (action && action->actionGroup()) facts += " one of " + std::to_string(action->actionGroup()->actions().size());
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
    if (widget.inherits("QToolBar") || widget.inherits("QMenu")) return AddActions(widget, depth + 1);
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
      const QHeaderView& head = *view.horizontalHeader();
      const int resized = static_cast<int>(head.sectionResizeMode(column));
      const std::string told = heading(Qt::ToolTipRole).toString().toStdString();
      Add(depth, "column " + heading(Qt::DisplayRole).toString().toStdString() +
                     ((alignment & Qt::AlignLeft) != 0 ? " left" : "") +
                     (resized == 0 ? "" : " resized " + std::to_string(resized)) +
                     (view.isColumnHidden(column) ? " hidden" : "") + (told.empty() ? "" : " tip " + told));
    }
    Add(depth, "heads" + Properties(*view.horizontalHeader()) + (view.horizontalHeader()->isHidden() ? " hidden" : ""));
    const QHeaderView& rows = *view.verticalHeader();
    if (rows.isHidden()) return Add(depth, "without row heads");
    std::string heads = "row heads";
    for (int row = 0; row < view.model()->rowCount(); ++row)
      heads += " " + view.model()->headerData(row, Qt::Vertical).toString().toStdString();
    Add(depth, heads + Properties(rows));
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
      for (int column = 0; column < cells.size(); ++column) AddCell(model->index(row, column, parent), depth + 1);
      AddRows(view, depth + 1, model->index(row, 0, parent));
    }
    const QModelIndex current = view.currentIndex();
    if (parent.isValid() || !current.isValid()) return;
    QString told = QString("at %1,%2").arg(current.row()).arg(current.column());
    for (const int role : {Qt::AccessibleTextRole, Qt::ToolTipRole}) told += "|" + current.data(role).toString();
    Add(depth, told.replace('\n', " / ").toStdString());
    for (const QWidget* editor : view.viewport()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      if (editor->isVisible()) AddWidget(*editor, depth + 1);
    }
  }

  // What a cell tells beside its text, and what can be done with it.
  void AddCell(const QModelIndex& cell, int depth) {
    const auto told = [&](int role) { return cell.data(role).toString().replace('\n', " / ").toStdString(); };
    std::string facts;
    for (const auto& [role, name] : {std::pair(Qt::ToolTipRole, " tip "),
                                     {Qt::AccessibleTextRole, " read "},
                                     {Qt::AccessibleDescriptionRole, " described "},
                                     {Qt::CheckStateRole, " checked "}}) {
      if (!told(role).empty()) facts += name + told(role);
    }
    const int alignment = cell.data(Qt::TextAlignmentRole).toInt();
    if (alignment != 0) facts += " alignment " + std::to_string(alignment);
    const auto icon = cell.data(Qt::DecorationRole).value<QIcon>();
    if (!icon.isNull()) facts += " icon " + icon.name().toStdString();
    constexpr int kUsual = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const int flags = cell.flags() & ~(Qt::ItemNeverHasChildren | Qt::ItemIsDragEnabled);
    if (flags != kUsual) facts += " flags " + std::to_string(flags);
    if (!facts.empty()) Add(depth, "cell " + std::to_string(cell.column()) + facts);
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
