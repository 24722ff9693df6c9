#include "desktop/ui/LastFolders.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include "base/ProfileStrings.h"

namespace kv {
namespace {

constexpr const char* kSection = "Folders";
constexpr std::size_t kLongestAddress = 8192;  // three characters for each byte of a long path

bool IsFolder(const std::string& path) {
  return !path.empty() && QFileInfo(QString::fromStdString(path)).isDir();
}

}  // namespace

std::string LastFolders::Of(const std::string& purpose) const {
  const auto used = mFolders.find(purpose);
  for (const std::string& folder : {used == mFolders.end() ? Kept(purpose) : used->second, mLatest}) {
    if (IsFolder(folder)) return folder;
  }
  // A dialog takes a folder that is not there for a file's name.
  const std::string documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).toStdString();
  return IsFolder(documents) ? documents : QDir::homePath().toStdString();
}

// A settings file holds Windows-1252 only, and a folder may have any name: it is kept as an address, which is ASCII.
std::string LastFolders::Kept(const std::string& purpose) const {
  if (mFile.empty() || purpose.empty()) return "";
  const std::string address = ReadProfileString(mFile, kSection, purpose, "", kLongestAddress);
  return QUrl::fromEncoded(QByteArray::fromStdString(address)).toLocalFile().toStdString();
}

void LastFolders::Remember(const std::string& purpose, const std::string& folder) {
  mLatest = folder;
  if (purpose.empty() || mFolders[purpose] == folder) return;
  mFolders[purpose] = folder;
  if (mFile.empty()) return;
  const QByteArray address = QUrl::fromLocalFile(QString::fromStdString(folder)).toEncoded();
  // A folder that cannot be kept is no reason to disturb anybody.
  (void)WriteProfileString(mFile, kSection, purpose, address.toStdString());
}

}  // namespace kv
