#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "KvCmDrv1/ui/TraceModel.h"
#include "desktop/Clipboard.h"
#include "desktop/Prompts.h"

class QAction;
class QTableView;
class QToolBar;

namespace kv {

// What passes on the link, as it passes: the last 1000 entries, which can be halted, copied, and written to a file.
class frmTrace final : public QWidget {
 public:
  frmTrace(std::shared_ptr<Trace> trace, Prompts& prompts, Clipboard& clipboard);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  [[nodiscard]] QToolBar* BuildCommands();
  void BuildTable();
  void Update();
  void Copy();
  void WriteToFile(bool on);
  void ShowFile();

  std::shared_ptr<Trace> mTrace;
  Prompts& mPrompts;
  Clipboard& mClipboard;
  TraceModel mModel;
  QTableView* mTable = nullptr;
  QAction* mPause = nullptr;
  QAction* mWrite = nullptr;
  QTimer mTimer;  // while the window is seen
};

}  // namespace kv
