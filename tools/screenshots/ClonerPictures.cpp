#include "tools/screenshots/ClonerPictures.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <fstream>
#include <iterator>

#include "base/Bytes.h"
#include "clone/CloneFrame.h"
#include "tools/screenshots/NextDialog.h"

namespace kv::test {
namespace {

// Answers whatever the cloner asks; the last box of an operation is answered after `onEnd`.
class Answers {
 public:
  Answers(QString file, std::function<void()> onEnd) : mFile(std::move(file)), mOnEnd(std::move(onEnd)) {
    QObject::connect(&mTimer, &QTimer::timeout, [this] { Answer(QApplication::activeModalWidget()); });
    mTimer.start(5);
  }

 private:
  void Answer(QWidget* asked) {
    if (auto* dialog = dynamic_cast<QFileDialog*>(asked)) {
      dialog->selectFile(mFile);
      QMetaObject::invokeMethod(dialog, "accept");
    } else if (auto* box = dynamic_cast<QMessageBox*>(asked)) {
      if (box->text().contains("Successfully") || box->text().contains("Failed")) mOnEnd();
      auto* yes = box->findChild<QPushButton*>("cmdYes");
      (yes ? yes : box->findChild<QPushButton*>("cmdOk"))->click();
    } else if (asked && asked->objectName() == "InputBox") {
      asked->findChild<QLineEdit*>("txtInput")->setText("1");
      asked->findChild<QPushButton*>("cmdOk")->click();
    }
  }

  QString mFile;
  std::function<void()> mOnEnd;
  QTimer mTimer;
};

// Turns the file into one of another model with a line for an address that no segment has.
void Spoil(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string content(std::istreambuf_iterator<char>(in), {});
  content.replace(content.find("K220-22-R1"), 10, "K450");
  content.insert(content.find("/01WD"), BuildWriteFrame(1, MemoryKind::Flash, 0, Bytes{1, 2}) + "\r\n");
  std::ofstream(file, std::ios::binary) << content;
}

void Use(QDialog& cloner, const std::filesystem::path& file,
         const std::function<void(QWidget& window, const char* name)>& take) {
  const auto trigger = [&](const char* id) { cloner.findChild<QAction*>(id)->trigger(); };
  {
    const Answers answers(QString::fromStdString(file.string()), [&] { take(cloner, "cloner-create"); });
    trigger("ID_CreateGhost");
  }
  Spoil(file);
  {
    const Answers answers(QString::fromStdString(file.string()), [] {});
    trigger("ID_RestoreGhost");
  }
  take(cloner, "cloner-failed");
  trigger("ID_Exit");
}

}  // namespace

void TakeClonerPictures(QMainWindow& main, const std::filesystem::path& folder,
                        const std::function<void(QWidget& window, const char* name)>& take) {
  WithNextDialog(main, [&](QDialog& cloner) { Use(cloner, folder / "K220-22-R1.kdf", take); });
  main.findChild<QAction*>("ID_DumpPLC")->trigger();
}

}  // namespace kv::test
