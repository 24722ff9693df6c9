#pragma once

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <memory>
#include <string>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "apps/support/SimulatedControllers.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/ui/frmDataTypesView.h"
#include "desktop/MemoryClipboard.h"
#include "desktop/PacerWallClock.h"
#include "editors/clsHexSelector.h"
#include "tests/desktop_ui/QtFixture.h"
#include "tests/support/SessionFixture.h"

namespace kv::test {

using namespace mdlDataTypesView;

// A selector of characters whose user always cancels.
struct CancelledSelector final : HexSelectorWindow {
  std::optional<std::string> Edit(const std::string&) override { return std::nullopt; }
};

// A line on which nothing comes back while it is muted.
class MutedLine final : public InProcessLine {
 public:
  MutedLine(std::unique_ptr<InProcessLine> line, const bool& isMuted) : mLine(std::move(line)), mIsMuted(isMuted) {}
  bool Connect(Instant now) override { return mLine->Connect(now); }
  void Disconnect(Instant now) override { mLine->Disconnect(now); }
  bool IsConnected() const override { return mLine->IsConnected(); }
  void Write(std::string_view bytes, Instant now) override { mLine->Write(bytes, now); }
  std::string Read(Instant now) override {
    std::string bytes = mLine->Read(now);
    return mIsMuted ? std::string() : bytes;
  }
  std::optional<Instant> NextEvent() const override { return mLine->NextEvent(); }

 private:
  std::unique_ptr<InProcessLine> mLine;
  const bool& mIsMuted;
};

// The operand view in a session of its own, on a simulated controller with a large memory.
class ViewFixture : public ::testing::Test {
 protected:
  ViewFixture() {
    session.shared.ComDriver = &driver;
    session.host.model = "K670-67-C30 / K390-29-C30";
    driver.ConfigureForSession({.folder = Utf8FromPath(session.Session("Default"))});
    BeLinked();
  }

  void BeLinked() { Link({}, {}); }
  // A controller that hears everything and answers to another unit only.
  void BeSilent(std::chrono::milliseconds timeOut) { Link(9, timeOut); }

  void Open() {
    window = std::make_unique<frmDataTypesView>(
        DataTypesViewParts{session.shared, session.prompts, pacer, clipboard, hexSelector, clock}, pacer, nullptr);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), kPatience));
    for (QTableView* grid : {&Operands(), &Regions()}) {
      new QAbstractItemModelTester(grid->model(), QAbstractItemModelTester::FailureReportingMode::Fatal, grid);
    }
  }

  [[nodiscard]] QTableView& Operands() const { return Find<QTableView>(*window, "vsfOperands"); }
  [[nodiscard]] QTableView& Regions() const { return Find<QTableView>(*window, "vsfRegions"); }
  [[nodiscard]] QAction& Tool(const char* id) const { return Find<QAction>(*window, id); }
  void Trigger(const char* id) const {
    EXPECT_TRUE(Tool(id).isEnabled()) << id << ": " << Tool(id).toolTip().toStdString();
    Tool(id).trigger();
  }
  [[nodiscard]] std::string Label(const char* name) const { return Find<QLabel>(*window, name).text().toStdString(); }

  [[nodiscard]] QModelIndex Cell(OperandTypeCode type, int address) const {
    return Operands().model()->index(RowOfType(type) - 1, address);
  }
  [[nodiscard]] std::string Value(OperandTypeCode type, int address) const {
    return Cell(type, address).data().toString().toStdString();
  }
  void Select(OperandTypeCode first, int from, OperandTypeCode last, int to) const {
    const QItemSelection range(Cell(first, from), Cell(last, to));
    Operands().selectionModel()->setCurrentIndex(Cell(first, from), QItemSelectionModel::NoUpdate);
    Operands().selectionModel()->select(range, QItemSelectionModel::ClearAndSelect);
    QCoreApplication::processEvents();
  }
  void AddRegion(OperandTypeCode type, int from, int to) const {
    Select(type, from, type, to);
    Trigger("ID_AddRegion");
  }
  // "MB 0..119" for each region.
  [[nodiscard]] std::vector<std::string> RegionTexts() const {
    std::vector<std::string> texts;
    for (int row = 0; row < Regions().model()->rowCount(); ++row) {
      texts.push_back(RegionCell(row, RegionColumn::Name) + " " + RegionCell(row, RegionColumn::From) + ".." +
                      RegionCell(row, RegionColumn::To));
    }
    return texts;
  }
  [[nodiscard]] QModelIndex RegionIndex(int row, RegionColumn column) const {
    return Regions().model()->index(row, static_cast<int>(column));
  }
  [[nodiscard]] std::string RegionCell(int row, RegionColumn column) const {
    return RegionIndex(row, column).data().toString().toStdString();
  }

  // Opens the cell's editor and types into it.
  QLineEdit& Type(const QModelIndex& cell, const QString& text) const {
    Operands().setCurrentIndex(cell);
    Operands().setFocus();
    QTest::keyClicks(&Operands(), text.left(1));
    auto& editor = Find<QLineEdit>(Operands(), "cellEditor");
    QTest::keyClicks(&editor, text.mid(1));
    return editor;
  }
  // Delegate editors commit and go later.
  [[nodiscard]] bool IsEditorGone() const {
    return WaitUntil([this] { return !Operands().findChild<QLineEdit*>("cellEditor"); });
  }

  // What the user does on line, one step as soon as its condition holds; the mode goes on in between.
  struct Step {
    std::function<bool()> when;
    std::function<void()> act;
  };
  // Goes on line, lets the user do the steps, and ends the mode where the user has not.
  void Online(std::vector<Step> steps) const {
    steps.push_back({[] { return true; }, [this] { Tool("ID_OnLine").trigger(); }});
    Do(std::make_shared<std::vector<Step>>(std::move(steps)), 0);
    Trigger("ID_OnLine");
  }
  void Do(const std::shared_ptr<std::vector<Step>>& steps, std::size_t at) const {
    if (at == steps->size() || !window->isVisible()) return;
    When(*window, (*steps)[at].when, [this, steps, at] {
      (*steps)[at].act();
      Do(steps, at + 1);
    });
  }

  void Link(std::optional<std::uint8_t> unit, std::optional<std::chrono::milliseconds> timeOut) {
    LinkSettings settings;
    settings.transport = Transport::Simulated;
    settings.model = "K670-67-C30";
    settings.tries = 2;
    settings.unit = unit.value_or(settings.unit);
    if (timeOut) settings.timeOut = *timeOut;
    (void)driver.UseSettings(settings, false);
  }

  SessionFixture session;
  QtPacer pacer;
  PacerWallClock clock;
  MemoryClipboard clipboard;
  SimulatedControllers controllers{std::filesystem::path()};
  bool isMuted = false;
  Driver driver{pacer,
                [this](const std::string& model) {
                  return std::make_unique<MutedLine>(std::move(*controllers.NewLine(model)), isMuted);
                },
                MakePort};
  CancelledSelector selector;
  clsHexSelector hexSelector{selector};
  std::unique_ptr<frmDataTypesView> window;
};

}  // namespace kv::test
