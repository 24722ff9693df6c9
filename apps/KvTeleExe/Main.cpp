#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <memory>
#include <string_view>

#include "apps/KvTeleExe/TelepanelProgram.h"
#include "base/PathText.h"
#include "base/ProgramFolders.h"
#include "base/ProgramVersion.h"
#include "journal/JournalDisk.h"
#include "secret/CoreFiles.h"

namespace {

// What is only printed needs no screen, and is asked for where there may be none.
bool OnlyPrints(int argc, char** argv) {
  constexpr std::array<std::string_view, 6> kPrinted{"-h", "-?", "--help", "--help-all", "-v", "--version"};
  return std::any_of(argv + 1, argv + argc, [&](std::string_view argument) {
    return std::ranges::find(kPrinted, argument) != kPrinted.end();
  });
}

// Empty: none is named.
std::filesystem::path NamedHome(const QString& text) {
  return text.isEmpty() ? std::filesystem::path() : std::filesystem::absolute(kv::PathFromUtf8(text.toStdString()));
}

void Tell(const QString& text) {
  QMessageBox::critical(nullptr, "Telepanel", text);
}

QString FaultText(const kv::FoldersFault& fault) {
  return QString("Telepanel cannot start: %1.\nLikely cause: %2.\nWhat to do: %3.")
      .arg(QString::fromStdString(fault.happened), QString::fromStdString(fault.cause),
           QString::fromStdString(fault.cure));
}

}  // namespace

int main(int argc, char** argv) {
  kv::ForbidCoreFiles();
  QCoreApplication::setApplicationName("KvTeleExe");
  QCoreApplication::setApplicationVersion(kv::ProgramVersion());
  const std::unique_ptr<QCoreApplication> application(OnlyPrints(argc, argv) ? new QCoreApplication(argc, argv)
                                                                             : new QApplication(argc, argv));
  QGuiApplication::setQuitOnLastWindowClosed(false);  // the program ends when its host does

  QCommandLineParser options;
  options.setApplicationDescription("Shows and serves Korvantis controllers.");
  options.addHelpOption();
  options.addVersionOption();
  const QCommandLineOption home("home", "The folder with the sessions; otherwise where \"kvtele paths\" says.", "DIR");
  options.addOption(home);
  options.process(*application);
  if (OnlyPrints(argc, argv)) options.showHelp();  // such a word in the place of a folder's name

  const std::filesystem::path named = NamedHome(options.value(home));
  if (const auto fault = kv::HomeFault(named)) {
    Tell(FaultText(*fault));
    return 1;
  }
  const auto folders = kv::FindProgramFolders(kv::PlacesOfProgram(), named);
  if (!folders) {
    Tell(FaultText(folders.error()));
    return 1;
  }
  try {
    kv::TelepanelProgram(folders->paths, kv::UserStateFolder()).Run();
    return 0;
  } catch (const std::exception& failure) {  // the session has been left in order
    Tell(QString("Telepanel has to end: %1.\nLikely cause: the memory is used up, or an error of the program.\nWhat "
                 "to do: start it again; when it happens again, report this text with what was done before.")
             .arg(failure.what()));
    return 1;
  }
}
