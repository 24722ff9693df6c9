#pragma once

#include <QDialog>

#include "desktop/Clipboard.h"
#include "host/ErrorReport.h"
#include "host/clsAbout.h"

class QLabel;
class QVBoxLayout;

namespace kv {

// What the about screen works with; the references outlive it.
struct AboutServices {
  const SharedState& shared;
  const WallClock& clock;
  Clipboard& clipboard;
  ReportedProgram program;
};

// The about screen: version, addresses, the libraries of others with their licences, and the report that belongs to a
// call for support.
class frmAbout final : public QDialog {
 public:
  // `about` has its version.
  frmAbout(clsAbout about, AboutServices services, QWidget* parent);

 private:
  void BuildHead(QVBoxLayout& page);
  void BuildAddresses(QVBoxLayout& page);
  void BuildLibraries(QVBoxLayout& page);
  void BuildButtons(QVBoxLayout& page);
  void CopyReport();

  clsAbout mAbout;
  AboutServices mServices;
  QLabel* mCopied = nullptr;
};

}  // namespace kv
