#include "tools/screenshots/PictureComparison.h"

#include <QDir>
#include <QImage>
#include <cstdlib>
#include <iostream>

namespace kv::test {
namespace {

// Less is how two runs draw the same letter.
constexpr int kLeastDifference = 24;

bool IsOther(QRgb one, QRgb other) {
  return std::abs(qRed(one) - qRed(other)) > kLeastDifference ||
         std::abs(qGreen(one) - qGreen(other)) > kLeastDifference ||
         std::abs(qBlue(one) - qBlue(other)) > kLeastDifference;
}

// The picture of now, pale, with each pixel in red that was another one before.
struct Marked {
  QImage picture;
  int changed = 0;
};

Marked Mark(const QImage& before, const QImage& now) {
  Marked marked{now.convertToFormat(QImage::Format_RGB32), 0};
  for (int y = 0; y < now.height(); ++y) {
    for (int x = 0; x < now.width(); ++x) {
      const bool isOther = !before.valid(x, y) || IsOther(before.pixel(x, y), now.pixel(x, y));
      marked.changed += isOther ? 1 : 0;
      const QColor pale = QColor(now.pixel(x, y)).lighter(130);
      marked.picture.setPixel(x, y, isOther ? qRgb(220, 0, 0) : pale.rgb());
    }
  }
  return marked;
}

}  // namespace

int ComparePictures(const QString& before, const QString& now, const QString& marks) {
  const QStringList pictures{"*.png"};
  int differing = 0;
  for (const QString& name : QDir(now).entryList(pictures, QDir::Files, QDir::Name)) {
    const QImage old(before + "/" + name);
    const QImage taken(now + "/" + name);
    if (old.isNull()) {
      std::cout << name.toStdString() << ": new\n";
      ++differing;
      continue;
    }
    const Marked marked = Mark(old, taken);
    if (marked.changed == 0 && old.size() == taken.size()) continue;
    ++differing;
    const double percent = 100.0 * marked.changed / (static_cast<double>(taken.width()) * taken.height());
    std::cout << name.toStdString() << ": " << percent << " % of it is different\n";
    if (!marked.picture.save(marks + "/" + name))
      std::cerr << "cannot write " << marks.toStdString() << "/" << name.toStdString() << "\n";
  }
  for (const QString& name : QDir(before).entryList(pictures, QDir::Files, QDir::Name)) {
    if (QFile::exists(now + "/" + name)) continue;
    std::cout << name.toStdString() << ": not taken any more\n";
    ++differing;
  }
  return differing;
}

}  // namespace kv::test
