#include "host/ToolTable.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "help/HelpTopics.h"
#include "host/DesignFiles.h"
#include "host/LogIn.h"
#include "host/ModalBracket.h"
#include "host/clsAbout.h"
#include "host/shared/GridFileNames.h"
#include "link/identification/GoOnline.h"
#include "models/ModelCatalogue.h"
#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSession = "ID_Session";
constexpr const char* kCloner = "ID_DumpPLC";

constexpr const char* kPidServer = "PID Server.exe";
constexpr const char* kDownloadDesigner = "KorDownloadDesigner.exe";

void RemoveGridFiles(const SharedState& shared) {
  for (const char* name : kGridFiles) {
    std::error_code ignored;
    fs::remove(SessionFile(shared, name), ignored);
  }
}

}  // namespace

std::span<const ToolRow> ToolTable() {
  using C = clsCallerExe;
  // clang-format off
  static constexpr std::array kRows{
      ToolRow{"ID_ComParams",            &C::ShowComParams},
      ToolRow{"ID_Modem",                &C::ShowModem},
      ToolRow{"ID_OnLine",               &C::OnLine},
      ToolRow{"ID_Exit",                 &C::Exit},
      ToolRow{"ID_OPLC_Model",           &C::ChangeModel},
      ToolRow{"Escape",                  &C::Escape},
      ToolRow{"ID_Help",                 &C::Help},
      ToolRow{kSession,                  &C::Session,              ToolNeed::Window},
      ToolRow{"ID_PLC_DB",               &C::PanelDesign,          ToolNeed::PanelDesigner},
      ToolRow{"ID_LogOff",               &C::LogOff},
      ToolRow{"ID_PID_Srv",              &C::PidServer,            ToolNeed::Nothing, kPidServer},
      ToolRow{"ID_DownloadDesigner",     &C::DownloadDesigner,     ToolNeed::Nothing, kDownloadDesigner},
      ToolRow{"ID_PagesFile",            &C::PagesFile},
      ToolRow{"ID_ImportFontsAndImages", &C::ImportFontsAndImages, ToolNeed::ColourCaches},
      ToolRow{kCloner,                   &C::DumpPlc,              ToolNeed::Window},
  };
  // clang-format on
  return kRows;
}

const ToolRow* FindTool(std::string_view id) {
  const auto rows = ToolTable();
  const auto row = std::ranges::find(rows, id, &ToolRow::id);
  return row == rows.end() ? nullptr : &*row;
}

// What a tool has opened is closed with it, unless the host works with the link.
void clsCallerExe::ReleaseLink() {
  if (mRemote && mVsCon && !mRemote->HoldsLink()) mVsCon->CloseDriver();
}

void clsCallerExe::ShowWindow(const std::string& toolId, const std::string& argument) {
  const ScopeGuard closed([this] { ReleaseLink(); });
  ModalBracket bracket(*mRemote);
  if (const auto window = mWindows.at(toolId)(argument)) window->ShowModal();
}

void clsCallerExe::Open(const std::string& verb, const fs::path& file, const std::string& parameters) {
  if (const auto opened = mParts.shell->Open(verb, Utf8FromPath(file), parameters); !opened) Warn(opened.error());
}

fs::path clsCallerExe::InstalledProgram(const char* name) const {
  return PathFromUtf8(mRemote->InstallFolder()) / name;
}

void clsCallerExe::Warn(const std::string& text) {
  mParts.prompts->Show({.text = text, .title = "Telepanel", .icon = PromptIcon::Exclamation});
}

void clsCallerExe::ShowComParams(const std::string& argument) {
  {
    ModalBracket bracket(*mRemote);
    mVsCon->ComParamsCaller(argument);
    mVsCon->ShowComParams();
    UpdateLinkDescription();
  }
  mRemote->Refresh();
}

void clsCallerExe::ShowModem(const std::string&) {
  ModalBracket bracket(*mRemote);
  const std::string before = mVsCon->LinkDescription();
  mVsCon->ShowModemSettings();
  UpdateLinkDescriptionIfNot(before);  // the line and the number are part of it
}

void clsCallerExe::OnLine(const std::string&) {
  GoOnline(mShared, *mParts.prompts);
  if (mParts.clock && mRemote->IsOnline()) NoteSessionUsed(mShared, mParts.clock->LocalTime());
}

void clsCallerExe::Exit(const std::string&) {
  mVsCon->CloseDriver();
  mRemote->Quit();
  mRemote.reset();
}

void clsCallerExe::ChangeModel(const std::string& model) {
  if (const auto kept = SetLastModel(mShared, model); !kept) TellHost(kept.error());
  if (GridFilesMustGo(mRemote->Model(), model)) RemoveGridFiles(mShared);
  mRemote->SetModel(model);
  mRemote->Refresh();
  const std::string before = mVsCon->LinkDescription();
  ConfigureDriverForSession(mShared, mWinsock);
  UpdateLinkDescriptionIfNot(before);  // a session without link settings follows its model
}

void clsCallerExe::Escape(const std::string&) {
  HelpSuppressed = false;
}

void clsCallerExe::Help(const std::string& argument) {
  if (argument == kDistributorEdition) {
    mRemote_OnToolClicked("ID_About", argument);
    return;
  }
  if (HelpSuppressed) return;
  const auto opened = mParts.shell->Open("", Utf8FromPath(mParts.paths.Help() / kHelpFile), "");
  if (opened) return;
  // Nothing on this computer shows such files, or the file is missing: the help's own window knows what to do.
  if (!mParts.help) return Warn(opened.error());
  mParts.help->ShowTopic(HelpTopics().front().number);
}

void clsCallerExe::Session(const std::string& argument) {
  const std::string before = mShared.CurrentSession;
  ShowWindow(kSession, argument);
  TellSession(before);
}

void clsCallerExe::PanelDesign(const std::string&) {
  const ScopeGuard closed([this] { ReleaseLink(); });
  ModalBracket bracket(*mRemote);
  const auto designer = mParts.createPanelDesigner();
  designer->SetDriver(*mVsCon);
  const auto kept = ReadDesign(mShared);
  if (!kept) return Warn(kept.error().Text());
  if (*kept) designer->SetBlocks(**kept);
  designer->Run();
  if (designer->ItemCount() == 0) return RemoveDesign(mShared);
  if (const auto saved = WriteDesign(mShared, designer->GetBlocks()); !saved) Warn(saved.error().Text());
}

void clsCallerExe::LogOff(const std::string&) {
  ModalBracket bracket(*mRemote);
  const auto answer = mParts.prompts->Show({.text = "Are you sure you want to log off?",
                                            .title = "Log Off",
                                            .icon = PromptIcon::Question,
                                            .buttons = PromptButtons::YesNo});
  if (answer == PromptAnswer::Yes) kv::LogOff(mShared);
}

void clsCallerExe::PidServer(const std::string&) {
  Open("open", InstalledProgram(kPidServer));
}

void clsCallerExe::DownloadDesigner(const std::string&) {
  const std::string model = mRemote->Model();
  const std::string_view code = DesignerModelCode(model);
  Open("open", InstalledProgram(kDownloadDesigner), code.empty() ? "" : "/t:" + std::string(code));
}

void clsCallerExe::PagesFile(const std::string&) {
  const auto chosen = mParts.prompts->OpenFile({.title = "Open Telepanel File",
                                                .filter = "Telepanel Files (*.kta)|*.kta",
                                                .purpose = "Pages",
                                                .folder = ReadSessionIni(mShared, "KtaPath", "")});
  if (!chosen) return;
  const std::string folder = Utf8FromPath(PathFromUtf8(*chosen).parent_path());
  if (const auto kept = WriteSessionIni(mShared, "KtaPath", folder); !kept) {
    TellHost("The folder of the Telepanel files was not kept. " + kept.error());
  }
  mRemote->OpenPagesFile(*chosen);
}

// `file` is one that the user has chosen from the recent ones; empty: he is asked for one.
void clsCallerExe::ImportFontsAndImages(const std::string& file) {
  ModalBracket bracket(*mRemote);
  const auto chosen = !file.empty()
                          ? std::optional(file)
                          : mParts.prompts->OpenFile({.title = "Open Cache File",
                                                      .filter = "Telepanel For Color Cache Files (*.ktc)|*.ktc",
                                                      .purpose = "Caches"});
  if (!chosen) return;
  const auto isUsed = mRemote->OpenColourCache(*chosen);
  if (!isUsed) {
    const std::string text = "Error Opening Cache File. Please Check for Disk Space\r\n\r\n" + isUsed.error();
    mParts.prompts->Show({.text = text, .title = "Error"});
  }
  if (!isUsed || !*isUsed) return;  // the next time on line begins with the list's first
  if (const auto added = AddRecentCache(mShared, *chosen)) {
    mRemote->SetRecentCaches(*added);
  } else {
    TellHost(added.error());
  }
}

void clsCallerExe::DumpPlc(const std::string& argument) {
  ShowWindow(kCloner, argument);
  mRemote->StatusMessage("");
}

}  // namespace kv
