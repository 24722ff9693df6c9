#include "desktop/ui/QtPrompts.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "desktop/ui/HelpLink.h"
#include "desktop/ui/HelpRequest.h"
#include "desktop/ui/RunDialog.h"
#include "desktop/ui/SecretField.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv {

namespace {

struct Button {
  PromptAnswer answer;
  QMessageBox::StandardButton standard;
  const char* name;
};

constexpr auto kButtons = std::to_array<Button>({
    {PromptAnswer::Ok, QMessageBox::Ok, "cmdOk"},
    {PromptAnswer::Yes, QMessageBox::Yes, "cmdYes"},
    {PromptAnswer::No, QMessageBox::No, "cmdNo"},
    {PromptAnswer::Cancel, QMessageBox::Cancel, "cmdCancel"},
});

QMessageBox::Icon BoxIcon(PromptIcon icon) {
  switch (icon) {
    case PromptIcon::None:
      return QMessageBox::NoIcon;
    case PromptIcon::Information:
      return QMessageBox::Information;
    case PromptIcon::Exclamation:
      return QMessageBox::Warning;
    case PromptIcon::Question:
      return QMessageBox::Question;
    case PromptIcon::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

QString FromText(const std::string& text) {
  return QString::fromStdString(text).replace("\r\n", "\n");
}

// "Description|*.ext;*.ext2|..." as the toolkit writes it: "Description (*.ext *.ext2)". A description that names the
// patterns itself does not name them twice.
QStringList NameFilters(const std::string& filter) {
  const QStringList fields = QString::fromStdString(filter).split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < fields.size(); i += 2) {
    QString description = fields[i];
    if (description.endsWith(')')) description.truncate(description.lastIndexOf('('));
    const QString patterns = QString(fields[i + 1]).replace(';', ' ');
    filters << description.trimmed() + " (" + patterns + ")";
  }
  return filters;
}

// The extension of the filter's first pattern: "kdf" of "Clone files|*.kdf".
QString DefaultSuffix(const std::string& filter) {
  const QString pattern = QString::fromStdString(filter).section('|', 1, 1).section(';', 0, 0);
  const QString suffix = pattern.section('.', -1);
  return pattern.contains('.') && !suffix.contains('*') ? suffix : QString();
}

// The toolkit takes Esc and the closing of a box with OK alone for that OK. Where it can lose something it is no
// consent.
class ClosingDeclines final : public QObject {
 public:
  explicit ClosingDeclines(QMessageBox& box) : QObject(&box), mBox(box) { box.installEventFilter(this); }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    const bool isEscape =
        event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel);
    if (!isEscape && event->type() != QEvent::Close) return false;
    mBox.done(QMessageBox::Cancel);
    return true;
  }

 private:
  QMessageBox& mBox;
};

// A button of a message box closes it; this one does not.
void AddHelp(QMessageBox& box) {
  QPushButton* help = box.addButton(QMessageBox::Help);
  help->setObjectName("cmdHelp");
  help->setToolTip("Opens the page of the help on this (F1)");
  help->disconnect();
  QObject::connect(help, &QPushButton::clicked, &box, [&box] { RequestHelp(box); });
}

// A text that is higher than the screen, as large letters make it, scrolls: the buttons are always in sight.
void FitScreen(QMessageBox& box) {
  auto* text = box.findChild<QLabel*>("qt_msgbox_label");
  if (!text) return;                                                                       // the platform's own box
  const QSize aroundText(8 * box.fontMetrics().height(), 5 * box.fontMetrics().height());  // the sign and the buttons
  const QSize room = RoomFor(box) - aroundText;
  const QSize lines = text->sizeHint();
  text->setWordWrap(true);
  const int height = lines.width() <= room.width() ? lines.height() : text->heightForWidth(room.width());
  text->setWordWrap(false);  // the box decides that by itself
  if (height <= room.height()) return;
  auto* page = new QScrollArea(&box);
  page->setFrameShape(QFrame::NoFrame);
  page->setWidgetResizable(true);
  page->setMinimumSize(std::min(lines.width() + aroundText.height(), room.width()), room.height());
  delete box.layout()->replaceWidget(text, page);
  page->setWidget(text);
}

// Sizes and times of files in full; the names take what is left.
void ShowWholeColumns(const QFileDialog& dialog) {
  const auto* list = dialog.findChild<QTreeView*>("treeView");
  if (list == nullptr) return;  // the platform's own dialog
  list->header()->setStretchLastSection(false);
  list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

std::optional<std::string> ChooseFile(const FileDialog& asked, QFileDialog::AcceptMode mode, LastFolders& folders) {
  const bool isNamed = !asked.folder.empty() && QFileInfo(QString::fromStdString(asked.folder)).isDir();
  const std::string folder = isNamed ? asked.folder : folders.Of(asked.purpose);
  QFileDialog dialog(DialogOwner(), QString::fromStdString(asked.title), QString::fromStdString(folder));
  dialog.setObjectName("FileDialog");
  dialog.setAcceptMode(mode);
  dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite, !asked.asksToReplace);
  dialog.setNameFilters(NameFilters(asked.filter));
  if (mode == QFileDialog::AcceptSave) dialog.setDefaultSuffix(DefaultSuffix(asked.filter));
  dialog.resize(dialog.sizeHint().boundedTo(RoomFor(dialog)));
  ShowWholeColumns(dialog);
  if (!asked.initial.empty()) dialog.selectFile(QString::fromStdString(asked.initial));
  if (RunDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const QString chosen = dialog.selectedFiles().first();
  // A path may have been typed into a dialog that shows another folder.
  folders.Remember(asked.purpose, QFileInfo(chosen).path().toStdString());
  return QDir::toNativeSeparators(chosen).toStdString();  // as the user writes it, and every text that names it
}

}  // namespace

PromptAnswer QtPrompts::Show(const MessageBox& box) {
  QMessageBox shown(BoxIcon(box.icon), QString::fromStdString(box.title), FromText(box.text), QMessageBox::NoButton,
                    DialogOwner());
  shown.setObjectName("MessageBox");
  shown.setTextFormat(Qt::PlainText);
  shown.setTextInteractionFlags(Qt::TextSelectableByMouse);
  const PromptAnswer preset = box.canLose ? LeastCommitting(box.buttons) : Consent(box.buttons);
  for (const Button& button : kButtons) {
    if (!HasButton(box.buttons, button.answer)) continue;
    shown.addButton(button.standard)->setObjectName(button.name);
    if (button.answer == LeastCommitting(box.buttons)) shown.setEscapeButton(button.standard);
    if (button.answer == preset) shown.setDefaultButton(button.standard);
  }
  if (box.canLose && box.buttons == PromptButtons::Ok) new ClosingDeclines(shown);
  if (TellsWhatToDo(shown.text())) AddHelp(shown);
  FitScreen(shown);
  const int pressed = RunDialog(shown);
  for (const Button& button : kButtons) {
    if (button.standard == pressed) return button.answer;
  }
  return LeastCommitting(box.buttons);
}

std::optional<std::string> QtPrompts::Ask(const InputBox& box) {
  QDialog dialog(DialogOwner());
  dialog.setObjectName("InputBox");
  dialog.setWindowTitle(QString::fromStdString(box.title));
  auto* label = new QLabel(FromText(box.text));
  label->setTextFormat(Qt::PlainText);
  auto* hint = new QLabel(FromText(box.hint));
  hint->setObjectName("lblHint");
  hint->setTextFormat(Qt::PlainText);
  hint->setVisible(!box.hint.empty());
  auto* input = new QLineEdit(QString::fromStdString(box.initial));
  input->setObjectName("txtInput");
  input->setAccessibleName(label->text());
  input->setAccessibleDescription(hint->text());
  if (box.secret) MakeSecret(*input);
  input->selectAll();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOk");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  auto* page = new QVBoxLayout(&dialog);
  page->addWidget(label);
  page->addWidget(hint);
  page->addWidget(input);
  page->addWidget(buttons);
  const bool isEntered = RunDialog(dialog) == QDialog::Accepted;
  if (box.secret) {
    const Secret typed = TakeSecret(*input);
    return isEntered ? std::optional(std::string(typed.View())) : std::nullopt;
  }
  return isEntered ? std::optional(input->text().toStdString()) : std::nullopt;
}

std::optional<std::string> QtPrompts::OpenFile(const FileDialog& dialog) {
  return ChooseFile(dialog, QFileDialog::AcceptOpen, mFolders);
}

std::optional<std::string> QtPrompts::SaveFile(const FileDialog& dialog) {
  return ChooseFile(dialog, QFileDialog::AcceptSave, mFolders);
}

}  // namespace kv
