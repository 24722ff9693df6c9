// Pictures of drawings.
//
//   icon_pictures FOLDER SIZE,SIZE,... FILE.svg...    FOLDER/FILE-SIZE.png of each, in black
//   icon_pictures FOLDER --program FILE.svg           FOLDER/SIZE.png in the sizes of program icons, and
//   FOLDER/FILE.ico

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>
#include <QtEndian>

namespace {

bool Save(const QString& file, const QByteArray& content) {
  QFile out(file);
  if (out.open(QIODevice::WriteOnly) && out.write(content) == content.size() && out.flush()) return true;
  QTextStream(stderr) << "icon_pictures: " << file << " cannot be written: " << out.errorString() << "\n";
  return false;
}

// Nothing when the drawing cannot be read.
QByteArray Picture(const QString& drawing, int size) {
  QSvgRenderer renderer(drawing);
  if (!renderer.isValid()) {
    QTextStream(stderr) << "icon_pictures: " << drawing << " is no drawing\n";
    return {};
  }
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  renderer.render(&painter, QRectF(0, 0, size, size));
  painter.end();
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  image.save(&bytes, "PNG");
  return bytes.data();
}

bool SavePicture(const QString& drawing, int size, const QString& file) {
  const QByteArray picture = Picture(drawing, size);
  return !picture.isEmpty() && Save(file, picture);
}

template <typename Number>
void Put(QByteArray& bytes, Number number) {
  const Number little = qToLittleEndian(number);
  bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
}

// An icon file: a head, an entry for each picture, then the pictures as PNG, which every Windows that is served reads.
QByteArray IconFile(const QString& drawing, const QList<int>& sizes) {
  constexpr quint16 kIcon = 1;
  constexpr quint16 kBits = 32;
  constexpr qsizetype kHead = 6;
  constexpr qsizetype kEntry = 16;
  QByteArray entries;
  QByteArray pictures;
  Put<quint16>(entries, 0);
  Put<quint16>(entries, kIcon);
  Put<quint16>(entries, static_cast<quint16>(sizes.size()));
  for (const int size : sizes) {
    const QByteArray picture = Picture(drawing, size);
    Put<quint8>(entries, static_cast<quint8>(size));  // 256 reads as 0
    Put<quint8>(entries, static_cast<quint8>(size));
    Put<quint16>(entries, 0);  // no table of colours
    Put<quint16>(entries, 1);  // planes
    Put<quint16>(entries, kBits);
    Put<quint32>(entries, static_cast<quint32>(picture.size()));
    Put<quint32>(entries, static_cast<quint32>(kHead + kEntry * sizes.size() + pictures.size()));
    pictures += picture;
  }
  return entries + pictures;
}

bool MakeProgramIcons(const QString& folder, const QString& drawing) {
  for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
    if (!SavePicture(drawing, size, QString("%1/%2.png").arg(folder).arg(size))) return false;
  }
  return Save(folder + "/" + QFileInfo(drawing).completeBaseName() + ".ico",
              IconFile(drawing, {16, 24, 32, 48, 64, 256}));
}

bool MakePictures(const QString& folder, const QString& sizes, const QStringList& drawings) {
  for (const QString& drawing : drawings) {
    for (const QString& size : sizes.split(',')) {
      const QString name = QString("%1/%2-%3.png").arg(folder, QFileInfo(drawing).completeBaseName(), size);
      if (!SavePicture(drawing, size.toInt(), name)) return false;
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const QStringList arguments = QGuiApplication::arguments().mid(1);
  if (arguments.size() < 3) {
    QTextStream(stderr) << "usage: icon_pictures FOLDER SIZE,SIZE,... FILE.svg...\n"
                           "       icon_pictures FOLDER --program FILE.svg\n";
    return 2;
  }
  if (!QDir().mkpath(arguments[0])) return 1;
  const bool isDone = arguments[1] == "--program" ? MakeProgramIcons(arguments[0], arguments[2])
                                                  : MakePictures(arguments[0], arguments[1], arguments.mid(2));
  return isDone ? 0 : 1;
}
