#include "apps/KvTeleExe/ToolWindowTable.h"

#include <array>

#include "apps/KvTeleExe/AboutFacts.h"
#include "apps/KvTeleExe/DialogWindow.h"
#include "base/ProgramVersion.h"
#include "cache/ui/frmRestoreCache.h"
#include "clone/ui/frmDumpPLC.h"
#include "dataview/ui/frmDataTypesView.h"
#include "desktop/UserName.h"
#include "desktop/ui/RunDialog.h"
#include "download/ui/frmDownloader.h"
#include "host/ui/frmAbout.h"
#include "host/ui/frmLogIn.h"
#include "journal/ui/frmJournal.h"
#include "sessions/SessionIni.h"
#include "sessions/ui/frmSession.h"

namespace kv {
namespace {

using Made = std::unique_ptr<QDialog>;

constexpr std::array kTable{
    ToolWindowRow{"ID_About",
                  [](const WindowServices& of, const std::string& edition, QWidget* parent) -> Made {
                    clsAbout about(of.shell, edition);
                    about.VersionSettings = ProgramVersion();
                    const AboutServices services{of.shared, of.clock, of.clipboard, ThisProgram()};
                    return std::make_unique<frmAbout>(about, services, parent);
                  }},
    ToolWindowRow{"ID_DataTypes",
                  [](const WindowServices& of, const std::string&, QWidget* parent) -> Made {
                    const mdlDataTypesView::DataTypesViewParts parts{of.shared,    of.prompts,     of.pacer,
                                                                     of.clipboard, of.hexSelector, of.clock};
                    return std::make_unique<frmDataTypesView>(parts, of.pacer, parent);
                  }},
    ToolWindowRow{"ID_Downloader",
                  [](const WindowServices& of, const std::string& user, QWidget* parent) -> Made {
                    const DownloaderServices services{of.shared, of.prompts, of.pacer, of.clock};
                    return std::make_unique<frmDownloader>(services, user, parent);
                  }},
    ToolWindowRow{"ID_DumpPLC",
                  [](const WindowServices& of, const std::string&, QWidget* parent) -> Made {
                    const ClonerServices services{of.shared, of.prompts, of.pacer, of.clock};
                    return std::make_unique<frmDumpPLC>(services, parent);
                  }},
    ToolWindowRow{"ID_ImportCacheFromPLC",
                  [](const WindowServices& of, const std::string&, QWidget* parent) -> Made {
                    const CacheServices services{of.shared, of.prompts, of.pacer, of.clock};
                    auto wizard = std::make_unique<frmRestoreCache>(services, parent);
                    wizard->SetRemoteClass(*of.shared.Remote);
                    return wizard;
                  }},
    ToolWindowRow{"ID_Journal",
                  [](const WindowServices& of, const std::string&, QWidget* parent) -> Made {
                    const JournalServices services{{SessionFolder(of.shared), of.stateFolder},
                                                   SystemJournalDisk(),
                                                   of.prompts,
                                                   of.pacer,
                                                   of.clock,
                                                   of.shared.UserName.empty() ? UserName() : of.shared.UserName};
                    return std::make_unique<frmJournal>(services, parent);
                  }},
    ToolWindowRow{"ID_LogIn",
                  [](const WindowServices& of, const std::string&, QWidget* parent) -> Made {
                    return std::make_unique<frmLogIn>(of.shared, parent);
                  }},
    ToolWindowRow{"ID_Session",
                  [](const WindowServices& of, const std::string&, QWidget* parent) -> Made {
                    return std::make_unique<frmSession>(of.shared, of.prompts, parent);
                  }},
};

}  // namespace

std::span<const ToolWindowRow> ToolWindowTable() {
  return kTable;
}

ToolWindows MakeToolWindows(const WindowServices& services) {
  ToolWindows windows;
  for (const ToolWindowRow& row : kTable) {
    windows[std::string(row.id)] = [&row, services](const std::string& argument) {
      Made dialog = row.make(services, argument, DialogOwner());
      return std::make_unique<DialogWindow>(std::move(dialog), services);
    };
  }
  return windows;
}

}  // namespace kv
