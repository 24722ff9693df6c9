#include "download/ui/OsFileBox.h"

#include "base/PathText.h"
#include "desktop/ui/TextLabel.h"

namespace kv {

namespace {

constexpr int kShown = 30;  // characters
constexpr int kRows = 20;

}  // namespace

QLabel* MakeOsHeading(const QString& controller, QWidget* parent) {
  QLabel* label = MakeTextLabel("lblController", "The controller that the O/S is for", parent);
  label->setText("For " + controller);
  QFont bold = label->font();
  bold.setBold(true);
  label->setFont(bold);
  return label;
}

QLabel* MakeOsHint(QWidget* parent) {
  return MakeTextLabel("lblHint", "What is missing or worth knowing", parent);
}

QComboBox* MakeOsFileBox(const char* name, const char* accessibleName, const FileList& list, QWidget* parent) {
  auto* box = new QComboBox(parent);
  box->setObjectName(name);
  box->setAccessibleName(accessibleName);
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box->setMinimumContentsLength(kShown);
  box->setMaxVisibleItems(kRows);
  box->setPlaceholderText(list.IsEmpty() ? "none" : "choose one");
  for (const ListedFile& file : list.files) {
    box->addItem(QString::fromStdString(file.text));
    const QString path = QString::fromStdString(Utf8FromPath(file.path));
    const QString detail = QString::fromStdString(file.detail);
    box->setItemData(box->count() - 1, detail.isEmpty() ? path : path + "\n" + detail, Qt::ToolTipRole);
    box->setItemData(box->count() - 1, detail, kDetailRole);
  }
  box->setCurrentIndex(list.preselected ? static_cast<int>(*list.preselected) : -1);
  const auto showPath = [box, folder = QString::fromStdString(Utf8FromPath(list.folder))] {
    const QVariant path = box->currentData(Qt::ToolTipRole);
    box->setToolTip(path.isValid() ? path.toString() : "Files in " + folder);
  };
  QObject::connect(box, &QComboBox::currentIndexChanged, box, showPath);
  showPath();
  return box;
}

QString WhyNoFile(const QComboBox& box, const FileList& list, const char* what) {
  if (box.currentIndex() >= 0) return {};
  const QString folder = QString::fromStdString(Utf8FromPath(list.folder));
  if (list.IsEmpty()) return QString("There is no %1 file for this controller in %2.").arg(what, folder);
  return QString("No %1 file is chosen.").arg(what);
}

}  // namespace kv
