#include "dataview/ui/ViewStatusBar.h"

#include <QLabel>

#include "base/DateText.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kErrorCharacters = 24;
constexpr double kManyPasses = 10.0;    // from here on tenths are noise
constexpr double kMostPasses = 1000.0;  // and from here on all digits are

QString ModeText(const ViewStatus& status) {
  switch (status.mode) {
    case ViewMode::Idle:
      return status.loss ? "Connection lost" : "Not watching";
    case ViewMode::Busy:
      return "Busy";
    case ViewMode::Online:
      return "Watching";
  }
  return {};
}

QString PassesText(const ViewStatus& status) {
  if (status.mode != ViewMode::Online) return {};
  if (status.passes == 0) return QString("First pass: %1 of %2 regions").arg(status.done).arg(status.total);
  const double aSecond = status.passesPerSecond;
  if (aSecond == 0.0) return QString("Counting");
  if (aSecond > kMostPasses) return QString("over %1 passes/s").arg(kMostPasses);
  return QString("%1 passes/s").arg(aSecond, 0, 'f', aSecond < kManyPasses ? 1 : 0);
}

}  // namespace

ViewStatusBar::ViewStatusBar(QWidget* parent)
    : MessageBar(parent),
      mError(AddField("lblError", "The last error")),
      mEdited(AddField("lblEdited", "Values that were edited and are not written to the controller")),
      mAge(AddField("lblAge", "How long ago the oldest value of the regions was read")),
      mPasses(AddField("lblPasses", "How often all regions are read in a second")),
      mMode(AddField("lblMode", "Whether the regions are read again and again")) {
  for (QLabel* field : {mError, mEdited, mAge, mPasses, mMode}) field->hide();
}

// A field without a text takes no room.
void ViewStatusBar::SetField(QLabel& field, const QString& text) {
  if (field.text() != text) field.setText(text);
  field.setVisible(!text.isEmpty());
}

void ViewStatusBar::Show(const ViewStatus& status, const QString& age) {
  ShowText(QString::fromStdString(status.message));
  ShowError(status);
  SetField(*mEdited, status.edited == 0 ? QString() : QString("%1 edited").arg(status.edited));
  SetField(*mAge, age);
  SetField(*mPasses, PassesText(status));
  SetField(*mMode, ModeText(status));
}

// Stays until a command does what it was asked: a user who looks up later still sees that something failed, and when.
void ViewStatusBar::ShowError(const ViewStatus& status) {
  if (!status.lastError) return SetField(*mError, {});
  const QString error = QString::fromStdString(status.lastError->text);
  const QString line = error.section('\n', 0, 0).remove('\r');
  const int room = kErrorCharacters * fontMetrics().averageCharWidth();
  const QString time = QString::fromStdString(TimeOfDayText(status.lastError->at));
  SetField(*mError, "Last error " + time + ": " + fontMetrics().elidedText(line, Qt::ElideRight, room));
  mError->setToolTip(time + "\n" + error);
  mError->setAccessibleDescription(error);
}

}  // namespace kv::mdlDataTypesView
