#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "clone/CloneSegment.h"

namespace kv {

// The rows of the cloner's grid: the segments of a controller, the command lines of a restore, or what a comparison
// found, under one heading. Of the command lines of a big file the last ones are kept; the row headers go on counting.
class DumpList final : public QAbstractTableModel {
 public:
  static constexpr int kMostRows = 20'000;

  explicit DumpList(QObject* parent, int mostRows = kMostRows) : QAbstractTableModel(parent), mMostRows(mostRows) {}

  void ShowSegments(std::span<const CloneSegment> segments);
  void ShowLines(const char* heading, const std::vector<std::string>& lines);  // UTF-8
  void BeginCommands();                                                        // none as yet
  void AddCommand(std::string_view line);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void Reset(const char* heading, std::deque<std::string> rows);

  int mMostRows;
  const char* mHeading = "Segment Name";
  std::deque<std::string> mRows;
  int mDropped = 0;  // rows before those that are kept
};

}  // namespace kv
