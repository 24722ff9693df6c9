// Makes the pictures of the documentation from the real windows: screenshots FOLDER SUFFIX [dark]. Every picture is
// named after its window, with SUFFIX behind it. And compares two folders of them: screenshots compare BEFORE NOW
// MARKS.

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyleFactory>
#include <QTableView>
#include <QTest>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <optional>
#include <string_view>

#include "apps/kvsim/SampleSet.h"
#include "desktop/ui/Theme.h"
#include "editors/ui/frmHexSelector.h"
#include "tests/host_ui/ProgramRun.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/screenshots/ClonerPictures.h"
#include "tools/screenshots/DownloaderPictures.h"
#include "tools/screenshots/NextDialog.h"
#include "tools/screenshots/PictureComparison.h"

namespace kv::test {
namespace {

class Photographer {
 public:
  Photographer(QString folder, QString suffix) : mFolder(std::move(folder)), mSuffix(std::move(suffix)) {}

  void Take(QWidget& window, const char* name) {
    QTest::qWait(50);  // layouts settle, pictures are drawn
    const QString file = mFolder + "/" + name + mSuffix + ".png";
    if (!window.grab().save(file)) std::cerr << "cannot write " << file.toStdString() << "\n";
  }

  // The next dialog that opens is taken, after `prepare`, and closed.
  void TakeDialog(
      QObject& context, const char* name, const std::function<void(QWidget& dialog)>& prepare = [](QWidget&) {}) {
    WithNextDialog(context, [=, this](QDialog& dialog) {
      prepare(dialog);
      Take(dialog, name);
      dialog.close();
    });
  }

 private:
  QString mFolder;
  QString mSuffix;
};

void Trigger(QObject& window, const char* id) {
  window.findChild<QAction*>(id)->trigger();
}

// The search for a word that other tools have.
void TakeHelp(Photographer& camera, QMainWindow& window) {
  Trigger(window, "ID_Help");
  for (QWidget* help : QApplication::topLevelWidgets()) {
    if (help->objectName() != "frmHelp") continue;
    Trigger(*help, "cmdSearch");
    auto* question = help->findChild<QLineEdit*>("txtSearch");
    question->setText("register");
    QTest::keyClick(question, Qt::Key_Return);
    camera.Take(*help, "help");
    help->close();
  }
}

void ChooseSerial(QWidget& dialog) {
  auto* transport = dialog.findChild<QComboBox*>("cboTransport");
  transport->setCurrentIndex(transport->findText("Serial", Qt::MatchStartsWith));
}

void TakePictures(Photographer& camera, QMainWindow& window) {
  camera.Take(window, "main-off-line");
  Trigger(window, "ID_OnLine");
  TakeHelp(camera, window);
  camera.TakeDialog(window, "sessions");
  Trigger(window, "ID_Session");
  camera.TakeDialog(window, "log-in");
  Trigger(window, "ID_LogIn");
  camera.TakeDialog(window, "about");
  Trigger(window, "ID_About");
  camera.TakeDialog(window, "link-simulated");
  Trigger(window, "ID_ComParams");
  camera.TakeDialog(window, "link-serial", ChooseSerial);
  Trigger(window, "ID_ComParams");
  camera.TakeDialog(window, "modem");
  Trigger(window, "ID_Modem");
}

void Fill(QTableView& operands, int row, std::initializer_list<const char*> values) {
  int column = 0;
  for (const char* value : values) operands.model()->setData(operands.model()->index(row, column++), value);
}

void AddRegion(QDialog& view, int row, int from, int to) {
  auto& operands = *view.findChild<QTableView*>("vsfOperands");
  const QAbstractItemModel& model = *operands.model();
  operands.setCurrentIndex(model.index(row, from));
  operands.selectionModel()->select(QItemSelection(model.index(row, from), model.index(row, to)),
                                    QItemSelectionModel::ClearAndSelect);
  QCoreApplication::processEvents();
  Trigger(view, "ID_AddRegion");
}

void Describe(QDialog& view, int row, const char* description, std::optional<int> size, std::optional<int> format) {
  QAbstractItemModel& regions = *view.findChild<QTableView*>("vsfRegions")->model();
  regions.setData(regions.index(row, 4), description);
  if (size) regions.setData(regions.index(row, 5), *size);
  if (format) regions.setData(regions.index(row, 6), *format);
}

// Rows of the grid, from 0: MB, MI, MF, ML; INPUT is the 11th, TIMER CURRENT the 14th.
void PrepareOperands(QDialog& view) {
  auto& operands = *view.findChild<QTableView*>("vsfOperands");
  AddRegion(view, 1, 0, 9);
  Trigger(view, "ID_ReadRegions");  // a region is written whole
  Fill(operands, 1, {"4660", "22136", "-7", "0", "19279"});
  Trigger(view, "ID_WriteRegions");
  AddRegion(view, 1, 100, 101);
  AddRegion(view, 0, 96, 111);
  AddRegion(view, 2, 8, 12);
  AddRegion(view, 10, 0, 15);
  AddRegion(view, 13, 0, 3);
  AddRegion(view, 7, 30, 35);
  Describe(view, 0, "Recipe", 1, 4);
  Describe(view, 1, "Ramp and noise", {}, {});
  Describe(view, 2, "Blinker", {}, {});
  Describe(view, 3, "Wave", {}, {});
  Describe(view, 4, "Switches", {}, {});
  Describe(view, 6, "Clock", {}, {});
}

void TakeOperands(Photographer& camera, QDialog& view) {
  PrepareOperands(view);
  Trigger(view, "ID_ReadRegions");
  auto& operands = *view.findChild<QTableView*>("vsfOperands");
  Fill(operands, 3, {"100000", "-2147483648", "7"});
  operands.setCurrentIndex(operands.model()->index(1, 2));
  operands.selectionModel()->select(QItemSelection(operands.model()->index(1, 2), operands.model()->index(2, 5)),
                                    QItemSelectionModel::ClearAndSelect);
  QTest::qWait(1200);  // the values have an age
  camera.Take(view, "operands");
  operands.setCurrentIndex(operands.model()->index(1, 103));
  operands.setCurrentIndex(operands.model()->index(1, 98));
  QTimer::singleShot(1500, &view, [&] {
    camera.Take(view, "operands-on-line");
    Trigger(view, "ID_OnLine");
  });
  Trigger(view, "ID_OnLine");
  view.close();
}

// Whose name stands in the journal.
void LogIn(QMainWindow& window) {
  WithNextDialog(window, [](QDialog& dialog) {
    dialog.findChild<QLineEdit*>("txtUserName")->setText("anna");
    dialog.findChild<QPushButton*>("cmdOk")->click();
  });
  Trigger(window, "ID_LogIn");
}

void TakeTrace(Photographer& camera, QMainWindow& window) {
  Trigger(window, "HOST_Trace");
  for (QWidget* trace : QApplication::topLevelWidgets()) {
    if (trace->objectName() != "frmTrace") continue;
    QTest::qWait(500);  // until it has asked for what passes
    camera.Take(*trace, "trace");
    trace->close();
  }
}

// What the downloads, clones and writes of all pictures have left; the newest is selected.
void TakeJournal(Photographer& camera, QMainWindow& window) {
  camera.TakeDialog(window, "journal",
                    [](QWidget& journal) { journal.findChild<QTableView*>("tblChanges")->selectRow(0); });
  Trigger(window, "ID_Journal");
}

void TakeCharacters(Photographer& camera, QMainWindow& window) {
  const TemporaryFolder places;
  frmHexSelector selector(places.Path() / "Windows.ini", &window);
  camera.TakeDialog(window, "characters");
  static_cast<void>(selector.Edit("2C"));
}

void OpenOperands(Photographer& camera, QMainWindow& window) {
  Trigger(window, "ID_OnLine");
  WithNextDialog(window, [&](QDialog& view) { TakeOperands(camera, view); });
  Trigger(window, "ID_DataTypes");
  QTest::qWait(
      3500);  // some exchanges, so that the figures of the link mean something, and the tiles have their values
  camera.Take(window, "main-on-line");
  TakeTrace(camera, window);
  TakeJournal(camera, window);
  TakeCharacters(camera, window);
}

// The last page of an import, with what came in.
void TakeCacheImport(Photographer& camera, QMainWindow& window, const std::filesystem::path& home) {
  WithNextDialog(window, [&](QDialog& wizard) {
    WithNextDialog(wizard, [&](QDialog& chooser) {
      chooser.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString((home / "Bakery.ktc").string()));
      QMetaObject::invokeMethod(&chooser, "accept");
    });
    wizard.findChild<QPushButton*>("cmdBrowse")->click();
    wizard.findChild<QPushButton*>("cmdNext")->click();
    wizard.findChild<QLabel*>("lblStep0")->setText("File: Bakery.ktc");  // its folder is another one each time
    camera.Take(wizard, "cache-import");
    wizard.close();
  });
  Trigger(window, "ID_ImportCacheFromPLC");
}

// The simulated K670 of the start page, looked at and operated.
void TakePanel(Photographer& camera, QMainWindow& window, const std::filesystem::path& home) {
  window.findChild<QPushButton*>("cmdSimulate")->click();
  QTest::qWait(4000);  // its fonts and images come
  camera.Take(window, "panel");
  WithNextDialog(window, [](QDialog& question) { question.findChild<QPushButton*>("cmdYes")->click(); });
  Trigger(window, "HOST_Operate");
  QTest::qWait(1000);
  camera.Take(window, "panel-operate");
  TakeCacheImport(camera, window, home);
  Trigger(window, "HOST_OffLine");
}

void ConnectInVain(Photographer& camera, QMainWindow& window) {
  Trigger(window, "ID_OnLine");
  camera.Take(window, "main-no-answer");
}

void MakeHome(const std::filesystem::path& home) {
  for (const char* session : {"Default", "Bakery", "Packing line"}) {
    std::filesystem::create_directories(home / "Sessions" / session);
  }
  std::filesystem::create_directory_symlink(KV_HELP_FOLDER, home / "help");
}

}  // namespace
}  // namespace kv::test

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: screenshots FOLDER SUFFIX [dark]\n       screenshots compare BEFORE NOW MARKS\n";
    return 2;
  }
  if (argc == 5 && std::string_view(argv[1]) == "compare") {
    std::cout << kv::test::ComparePictures(argv[2], argv[3], argv[4]) << " pictures differ\n";
    return 0;
  }
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  if (argc > 3) QApplication::setPalette(kv::PaletteOf(kv::Theme::Dark));
  const kv::TemporaryFolder home;
  kv::test::MakeHome(home.Path());
  kv::test::Photographer camera(argv[1], argv[2]);
  kv::test::RunProgram(home.Path(), [&](QMainWindow& window) { kv::test::TakePictures(camera, window); });
  const std::filesystem::path state = home.Path() / "state";
  const auto loggedIn = [&](const std::function<void(QMainWindow & window)>& user) {
    const auto work = [&](QMainWindow& window) {
      kv::test::LogIn(window);
      user(window);
    };
    kv::test::RunProgram(home.Path(), work, state);
  };
  loggedIn([&](QMainWindow& window) {
    kv::test::TakeClonerPictures(window, home.Path(),
                                 [&](QWidget& cloner, const char* name) { camera.Take(cloner, name); });
  });
  if (const auto made = kvsim::WriteSampleSet(home.Path()); !made) std::cerr << made.error() << "\n";
  loggedIn([&](QMainWindow& window) {
    kv::test::TakeDownloaderPictures(window, home.Path(),
                                     [&](QWidget& shown, const char* name) { camera.Take(shown, name); });
  });
  home.Put("Sessions/Default/KvCmDrv1.ini", "[KvCmDrv1]\r\nModel=K670-67-C30\r\n");
  loggedIn([&](QMainWindow& window) { kv::test::OpenOperands(camera, window); });
  home.Put("Sessions/Default/KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nTcpPort=9\r\n");  // nobody listens there
  kv::test::RunProgram(home.Path(), [&](QMainWindow& window) { kv::test::ConnectInVain(camera, window); });
  kv::test::RunProgram(
      home.Path(), [&](QMainWindow& window) { kv::test::TakePanel(camera, window, home.Path()); }, state);
  return 0;
}
