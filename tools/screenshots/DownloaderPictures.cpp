#include "tools/screenshots/DownloaderPictures.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "download/ui/frmBrioQ50OsInfo.h"
#include "tools/screenshots/NextDialog.h"

namespace kv::test {
namespace {

using Take = std::function<void(QWidget& window, const char* name)>;

void Press(QWidget& window, const char* name) {
  window.findChild<QAbstractButton*>(name)->click();
}

// Answers whatever is asked; the windows of their own are taken, and the first look at both sides.
class Answers {
 public:
  Answers(QWidget& downloader, const std::filesystem::path& folder, Take take)
      : mDownloader(downloader), mFolder(QString::fromStdString(folder.string())), mTake(std::move(take)) {
    QObject::connect(&mTimer, &QTimer::timeout, [this] { Answer(QApplication::activeModalWidget()); });
    mTimer.start(5);
  }

 private:
  void Answer(QWidget* asked) {
    if (auto* dialog = dynamic_cast<QFileDialog*>(asked)) {
      const bool isClone = dialog->acceptMode() == QFileDialog::AcceptSave;
      dialog->selectFile(mFolder + (isClone ? "/before.kdf" : "/Samples/Conveyor.dai"));
      QMetaObject::invokeMethod(dialog, "accept");
    } else if (auto* box = dynamic_cast<QMessageBox*>(asked)) {
      if (box->text().contains("about to be replaced")) mTake(mDownloader, "downloader");
      auto* yes = box->findChild<QPushButton*>("cmdYes");
      (yes ? yes : box->findChild<QPushButton*>("cmdOk"))->click();
    } else if (asked && asked->objectName() == "InputBox") {
      asked->findChild<QLineEdit*>("txtInput")->setText("1");
      Press(*asked, "cmdOk");
    } else if (asked && asked->objectName() == "frmOsInfo") {
      if (mIsFirstOs) ChooseOldest(*asked);
      if (!mIsFirstOs) mTake(*asked, "downloader-os");
      mIsFirstOs = false;
      Press(*asked, "cmdClose");
    } else if (asked && asked->objectName() == "frmIncompatibleBios") {
      mTake(*asked, "downloader-warning");
      Press(*asked, "cmdAbort");
    }
  }

  // So that there is something to warn of when the newest follows.
  static void ChooseOldest(QWidget& lists) {
    for (const char* name : {"cboOSFiles", "cboFontsFiles"}) lists.findChild<QComboBox*>(name)->setCurrentIndex(0);
  }

  bool mIsFirstOs = true;
  QWidget& mDownloader;
  QString mFolder;
  Take mTake;
  QTimer mTimer;
};

void Use(QDialog& downloader, const std::filesystem::path& folder, const Take& take) {
  const Answers answers(downloader, folder, take);
  const auto* controller = downloader.findChild<QLabel*>("lblController");
  static_cast<void>(QTest::qWaitFor([&] { return controller->text().contains("serial number"); }));
  Press(downloader, "cmdGetFile");
  downloader.findChild<QCheckBox*>("chkBackup")->setChecked(true);
  Press(downloader, "cmdDownload");
  take(downloader, "downloader-done");
  downloader.findChild<QCheckBox*>("chkBackup")->setChecked(false);
  Press(downloader, "cmdDownloadOS");
  Press(downloader, "cmdDownloadOS");
  take(downloader, "downloader-aborted");
  Press(downloader, "cmdClose");
}

}  // namespace

void TakeDownloaderPictures(QMainWindow& main, const std::filesystem::path& folder, const Take& take) {
  const FileList list = ListCompactOsFiles(ProgramPaths(folder), {CompactKind::Q51OrQ58, false, false, 460});
  frmBrioQ50OsInfo chooser(list, "Q51-2-R34, serial number 4711, COM3, 115200 8N1, unit 1", &main);
  QTimer::singleShot(0, &chooser, [&] {
    take(chooser, "downloader-os-compact");
    chooser.reject();
  });
  static_cast<void>(chooser.ShowGUI());
  WithNextDialog(main, [&](QDialog& downloader) { Use(downloader, folder, take); });
  main.findChild<QAction*>("ID_Downloader")->trigger();
}

}  // namespace kv::test
