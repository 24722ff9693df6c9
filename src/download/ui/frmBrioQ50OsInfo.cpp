#include "download/ui/frmBrioQ50OsInfo.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/RunDialog.h"
#include "download/ui/OsFileBox.h"

namespace kv {

frmBrioQ50OsInfo::frmBrioQ50OsInfo(const FileList& list, const QString& controller, QWidget* parent) : QDialog(parent) {
  setObjectName("frmBrioQ50OsInfo");
  setWindowTitle("Operating System List");
  setWindowIcon(IconOf("download"));
  mOs = MakeOsFileBox("cboOSFiles", "O/S version", list, this);
  auto* ok = new QPushButton(IconOf("download"), "&OK", this);
  ok->setObjectName("cmdOK");
  ok->setDefault(true);
  Describe(*ok, "Takes this file; you are asked before anything is sent", "Enter");
  auto* cancel = new QPushButton("Cancel", this);
  cancel->setObjectName("cmdCancel");
  cancel->setAutoDefault(false);
  Describe(*cancel, "Closes this window; nothing is downloaded", "Esc");
  QLabel* hint = MakeOsHint(this);
  const auto allow = [this, ok, hint, list] {
    const QString why = WhyNoFile(*mOs, list, "O/S");
    Allow(*ok, why);
    const QString detail = mOs->currentData(kDetailRole).toString();
    hint->setText(why.isEmpty() ? detail : why);
    hint->setVisible(!hint->text().isEmpty());
  };
  connect(mOs, &QComboBox::currentIndexChanged, this, allow);
  allow();
  connect(ok, &QPushButton::clicked, this, [this] {
    IsCanceled = false;
    accept();
  });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

  auto* form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
  form->addRow("OS &Version:", mOs);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(ok);
  buttons->addWidget(cancel);
  auto* page = new QVBoxLayout(this);
  page->addWidget(MakeOsHeading(controller, this));
  page->addLayout(form);
  page->addWidget(hint);
  page->addStretch();
  page->addLayout(buttons);
}

std::optional<std::size_t> frmBrioQ50OsInfo::ShowGUI() {
  IsCanceled = true;
  RunDialog(*this);
  if (IsCanceled || mOs->currentIndex() < 0) return std::nullopt;
  return static_cast<std::size_t>(mOs->currentIndex());
}

}  // namespace kv
