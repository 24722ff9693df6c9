// DataViewBench [--once]: what the operand view costs on a model with a large memory, 22 types by up to 8192 addresses.
//   opening    from nothing to a painted window, beside a bare table of that size; wanted: at most 20 ms more
//   refresh    a change of everything that is seen, to the end of its painting; wanted: one signal, one paint, 4 ms
//   regions    loading a file with 10 000 regions into the window
//   CSV        writing the whole grid

#include <QAbstractTableModel>
#include <QAction>
#include <QApplication>
#include <QTableView>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "apps/support/SimulatedControllers.h"
#include "base/PathText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/ui/frmDataTypesView.h"
#include "desktop/MemoryClipboard.h"
#include "desktop/PacerWallClock.h"
#include "desktop/ScriptedPrompts.h"
#include "editors/clsHexSelector.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using namespace mdlDataTypesView;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int kRuns = 15;
constexpr int kRegions = 10'000;
constexpr QSize kSize(1180, 760);
constexpr const char* kModel = "K670-67-C30 / K390-29-C30";

double MedianOf(int runs, const std::function<double()>& measure) {
  std::vector<double> times;
  for (int run = 0; run < runs; ++run) times.push_back(measure());
  std::ranges::sort(times);
  return times[times.size() / 2];
}

double TimeOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return Milliseconds(std::chrono::steady_clock::now() - start).count();
}

// Comma as the separator, without a window.
struct CommaSelector final : HexSelectorWindow {
  std::optional<std::string> Edit(const std::string& hexCode) override { return hexCode; }
};

// Signals of a model and paints of a viewport.
class Counter final : public QObject {
 public:
  explicit Counter(QTableView& grid) {
    connect(grid.model(), &QAbstractItemModel::dataChanged, this, [this] { ++signalCount; });
    grid.viewport()->installEventFilter(this);
  }
  int signalCount = 0;
  int paintCount = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paintCount;
    return false;
  }
};

class BareModel final : public QAbstractTableModel {
 public:
  [[nodiscard]] int rowCount(const QModelIndex& = {}) const override { return kOperandTypeCount; }
  [[nodiscard]] int columnCount(const QModelIndex& = {}) const override { return 8192; }
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
    return role == Qt::DisplayRole ? QVariant(QString::number(index.column() + mAdded)) : QVariant();
  }
  void Change() {
    ++mAdded;
    emit dataChanged(index(0, 0), index(kOperandTypeCount - 1, 29));
  }

 private:
  int mAdded = 0;
};

void ShowPainted(QWidget& window) {
  window.resize(kSize);
  window.show();
  QCoreApplication::processEvents();
}

struct Bench {
  Bench() {
    std::filesystem::create_directories(shared.paths.Session("Default"));
    shared.Remote = &host;
    shared.ComDriver = &driver;
    host.model = kModel;
    driver.ConfigureForSession({.folder = Utf8FromPath(shared.paths.Session("Default"))});
    LinkSettings settings;
    settings.model = "K670-67-C30";
    (void)driver.UseSettings(settings, false);
  }

  [[nodiscard]] std::unique_ptr<frmDataTypesView> Open() {
    return std::make_unique<frmDataTypesView>(DataTypesViewParts{shared, prompts, pacer, clipboard, hexSelector, clock},
                                              pacer, nullptr);
  }

  TemporaryFolder home;
  test::CallLog log;
  test::FakeHost host{log};
  SharedState shared{ProgramPaths(home.Path())};
  ScriptedPrompts prompts{[](const std::string& what) { std::fprintf(stderr, "%s\n", what.c_str()); }};
  QtPacer pacer;
  PacerWallClock clock;
  MemoryClipboard clipboard;
  SimulatedControllers controllers{std::filesystem::path()};
  Driver driver{pacer, [this](const std::string& model) { return std::move(*controllers.NewLine(model)); }, MakePort};
  CommaSelector selector;
  clsHexSelector hexSelector{selector};
};

void Trigger(QObject& window, const char* id) {
  window.findChild<QAction*>(id)->trigger();
}

void Select(QTableView& grid, int top, int bottom, int columns) {
  const QItemSelection cells(grid.model()->index(top, 0), grid.model()->index(bottom, columns - 1));
  grid.selectionModel()->select(cells, QItemSelectionModel::ClearAndSelect);
  QCoreApplication::processEvents();
}

void CompareOpening(Bench& bench, int runs) {
  const double bare = MedianOf(runs, [] {
    return TimeOf([] {
      BareModel model;
      QTableView table;
      table.setModel(&model);
      ShowPainted(table);
    });
  });
  const double view = MedianOf(runs, [&bench] { return TimeOf([&bench] { ShowPainted(*bench.Open()); }); });
  std::printf("opening: bare table %.1f ms, view %.1f ms (wanted: at most 20 ms more)\n", bare, view);
}

void CompareRefresh(Bench& bench, int runs) {
  BareModel model;
  QTableView table;
  table.setModel(&model);
  ShowPainted(table);
  const double bare = MedianOf(runs, [&] {
    return TimeOf([&] {
      model.Change();
      QCoreApplication::processEvents();
    });
  });

  const auto window = bench.Open();
  ShowPainted(*window);
  auto& grid = *window->findChild<QTableView*>("vsfOperands");
  Select(grid, 0, kOperandTypeCount - 1, 24);  // every cell that is seen gets a value
  Trigger(*window, "ID_AddRegion");
  Trigger(*window, "ID_ReadRegions");
  bench.prompts.Press(PromptAnswer::Yes);
  Trigger(*window, "ID_NewRegions");  // clears all of them; undo brings them back
  QCoreApplication::processEvents();
  bool isUndone = false;
  Counter counter(grid);
  int refreshes = 0;
  const double view = MedianOf(runs, [&] {
    ++refreshes;
    isUndone = !isUndone;
    return TimeOf([&] {
      Trigger(*window, isUndone ? "ID_Undo" : "ID_Redo");
      QCoreApplication::processEvents();
    });
  });
  std::printf("refresh: bare table %.2f ms, view %.2f ms, %.1f signals, %.1f paints (wanted: 4 ms, 1, 1)\n", bare, view,
              1.0 * counter.signalCount / refreshes, 1.0 * counter.paintCount / refreshes);
}

void MeasureFiles(Bench& bench) {
  const auto window = bench.Open();
  ShowPainted(*window);
  const std::filesystem::path file = bench.home.Path() / "many.axt";
  {
    std::ofstream out(file, std::ios::binary);
    out << "Version 100\r\nAurex\r\n";
    for (int i = 0; i < kRegions; ++i) {
      const bool isBit = i < 8192;
      const int at = isBit ? i : i - 8192;
      out << (isBit ? 1 : 2) << "\t" << (isBit ? "MB" : "MI") << "\t" << at << "\t" << at << "\tword\t"
          << (isBit ? "1 BIT\tBINARY" : "16 BIT\tDECIMAL") << "\t\t\r\n";
    }
    out << "\r\n";
  }
  bench.prompts.Press(PromptAnswer::Yes);
  bench.prompts.Choose(Utf8FromPath(file));
  const double load = TimeOf([&] {
    Trigger(*window, "ID_LoadRegions");
    QCoreApplication::processEvents();
  });
  const int rows = window->findChild<QTableView*>("vsfRegions")->model()->rowCount();
  bench.prompts.Choose(Utf8FromPath(bench.home.Path() / "all.csv"));
  const double csv = TimeOf([&] { Trigger(*window, "ID_ExportToCSV"); });
  std::printf("loading %d regions: %.1f ms; CSV of the whole grid: %.1f ms, %ju bytes\n", rows, load, csv,
              static_cast<std::uintmax_t>(std::filesystem::file_size(bench.home.Path() / "all.csv")));
}

}  // namespace
}  // namespace kv

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const int runs = argc == 2 && std::strcmp(argv[1], "--once") == 0 ? 1 : kv::kRuns;
  kv::Bench bench;
  kv::CompareOpening(bench, runs);
  kv::CompareRefresh(bench, runs);
  kv::MeasureFiles(bench);
  return 0;
}
