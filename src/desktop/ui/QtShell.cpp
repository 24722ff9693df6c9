#include "desktop/ui/QtShell.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeDatabase>
#include <QProcess>
#include <QString>
#include <QUrl>

namespace kv {

namespace {

QString FromText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The opener of the free desktops reports success also where nobody is set up for a kind of file. So it is asked before
// who is; where that cannot be asked, it is believed.
bool IsKnownToHaveNoViewer(const QFileInfo& file) {
  const QString platform = QGuiApplication::platformName();
  if (platform != "xcb" && !platform.startsWith("wayland")) return false;
  constexpr int kPatience = 3000;  // milliseconds; it answers in some tens
  QProcess asked;
  asked.start("xdg-mime", {"query", "default", QMimeDatabase().mimeTypeForFile(file).name()});
  return asked.waitForFinished(kPatience) && asked.exitStatus() == QProcess::NormalExit && asked.exitCode() == 0 &&
         asked.readAllStandardOutput().trimmed().isEmpty();
}

}  // namespace

std::expected<void, std::string> QtShell::Open(std::string_view /*verb*/, std::string_view file,
                                               std::string_view parameters) {
  const std::string name(file);
  const bool isAddress = name.find("://") != std::string::npos || name.starts_with("mailto:");
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
  const bool hasNone = !isAddress && IsKnownToHaveNoViewer(found);
  if (!hasNone && QDesktopServices::openUrl(place)) return {};
  return std::unexpected(name + " cannot be opened: no program on this computer is set up to open it.");
}

}  // namespace kv
