#include "download/ui/frmOsInfo.h"

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
namespace {

std::filesystem::path ChosenIn(const QComboBox& box, const FileList& list) {
  const int row = box.currentIndex();
  return row < 0 ? std::filesystem::path() : list.files.at(static_cast<std::size_t>(row)).path;
}

}  // namespace

frmOsInfo::frmOsInfo(const AurexOsLists& lists, const QString& controller, QWidget* parent)
    : QDialog(parent), mLists(lists) {
  setObjectName("frmOsInfo");
  setWindowTitle("Operating System List");
  setWindowIcon(IconOf("download"));
  mOs = MakeOsFileBox("cboOSFiles", "O/S version", mLists.os, this);
  mFonts = MakeOsFileBox("cboFontsFiles", "System fonts", mLists.fonts, this);
  mHint = MakeOsHint(this);
  mClose = new QPushButton(IconOf("download"), "&OK", this);
  mClose->setObjectName("cmdClose");
  mClose->setDefault(true);
  Describe(*mClose, "Takes these files; you are asked before anything is sent", "Enter");
  auto* cancel = new QPushButton("Cancel", this);
  cancel->setObjectName("cmdCancel");
  cancel->setAutoDefault(false);
  Describe(*cancel, "Closes this window; nothing is downloaded", "Esc");
  connect(mClose, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  for (const QComboBox* box : {mOs, mFonts}) {
    connect(box, &QComboBox::currentIndexChanged, this, [this] { ShowHint(); });
  }

  auto* form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
  form->addRow("OS &Version:", mOs);
  form->addRow("System &Fonts:", mFonts);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(mClose);
  buttons->addWidget(cancel);
  auto* page = new QVBoxLayout(this);
  page->addWidget(MakeOsHeading(controller, this));
  page->addLayout(form);
  page->addWidget(mHint, 1);
  page->addLayout(buttons);
  ShowHint();
}

AurexOsChoice frmOsInfo::ShowGUI() {
  if (RunDialog(*this) != Accepted) return {};
  return {.os = ChosenIn(*mOs, mLists.os), .fonts = ChosenIn(*mFonts, mLists.fonts)};
}

// Without both files there is nothing to take: that none was there, the downloader says to who closes this window.
void frmOsInfo::ShowHint() {
  const QString os = WhyNoFile(*mOs, mLists.os, "O/S");
  const QString fonts = WhyNoFile(*mFonts, mLists.fonts, "fonts");
  const QString both = os + (os.isEmpty() || fonts.isEmpty() ? "" : "\n") + fonts;
  mHint->setText(both);
  mHint->setVisible(!both.isEmpty());
  Allow(*mClose, both);
}

}  // namespace kv
