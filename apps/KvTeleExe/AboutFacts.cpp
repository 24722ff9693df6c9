#include "apps/KvTeleExe/AboutFacts.h"

#include <QGuiApplication>
#include <QLocale>
#include <QScreen>

#include "KvCmDrv1/ports/PortLibrary.h"
#include "dataview/sheets/SheetLibraries.h"
#include "deflate/DeflateLibrary.h"
#include "desktop/SystemName.h"
#include "help/HelpLibrary.h"
#include "secret/SecretLibrary.h"

namespace kv {
namespace {

std::string ScreenText() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  if (screen == nullptr) return "no screen";
  return QString("%1, screen %2 x %3 at %4 %")
      .arg(QGuiApplication::platformName())
      .arg(screen->size().width())
      .arg(screen->size().height())
      .arg(qRound(100 * screen->devicePixelRatio()))
      .toStdString();
}

}  // namespace

ReportedProgram ThisProgram() {
  ReportedProgram program{.name = "KvTeleExe", .system = {}, .libraries = {}};
  program.system = {SystemName(), ScreenText(), "locale " + QLocale::system().name().toStdString()};
  program.libraries = {
      {"Qt", qVersion(), "LGPL-3.0-only"}, PortLibrary(), SecretLibrary(), DeflateLibrary(), HelpLibrary()};
  for (LibraryNotice& library : SheetLibraries()) program.libraries.push_back(std::move(library));
  return program;
}

}  // namespace kv
