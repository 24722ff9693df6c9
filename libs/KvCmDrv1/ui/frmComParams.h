#pragma once

#include <expected>
#include <functional>

#include "KvCmDrv1/LinkTrial.h"
#include "KvCmDrv1/ui/LinkDialog.h"
#include "desktop/ui/QtPacer.h"
#include "link/LinkError.h"

class QComboBox;

namespace kv {

// Opens a link with settings that are not kept, and identifies the controller; ends at the pacer's stop request.
using LinkTester = std::function<std::expected<LinkTrial, LinkError>(const LinkSettings& settings)>;

// The communication settings of the session: the kind of link, its fields, and whether a controller answers there.
class frmComParams final : public LinkDialog {
 public:
  struct Parts {
    QtPacer& pacer;
    LinkTester test;
    std::function<void()> showTrace;
  };

  frmComParams(const LinkSettings& current, const std::string& caller, const LinkChoices& choices, Parts parts,
               QWidget* parent);

 private:
  void AddTransports(Transport current);
  void AddCommands();
  void ChooseTransport();
  void Check() override;
  void Test();

  Parts mParts;
  QComboBox* mTransport = nullptr;
  QPushButton* mTest = nullptr;
  QLabel* mResult = nullptr;
};

}  // namespace kv
