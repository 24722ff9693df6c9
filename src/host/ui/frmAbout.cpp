#include "host/ui/frmAbout.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "base/Texts.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "host/ui/AddressLabel.h"

namespace kv {
namespace {

constexpr int kTwipsPerPixel = 15;  // 1440 to the inch, and 96 pixels at 100 %
constexpr int kIconSize = 48;

QString FromText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

frmAbout::frmAbout(clsAbout about, AboutServices services, QWidget* parent)
    : QDialog(parent), mAbout(std::move(about)), mServices(std::move(services)) {
  mAbout.InitAboutScreen();
  setObjectName("frmAbout");
  setWindowTitle(FromText(mAbout.Screen().caption));
  setWindowIcon(IconOf("about"));
  auto* page = new QVBoxLayout(this);
  BuildHead(*page);
  BuildAddresses(*page);
  BuildLibraries(*page);
  BuildButtons(*page);
  setFixedSize(mAbout.Screen().width / kTwipsPerPixel, mAbout.Screen().height / kTwipsPerPixel);
}

void frmAbout::BuildHead(QVBoxLayout& page) {
  auto* picture = new QLabel(this);
  picture->setPixmap(IconOf("app").pixmap(kIconSize));
  auto* name = new QLabel("Telepanel tools", this);
  QFont large = name->font();
  large.setPointSizeF(large.pointSizeF() * 1.4);
  name->setFont(large);
  auto* version = new QLabel(FromText(mAbout.Screen().version), this);
  version->setObjectName("lblVersion");
  version->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* texts = new QVBoxLayout;
  texts->addWidget(name);
  texts->addWidget(version);
  auto* head = new QHBoxLayout;
  head->addWidget(picture);
  head->addLayout(texts, 1);
  page.addLayout(head);
}

void frmAbout::BuildAddresses(QVBoxLayout& page) {
  auto* addresses = new QFormLayout;
  const auto add = [&](const char* name, const char* what, std::string_view address, std::function<void()> open) {
    addresses->addRow(what, new AddressLabel(name, address, what, std::move(open), this));
  };
  add("lblSupport", "Support", clsAbout::kSupport, [this] { mAbout.WriteToSupport(); });
  add("lblExport", "Export", clsAbout::kExport, [this] { mAbout.WriteToExport(); });
  add("lblWebSite", "Web site", clsAbout::kWebSite, [this] { mAbout.OpenKorvantisWebSite(); });
  add("lblAurex", "Panels", clsAbout::kProductPage, [this] { mAbout.OpenAurexWebSite(); });
  if (mAbout.Screen().showsDistributor) {
    auto* distributor = new QLabel("Distributed by RBK", this);
    distributor->setObjectName("lblDistributor");
    addresses->addRow(distributor);
    add("lblWebSiteRBK", "Distributor", clsAbout::kDistributorSite, [this] { mAbout.OpenWebSiteRBK(); });
  }
  page.addLayout(addresses);
}

void frmAbout::BuildLibraries(QVBoxLayout& page) {
  const auto& libraries = mServices.program.libraries;
  auto* table = new QTableWidget(static_cast<int>(libraries.size()), 3, this);
  table->setObjectName("flgLibraries");
  table->setAccessibleName("Libraries");
  table->setToolTip("The libraries of others that this program runs with");
  table->setHorizontalHeaderLabels({"Library", "Version", "Licence"});
  table->horizontalHeader()->setStretchLastSection(true);
  table->horizontalHeader()->setHighlightSections(false);
  table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  table->verticalHeader()->hide();
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setTabKeyNavigation(false);
  for (int row = 0; row < table->rowCount(); ++row) {
    const LibraryNotice& library = libraries[static_cast<std::size_t>(row)];
    const QString texts[] = {FromText(library.name), FromText(library.version), FromText(library.licence)};
    for (int column = 0; column < 3; ++column) table->setItem(row, column, new QTableWidgetItem(texts[column]));
  }
  page.addWidget(table, 1);
}

void frmAbout::BuildButtons(QVBoxLayout& page) {
  mCopied = new QLabel(this);
  mCopied->setObjectName("lblCopied");
  mCopied->setAccessibleName("What was copied");
  mCopied->setWordWrap(true);
  mCopied->hide();
  auto* copy = new QPushButton(IconOf("copy"), "Copy &Report", this);
  copy->setObjectName("cmdCopyReport");
  copy->setAutoDefault(false);
  Describe(*copy, "Copies what a report of an error needs: version, system, settings of the session, last frames",
           "Alt+R");
  auto* close = new QPushButton("&Close", this);
  close->setObjectName("cmdClose");
  close->setDefault(true);
  Describe(*close, "Closes this window", "Esc");
  connect(copy, &QPushButton::clicked, this, [this] { CopyReport(); });
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(copy);
  buttons->addStretch();
  buttons->addWidget(close);
  page.addWidget(mCopied);
  page.addLayout(buttons);
  close->setFocus();
}

void frmAbout::CopyReport() {
  const std::string report = ErrorReport(mServices.shared, mServices.clock, mServices.program);
  mServices.clipboard.SetText(report);
  const auto lines = static_cast<std::size_t>(std::ranges::count(report, '\n'));
  mCopied->setText(FromText("The report is on the clipboard: " + Counted(lines, "line") +
                            ". It holds no password; its frames show values of the controller. Read it before you "
                            "send it."));
  mCopied->show();
}

}  // namespace kv
