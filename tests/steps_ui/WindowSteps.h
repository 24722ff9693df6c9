#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTableView>
#include <map>
#include <string>
#include <vector>

#include "tests/desktop_ui/QtFixture.h"
#include "tests/host_ui/WindowLook.h"
#include "tests/host_ui/WindowPlaces.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// What a user does in the windows, step by step, and what each step changes in any of them: every text, every state,
// every box with its buttons. A step is a line "> WORD CONTROL TEXT"; a control is meant in the window in front.
class WindowSteps {
 public:
  WindowSteps(const TemporaryFolder& home, std::vector<std::string> steps) : mHome(home), mSteps(std::move(steps)) {}

  // Does them all, and returns them with what came of each.
  std::string Do() {
    Go();
    for (std::size_t at = 0; mAt != at || at == 0;) {
      at = mAt;
      if (QTest::qWaitFor([this] { return mIsAtEnd; }, 3 * kPatience)) return mText;
    }
    ADD_FAILURE() << "stuck behind\n" << mText;
    mSteps.resize(mAt);
    Leave();
    return mText;
  }

 private:
  using Lines = std::vector<std::string>;
  struct Argument {
    std::string name;
    std::string text;
    [[nodiscard]] QString Words() const { return QString::fromStdString(text); }
  };

  static QWidget* Front() {
    QWidget* popup = QApplication::activePopupWidget();
    return popup ? popup : QApplication::activeModalWidget();
  }

  // A step that has opened a box waits for its end in this very call: the next one is done while it waits.
  void Go() {
    QTimer::singleShot(5, qApp, [this] {
      const bool isWaiting = !mFrontAtStart.empty() && mFrontAtStart.back() == Front();
      if (isWaiting) return Go();
      Settle();
      Note();
      if (mAt == mSteps.size()) return Leave();
      const std::string step = mSteps[mAt++];
      mText += step + "\n";
      Go();
      mFrontAtStart.push_back(Front());
      try {
        Perform(step);
      } catch (const std::exception& failure) {
        ADD_FAILURE() << step << ": " << failure.what() << "\nbehind\n" << mText;
        mSteps.resize(mAt);
      }
      mFrontAtStart.pop_back();
    });
  }

  // Until nothing changes by itself any more: a screen that comes, a list that is filled, a link that a tool gives
  // back.
  void Settle() {
    constexpr int kQuiet = 120;  // milliseconds
    const auto says = [this](const char* label, const char* text) { return In<QLabel>(label).text().startsWith(text); };
    const auto isUnderWay = [&] {
      return !Front() && (says("lblLinkState", "Used by a tool") || says("lblPanelMode", "Asking"));
    };
    for (Lines before; before != AllLines() || isUnderWay(); QTest::qWait(kQuiet)) before = AllLines();
  }

  // Closes what is open still.
  void Leave() {
    mIsAtEnd = Front() == nullptr;
    if (mIsAtEnd) return;
    Front()->close();
    QTimer::singleShot(5, qApp, [this] { Leave(); });
  }

  void Perform(const std::string& step) {
    const QStringList words = QString::fromStdString(step).split(' ');
    const Argument argument{words.value(2).toStdString(), words.mid(3).join(' ').toStdString()};
    const auto found = Verbs().find(words.value(1).toStdString());
    if (found == Verbs().end()) throw std::runtime_error("no such step");
    found->second(*this, argument);
  }

  template <typename Control>
  Control& In(const std::string& name) const {
    QWidgetList windows = QApplication::topLevelWidgets();
    if (QWidget* front = Front()) windows.prepend(front);
    for (QWidget* window : windows) {
      if (!window->isVisible()) continue;
      auto* itself = dynamic_cast<Control*>(window);
      if (itself && window->objectName() == name.c_str()) return *itself;
      if (auto* control = window->findChild<Control*>(name.c_str())) return *control;
    }
    throw std::runtime_error("there is no " + name);
  }
  void Do(QAction& command) { command.isEnabled() ? command.trigger() : Add("it is not enabled"); }
  void Do(QAbstractButton& button) { button.isEnabled() ? button.click() : Add("it is not enabled"); }
  [[nodiscard]] std::filesystem::path File(const std::string& name) const { return mHome.Path() / name; }

  using Verb = std::function<void(WindowSteps&, const Argument&)>;
  static const std::map<std::string, Verb>& Verbs() {
    static const std::map<std::string, Verb> verbs = {
        {"trigger", [](auto& on, const Argument& of) { on.Do(on.template In<QAction>(of.name)); }},
        {"click", [](auto& on, const Argument& of) { on.Do(on.template In<QAbstractButton>(of.name)); }},
        {"type",
         [](auto& on, const Argument& of) {
           auto* list = dynamic_cast<QComboBox*>(&on.template In<QWidget>(of.name));
           auto& field = list ? *list->lineEdit() : on.template In<QLineEdit>(of.name);
           field.setFocus();
           field.selectAll();
           of.text.empty() ? QTest::keyClick(&field, Qt::Key_Delete) : QTest::keyClicks(&field, of.Words());
         }},
        {"key",  // to this control
         [](auto& on, const Argument& of) {
           const QKeyCombination key = QKeySequence(of.Words())[0];
           QTest::keyClick(&on.template In<QWidget>(of.name), key.key(), key.keyboardModifiers());
         }},
        {"choose",  // of a list that folds out
         [](auto& on, const Argument& of) {
           auto& list = on.template In<QComboBox>(of.name);
           const int index = list.findText(of.Words(), Qt::MatchStartsWith);
           list.setCurrentIndex(index);
           emit list.activated(index);
           emit list.textActivated(list.currentText());
         }},
        {"select",  // row and column, and those of the other corner
         [](auto& on, const Argument& of) {
           auto& view = on.template In<QAbstractItemView>(of.name);
           const QStringList at = of.Words().split(' ');
           const auto cell = [&](int row, int column) { return view.model()->index(row, column); };
           const QModelIndex first = cell(at.value(0).toInt(), at.value(1).toInt());
           view.setFocus();
           view.setCurrentIndex(first);
           if (at.size() < 4) return;
           const QItemSelection range(first, cell(at[2].toInt(), at[3].toInt()));
           view.selectionModel()->select(range, QItemSelectionModel::ClearAndSelect);
         }},
        {"enter",  // into the selected cell
         [](auto& on, const Argument& of) {
           auto& view = on.template In<QAbstractItemView>(of.name);
           QTest::keyClicks(&view, of.Words().left(1));
           QLineEdit& editor = Find<QLineEdit>(view, "cellEditor");
           QTest::keyClicks(&editor, of.Words().mid(1));
           QTest::keyClick(&editor, Qt::Key_Return);
         }},
        {"tab",
         [](auto& on, const Argument& of) { on.template In<QTabWidget>(of.name).setCurrentIndex(of.Words().toInt()); }},
        {"file",  // in a dialog that chooses one
         [](auto& on, const Argument& of) {
           on.template In<QLineEdit>("fileNameEdit").setText(QString::fromStdString(on.File(of.name).string()));
           static_cast<QDialog*>(QApplication::activeModalWidget())->accept();
         }},
        {"item",  // of a menu
         [](auto& on, const Argument& of) {
           for (QAction* item : on.template In<QAction>(of.name).menu()->actions()) {
             if (item->text() == of.Words()) return on.Do(*item);
           }
           throw std::runtime_error("there is no such item");
         }},
        {"places",  // of all that stands in a window or in a part of it
         [](auto& on, const Argument& of) { on.AddAll(PlacesText(on.template In<QWidget>(of.name))); }},
        {"drawn",  // each stroke of a control
         [](auto& on, const Argument& of) { on.AddAll(DrawnText(on.template In<QWidget>(of.name))); }},
        {"resize",
         [](auto& on, const Argument& of) {
           on.template In<QWidget>(of.name).window()->resize(of.Words().section(' ', 0, 0).toInt(),
                                                             of.Words().section(' ', 1).toInt());
         }},
        {"menu",  // of a control, as the key for it opens it
         [](auto& on, const Argument& of) {
           QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
           QApplication::sendEvent(&on.template In<QWidget>(of.name), &key);
         }},
        {"mouse",  // presses and releases at a place of a control, or clicks twice
         [](auto& on, const Argument& of) {
           QWidget* target = &on.template In<QWidget>(of.name);
           if (auto* area = dynamic_cast<QAbstractScrollArea*>(target)) target = area->viewport();
           const QStringList at = of.Words().split(' ');
           const QPoint place(at.value(0).toInt(), at.value(1).toInt());
           QTest::mouseClick(target, Qt::LeftButton, {}, place);
           if (at.value(2) == "twice") QTest::mouseDClick(target, Qt::LeftButton, {}, place);
         }},
        {"escape", [](auto&, const Argument&) { QTest::keyClick(Front(), Qt::Key_Escape); }},
        {"close", [](auto& on, const Argument& of) { on.template In<QWidget>(of.name).window()->close(); }},
        {"wait",  // for a text in a label or a heading
         [](auto& on, const Argument& of) {
           const QWidget& widget = on.template In<QWidget>(of.name);
           const auto isThere = [&] { return widget.property("text").toString().contains(of.Words()); };
           EXPECT_TRUE(WaitUntil(isThere)) << of.name << " is \"" << widget.property("text").toString().toStdString();
         }},
        {"enabled",
         [](auto& on, const Argument& of) {
           EXPECT_TRUE(WaitUntil([&] { return on.template In<QWidget>(of.name).isEnabled(); })) << of.name;
         }},
        {"clipboard",
         [](auto&, const Argument& of) {
           QString text = QString::fromStdString(of.name + " " + of.text).trimmed();
           QApplication::clipboard()->setText(text.replace("\\t", "\t").replace("\\n", "\r\n"));
         }},
        {"pasted",
         [](auto& on, const Argument&) { on.Add("clipboard: " + QApplication::clipboard()->text().toStdString()); }},
        {"put", [](auto& on, const Argument& of) { on.mHome.Put(of.name, of.text); }},
        {"show", [](auto& on, const Argument& of) { on.Add(TemporaryFolder::Content(on.File(of.name))); }},
    };
    return verbs;
  }

  // What depends on the moment or on the machine is no part of a look.
  [[nodiscard]] Lines LinesOf(const QWidget& window) const {
    QString look = QString::fromStdString(WindowLook(window).Text())
                       .replace(QString::fromStdString(mHome.Path().string()), "HOME")
                       .remove('\r');
    const QRegularExpression separator(R"((HOME.*)\\)");  // of the other system
    while (look.contains(separator)) look.replace(separator, "\\1/");
    for (const auto& [text, instead] : {std::pair("[0-9]{4}-[0-9]{2}-[0-9]{2}", "DATE"),
                                        {"[0-9]{2}:[0-9]{2}:[0-9]{2}([.][0-9]+)?", "TIME"},
                                        {"serial number [0-9]+", "serial number N"},
                                        {"[0-9.,]+ (ms|s|KiB/s|bytes/s)\\b", "N \\1"},
                                        {"Version [0-9.]+", "Version N"},
                                        {"(lblSerial|lblExchanges|lblRoundTrip|lblRepeats) text=\\S+", "\\1 text=N"},
                                        {"[0-9a-f]{64}", "HASH"},
                                        {"lblStep0 text=File: \\S+", "lblStep0 text=File"},
                                        {"lblError text=.*? toolTip", "lblError toolTip"},
                                        {"[|][0-9]+[.][0-9.]+[|]", "|N|"},
                                        {"[.][0-9]+[.]part", ".N.part"},
                                        {"clipboard: [0-9]+", "clipboard: N"}}) {
      look.replace(QRegularExpression(text), instead);
    }
    Lines lines;
    for (const QString& line : look.split('\n', Qt::SkipEmptyParts)) lines.push_back(line.trimmed().toStdString());
    return lines;
  }

  // Behind a box the main window and the operand view change with the clock.
  static std::vector<const QWidget*> Windows() {
    std::vector<const QWidget*> windows;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
      const bool isTimed = window->objectName() == "frmMain" || window->objectName() == "frmDataTypesView";
      const bool isBehind = Front() && Front() != window;
      const bool isOurs =
          window->windowType() == Qt::Window || window->windowType() == Qt::Dialog || window->inherits("QMenu");
      const bool isMeant = isOurs && !window->inherits("QFileDialog") && !(isTimed && isBehind);
      if (isMeant && window->isVisible()) windows.push_back(window);
    }
    std::ranges::sort(windows, {}, &QWidget::objectName);
    return windows;
  }
  [[nodiscard]] Lines AllLines() const {
    Lines all;
    for (const QWidget* window : Windows()) {
      const Lines lines = LinesOf(*window);
      all.insert(all.end(), lines.begin(), lines.end());
    }
    return all;
  }

  void Add(std::string line) {
    std::erase(line, '\r');
    mText += "  " + line + "\n";
  }

  void AddAll(const std::string& lines) {
    std::istringstream is(lines);
    for (std::string line; std::getline(is, line);) Add(line);
  }

  // What has changed in the windows since the step before.
  void Note() {
    std::map<const QWidget*, std::string> shown;
    for (const QWidget* window : Windows()) {
      const std::string name = window->objectName().toStdString();
      shown[window] = name;
      const Lines lines = LinesOf(*window);
      constexpr std::size_t kSmall = 60;
      if (!mShown.contains(window)) {
        Add("[" + name + " opens]");
        const bool isAnother = window->inherits("QMessageBox") || !mLooks.contains(name);
        if (isAnother && lines.size() <= kSmall) mLooks[name].clear();
        if (!mLooks.contains(name)) mLooks[name] = lines;  // its look stands elsewhere
      }
      AddDifference(mLooks[name], lines);
      mLooks[name] = lines;
    }
    for (const auto& [window, name] : mShown) {
      const bool isGone = !shown.contains(window) && !QApplication::topLevelWidgets().contains(window);
      if (isGone || (!shown.contains(window) && !window->isVisible())) {
        Add("[" + name + " closes]");
      } else {
        shown[window] = name;
      }
    }
    mShown = std::move(shown);
  }

  // The longest common sequence of lines stays untold.
  void AddDifference(const Lines& before, const Lines& now) {
    std::size_t begin = 0;
    while (begin < before.size() && begin < now.size() && before[begin] == now[begin]) ++begin;
    std::size_t tail = 0;
    while (tail < before.size() - begin && tail < now.size() - begin &&
           before[before.size() - 1 - tail] == now[now.size() - 1 - tail])
      ++tail;
    const std::size_t rows = before.size() - begin - tail;
    const std::size_t columns = now.size() - begin - tail;
    std::vector<std::vector<int>> longest(rows + 1, std::vector<int>(columns + 1));
    for (std::size_t i = rows; i-- > 0;) {
      for (std::size_t j = columns; j-- > 0;) {
        longest[i][j] = before[begin + i] == now[begin + j] ? longest[i + 1][j + 1] + 1
                                                            : std::max(longest[i + 1][j], longest[i][j + 1]);
      }
    }
    for (std::size_t i = 0, j = 0; i < rows || j < columns;) {
      if (i < rows && j < columns && before[begin + i] == now[begin + j]) {
        ++i, ++j;
      } else if (i < rows && (j == columns || longest[i + 1][j] >= longest[i][j + 1])) {
        Add("- " + before[begin + i++]);
      } else {
        Add("+ " + now[begin + j++]);
      }
    }
  }

  const TemporaryFolder& mHome;
  Lines mSteps;
  std::size_t mAt = 0;
  bool mIsAtEnd = false;
  std::vector<const QWidget*> mFrontAtStart;  // of each step that has not returned
  std::map<const QWidget*, std::string> mShown;
  std::map<std::string, Lines> mLooks;  // of each window as it was last seen
  std::string mText;
};

}  // namespace kv::test
