#include "dataview/ui/ViewStatusBar.h"

#include <QLabel>

#include "desktop/ui/ElidedLabel.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kErrorCharacters = 24;
constexpr double kManyPasses = 10.0;  // from here on tenths are noise

QString ModeText(const ViewStatus& status) {
  switch (status.mode) {
    case ViewMode::Idle:
      return status.linkLost ? "Connection lost" : "Off line";
    case ViewMode::Busy:
      return "Busy";
    case ViewMode::Online:
      return "On line";
  }
  return {};
}

QString PassesText(const ViewStatus& status) {
  if (status.mode != ViewMode::Online) return {};
  if (status.passes == 0) return QString("First pass: %1 of %2 regions").arg(status.done).arg(status.total);
  const double aSecond = status.passesPerSecond;
  if (aSecond == 0.0) return QString("Counting");
  return QString("%1 passes/s").arg(aSecond, 0, 'f', aSecond < kManyPasses ? 1 : 0);
}

}  // namespace

ViewStatusBar::ViewStatusBar(QWidget* parent)
    : QStatusBar(parent),
      mMessage(new ElidedLabel(this)),
      mError(AddField("lblError", "The last error")),
      mEdited(AddField("lblEdited", "Values that were edited and are not written to the controller")),
      mAge(AddField("lblAge", "How long ago the oldest value of the regions was read")),
      mPasses(AddField("lblPasses", "How often all regions are read in a second")),
      mMode(AddField("lblMode", "Whether the regions are read again and again")) {
  setObjectName("statusBar");
  mMessage->setObjectName("lblMessage");
  mMessage->setAccessibleName("Message");
  addWidget(mMessage, 1);
}

QLabel* ViewStatusBar::AddField(const char* name, const QString& what) {
  auto* field = new QLabel(this);
  field->setObjectName(name);
  field->setAccessibleName(what);
  field->setToolTip(what);
  field->setTextFormat(Qt::PlainText);
  field->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  field->setMargin(2);
  field->hide();
  addPermanentWidget(field);
  field->hide();
  return field;
}

// A field without a text takes no room.
void ViewStatusBar::SetField(QLabel& field, const QString& text) {
  if (field.text() != text) field.setText(text);
  field.setVisible(!text.isEmpty());
}

void ViewStatusBar::Show(const ViewStatus& status, const QString& age) {
  mMessage->SetFullText(QString::fromStdString(status.message));
  ShowError(status);
  SetField(*mEdited, status.edited == 0 ? QString() : QString("%1 edited").arg(status.edited));
  SetField(*mAge, age);
  SetField(*mPasses, PassesText(status));
  SetField(*mMode, ModeText(status));
}

// Stays when the next command goes well: a user who looks up later still sees that something failed.
void ViewStatusBar::ShowError(const ViewStatus& status) {
  if (!status.isError) return;
  const QString error = QString::fromStdString(status.message);
  const QString line = error.section('\n', 0, 0).remove('\r');
  const int room = kErrorCharacters * fontMetrics().averageCharWidth();
  SetField(*mError, "Last error: " + fontMetrics().elidedText(line, Qt::ElideRight, room));
  mError->setToolTip(error);
  mError->setAccessibleDescription(error);
}

void ViewStatusBar::Say(const QString& message) {
  mMessage->SetFullText(message);
}

}  // namespace kv::mdlDataTypesView
