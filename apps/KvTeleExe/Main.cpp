#include <QApplication>
#include <QCommandLineParser>
#include <filesystem>

#include "apps/KvTeleExe/TelepanelProgram.h"
#include "base/PathText.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("KvTeleExe");
  QApplication::setApplicationVersion(KV_VERSION);
  QApplication::setQuitOnLastWindowClosed(false);  // the program ends when its host does

  QCommandLineParser options;
  options.setApplicationDescription("Shows and serves Korvantis controllers.");
  options.addHelpOption();
  options.addVersionOption();
  const QCommandLineOption home("home", "The program folder, with the sessions; otherwise that of the executable.",
                                "DIR");
  options.addOption(home);
  options.process(application);

  const std::filesystem::path folder =
      options.isSet(home) ? std::filesystem::absolute(kv::PathFromUtf8(options.value(home).toStdString()))
                          : kv::ExecutableFolder();
  kv::TelepanelProgram(folder).Run();
  return 0;
}
