#include "desktop/ui/QtShell.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QUrl>

namespace kv {

namespace {

QString FromText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

std::expected<void, std::string> QtShell::Open(std::string_view /*verb*/, std::string_view file,
                                               std::string_view parameters) {
  const std::string name(file);
  const bool isAddress = name.find("://") != std::string::npos;
  const QFileInfo found(FromText(file));
  if (!isAddress && !found.exists()) {
    return std::unexpected(name + " cannot be opened: it does not exist. Check the installation.");
  }
  if (!isAddress && found.isFile() && found.isExecutable()) {
    const QStringList words = QProcess::splitCommand(FromText(parameters));
    if (QProcess::startDetached(found.absoluteFilePath(), words, found.absolutePath())) return {};
    return std::unexpected(name + " cannot be started: the system refused it. Check the installation.");
  }
  const QUrl place = isAddress ? QUrl(FromText(file)) : QUrl::fromLocalFile(found.absoluteFilePath());
  if (QDesktopServices::openUrl(place)) return {};
  return std::unexpected(name + " cannot be opened: no program on this computer is set up to open it.");
}

}  // namespace kv
