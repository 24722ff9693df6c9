#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <exception>
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
  try {
    kv::TelepanelProgram(folder).Run();
    return 0;
  } catch (const std::exception& failure) {  // the session has been left in order
    const QString text =
        "Telepanel has to end: %1.\nLikely cause: the memory is used up, or an error of the program.\nWhat to do: "
        "start it "
        "again; when it happens again, report this text with what was done before.";
    QMessageBox::critical(nullptr, "Telepanel", text.arg(failure.what()));
    return 1;
  }
}
