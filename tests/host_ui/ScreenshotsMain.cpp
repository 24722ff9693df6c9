// Makes the pictures of the documentation from the real windows: screenshots FOLDER SUFFIX [dark]. Every picture is
// named after its window, with SUFFIX behind it.

#include <QAction>
#include <QComboBox>
#include <QPalette>
#include <QStyleFactory>
#include <QTest>
#include <fstream>
#include <iostream>

#include "tests/base/TemporaryFolder.h"
#include "tests/host_ui/ProgramRun.h"

namespace kv::test {
namespace {

QPalette DarkPalette() {
  const QColor window(0x2b, 0x2d, 0x30);
  const QColor base(0x1e, 0x1f, 0x22);
  const QColor text(0xdf, 0xe1, 0xe5);
  QPalette palette(window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::PlaceholderText, text.darker(150));
  palette.setColor(QPalette::Highlight, QColor(0x2e, 0x6f, 0xb5));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(0x7a, 0x7d, 0x82));
  }
  return palette;
}

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
    auto* timer = new QTimer(&context);
    QObject::connect(timer, &QTimer::timeout, &context, [=, this] {
      QWidget* dialog = QApplication::activeModalWidget();
      if (!dialog) return;
      timer->stop();
      prepare(*dialog);
      Take(*dialog, name);
      dialog->close();
    });
    timer->start(10);
  }

 private:
  QString mFolder;
  QString mSuffix;
};

void Trigger(QObject& window, const char* id) {
  window.findChild<QAction*>(id)->trigger();
}

void ChooseSerial(QWidget& dialog) {
  auto* transport = dialog.findChild<QComboBox*>("cboTransport");
  transport->setCurrentIndex(transport->findText("Serial", Qt::MatchStartsWith));
}

void TakePictures(Photographer& camera, QMainWindow& window) {
  camera.Take(window, "main-off-line");
  Trigger(window, "ID_OnLine");
  QTest::qWait(2500);  // some exchanges, so that the figures of the link mean something
  camera.Take(window, "main-on-line");
  camera.TakeDialog(window, "sessions");
  Trigger(window, "ID_Session");
  camera.TakeDialog(window, "link-simulated");
  Trigger(window, "ID_ComParams");
  camera.TakeDialog(window, "link-serial", ChooseSerial);
  Trigger(window, "ID_ComParams");
  camera.TakeDialog(window, "modem");
  Trigger(window, "ID_Modem");
}

void ConnectInVain(Photographer& camera, QMainWindow& window) {
  Trigger(window, "ID_OnLine");
  camera.Take(window, "main-no-answer");
}

void MakeHome(const std::filesystem::path& home) {
  for (const char* session : {"Default", "Bakery", "Packing line"}) {
    std::filesystem::create_directories(home / "Sessions" / session);
  }
}

}  // namespace
}  // namespace kv::test

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: screenshots FOLDER SUFFIX [dark]\n";
    return 2;
  }
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  if (argc > 3) QApplication::setPalette(kv::test::DarkPalette());
  const kv::TemporaryFolder home;
  kv::test::MakeHome(home.Path());
  kv::test::Photographer camera(argv[1], argv[2]);
  kv::test::RunProgram(home.Path(), [&](QMainWindow& window) { kv::test::TakePictures(camera, window); });
  home.Put("Sessions/Default/KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nTcpPort=9\r\n");  // nobody listens there
  kv::test::RunProgram(home.Path(), [&](QMainWindow& window) { kv::test::ConnectInVain(camera, window); });
  return 0;
}
