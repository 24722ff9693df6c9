#pragma once

#include <QTableWidget>
#include <optional>

#include "download/DownloadPreview.h"

namespace kv {

// Both sides of a download beside each other, and behind them what the controller reports afterwards.
class SideTable final : public QTableWidget {
 public:
  explicit SideTable(QWidget* parent);

  void ShowSides(const DownloadSide& now, const DownloadSide& then, const std::optional<DownloadSide>& after = {});

  // All rows without scrolling.
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 private:
  void ShowHeads(bool isDone);
  void Put(int row, int column, const std::string& text);
};

}  // namespace kv
