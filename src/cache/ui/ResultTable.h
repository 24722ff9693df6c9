#pragma once

#include <QTableWidget>
#include <vector>

#include "KvTele2/cache/CacheImport.h"

namespace kv {

// What came into a cache file, as pictures: fonts as lines of samples, images as thumbnails, with their names and
// whether they were read or were in the file already.
class ResultTable final : public QTableWidget {
 public:
  explicit ResultTable(QWidget* parent);

  void Fill(const std::vector<cache::CacheResult>& results, const cache::CacheContent& content);

 private:
  void FillRow(int row, const cache::CacheResult& result, const cache::CachedResource* resource);
};

}  // namespace kv
