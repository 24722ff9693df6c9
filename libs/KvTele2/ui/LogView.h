#pragma once

#include <QTableView>

#include "KvTele2/ui/LogModel.h"

namespace kv {

// The log at the foot of the main window: time and text, the newest entry at the end.
class LogView final : public QTableView {
 public:
  explicit LogView(QWidget* parent);

  void Follow(const Journal& journal);
  // The selected entries, or all when none is selected.
  [[nodiscard]] QString CopyText() const;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] bool IsAtEnd() const;
  void FitRow(int row);

  LogModel mModel;
};

}  // namespace kv
