#include "desktop/ui/WindowGeometry.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHeaderView>
#include <QScreen>
#include <QSplitter>
#include <algorithm>
#include <string>

#include "base/Crc32.h"
#include "base/Hex.h"
#include "base/ProfileStrings.h"

namespace kv {

namespace {

constexpr std::size_t kCheckDigits = 8;
constexpr const char* kLeftOut = "kvLeftOutOfPlace";  // a header's property
constexpr std::size_t kLongestState = 8192;           // of a table header of a few hundred columns

constexpr QSize kFrame(8, 40);  // around a window, with its title

// "@16x100" for lines of 16 pixels on a screen at 100 %.
std::string ScaleOf(const QWidget& window) {
  const int percent = static_cast<int>(window.devicePixelRatioF() * 100);
  return "@" + std::to_string(window.fontMetrics().height()) + "x" + std::to_string(percent);
}

class PlaceKeeper final : public QObject {
 public:
  PlaceKeeper(QWidget& window, std::filesystem::path file)
      : QObject(&window), mWindow(window), mFile(std::move(file)), mScale(ScaleOf(window)) {
    mWindow.installEventFilter(this);
  }

  void Restore() {
    mWindow.restoreGeometry(Read("Place"));
    FitToScreen(mWindow);
    for (QSplitter* splitter : mWindow.findChildren<QSplitter*>()) splitter->restoreState(Read(KeyOf(*splitter)));
    for (QHeaderView* header : mWindow.findChildren<QHeaderView*>()) header->restoreState(Read(KeyOf(*header)));
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Hide && !event->spontaneous()) Save();
    return false;
  }

 private:
  void Save() {
    Write("Place", mWindow.saveGeometry());
    for (const QSplitter* splitter : mWindow.findChildren<QSplitter*>()) Write(KeyOf(*splitter), splitter->saveState());
    for (const QHeaderView* header : mWindow.findChildren<QHeaderView*>()) Write(KeyOf(*header), header->saveState());
  }

  // Empty for one that is not remembered. A header has no name of its own but its table has.
  [[nodiscard]] static std::string KeyOf(const QSplitter& splitter) { return splitter.objectName().toStdString(); }
  [[nodiscard]] static std::string KeyOf(const QHeaderView& header) {
    const QString table = header.parent() ? header.parent()->objectName() : QString();
    const bool isLeftOut = header.orientation() != Qt::Horizontal || header.property(kLeftOut).toBool();
    if (table.isEmpty() || isLeftOut) return "";
    return (table + ".Columns").toStdString();
  }

  // The states are the toolkit's own and not all of them are checked when they are restored: a check stands in front.
  [[nodiscard]] QByteArray Read(const std::string& key) const {
    if (key.empty()) return {};
    const std::string text = ReadProfileString(mFile, Section(), key + mScale, "", kLongestState);
    const std::string state = text.substr(std::min(text.size(), kCheckDigits));
    return text == Checked(state) ? QByteArray::fromBase64(QByteArray::fromStdString(state)) : QByteArray();
  }

  void Write(const std::string& key, const QByteArray& state) const {
    if (key.empty()) return;
    // A place that cannot be kept is no reason to disturb anybody.
    (void)WriteProfileString(mFile, Section(), key + mScale, Checked(state.toBase64().toStdString()));
  }

  [[nodiscard]] static std::string Checked(const std::string& state) {
    return ToHex(Crc32(state), kCheckDigits) + state;
  }

  [[nodiscard]] std::string Section() const { return mWindow.objectName().toStdString(); }

  QWidget& mWindow;
  std::filesystem::path mFile;
  std::string mScale;  // behind each key: a place fits the letters that it was chosen for
};

}  // namespace

QSize RoomFor(const QWidget& window) {
  return window.screen()->availableSize() - kFrame;
}

void FitToScreen(QWidget& window) {
  if (window.isMaximized()) return;
  QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);  // of rows that were hidden just now
  const QSize wanted = window.testAttribute(Qt::WA_Resized) ? window.size() : window.sizeHint();
  const QSize fitting = wanted.boundedTo(RoomFor(window));
  if (window.testAttribute(Qt::WA_Resized) || fitting != wanted) window.resize(fitting);
}

std::filesystem::path WindowsFile(const ProgramPaths& paths) {
  return paths.Home() / "Windows.ini";
}

void RememberPlace(QWidget& window, const std::filesystem::path& file) {
  (new PlaceKeeper(window, file))->Restore();
}

void LeaveOutOfPlace(QHeaderView& header) {
  header.setProperty(kLeftOut, true);
}

}  // namespace kv
