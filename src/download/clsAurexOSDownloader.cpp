#include "download/clsAurexOSDownloader.h"

#include "base/PathText.h"
#include "clone/ProgramState.h"
#include "clone/RestoreCheck.h"
#include "deflate/Deflate.h"
#include "download/DownloadFamily.h"
#include "download/OsFileLists.h"
#include "download/OsFileName.h"
#include "link/OsVersion.h"
#include "link/TimeOnLink.h"

// Everything up to the first command that changes the controller. What comes then is in clsAurexOSDownloaderWrite.cpp.
namespace kv {
namespace {

constexpr std::string_view kTelepanel = "Telepanel";  // title of boxes that have none of their own

}  // namespace

bool clsAurexOSDownloader::DownloadOS(Channel& link, const DownloadOrder& order) {
  mWork.emplace(link, mWindow, mContext.questions, mContext.pacer, order);
  const Step done = RunSteps();
  mOutcome = done ? DownloadOutcome{.left = mWork->left, .done = DoneText()} : done.error();
  mWork->EndOperation(mOutcome);
  if (!done) AskWhatIsLeft();
  const std::string saved = mMemory.IsEmpty() ? "" : Utf8FromPath(mMemory.File());
  if (!saved.empty() && !mOutcome.reason.contains(saved)) {
    mOutcome.reason += "\nWhat the controller's memory held before is saved in " + saved + ".";
  }
  mWindow.ResetProgress(1);
  mWindow.SetStatus("");
  return done.has_value();
}

std::string clsAurexOSDownloader::DoneText() const {
  return "O/S " + NumberText(mOs->number) + " and system fonts " + FontsText(*mFonts) + " were sent and programmed." +
         (mIsMemoryBack ? " The memory that was saved before has been written back, and the program runs on it." : "");
}

clsAurexOSDownloader::Step clsAurexOSDownloader::RunSteps() {
  using C = clsAurexOSDownloader;
  constexpr Step (C::* kSteps[])() = {&C::Identify,
                                      &C::ChooseFiles,
                                      &C::CheckType,
                                      &C::ReadFiles,
                                      &C::ShowPreview,
                                      &C::CheckBackup,
                                      &C::AskForNoNewerOs,
                                      &C::AskToEndLoad,
                                      &C::Confirm,
                                      &C::CheckFontsVersion,
                                      &C::WarnOfBootLoader,
                                      &C::WarnOfDataTypes,
                                      &C::CheckFonts,
                                      &C::GetAccess,
                                      &C::EndDryRun,
                                      &C::NameOperation,
                                      &C::TakeBackup,
                                      &C::SaveMemory,
                                      &C::CheckFilesAreTheSame,
                                      &C::CheckControllerIsTheSame,
                                      &C::TellUncompressed,
                                      &C::ReadForceBit,
                                      &C::EnterBootMode,
                                      &C::WriteFiles,
                                      &C::Reset,
                                      &C::CheckNewOs,
                                      &C::RestoreForceBit,
                                      &C::RestoreMemory,
                                      &C::TellForceFailure,
                                      &C::TellStoppedProgram};
  return mWork->DoAll(*this, kSteps);
}

clsAurexOSDownloader::Step clsAurexOSDownloader::Identify() {
  auto found = FindController(mWork->link);
  if (!found) return FailLink("The controller could not be identified.", found.error());
  mFound = *std::move(found);
  if (auto fits = CheckFamily(); !fits) return fits;
  mChange.isInBoot = IsBootLoader(mFound);
  mChange.installed = ParsePlainOsVersion(OsVersionText(mFound.version)).value_or(0);
  mModel = AurexOsModelText(mFound.version.model, mFound.version.hardwareCode);
  return {};
}

// The window has chosen this engine by what it knew; the line may lead to another controller meanwhile.
clsAurexOSDownloader::Step clsAurexOSDownloader::CheckFamily() {
  const auto family = DownloadFamilyOf(mWork->link, mFound.version.model);
  if (!family) return FailLink("Which downloads the controller takes could not be found out.", family.error());
  if (*family == DownloadFamily::Aurex) return {};
  const std::string text(kColourOsRefusal);
  mWork->Tell(text, PromptIcon::Exclamation, kTelepanel);
  return Refuse(DownloadCause::NotFit, text);
}

clsAurexOSDownloader::Step clsAurexOSDownloader::ChooseFiles() {
  const AurexOsLists lists = ListAurexOsFiles(mPaths, mModel);
  mChoice = mWindow.ChooseAurexOs(lists);
  if (!mChoice.os.empty() && !mChoice.fonts.empty()) {
    const Step there = mWork->CheckIsThere(mChoice.os, kTelepanel);
    return there ? mWork->CheckIsThere(mChoice.fonts, kTelepanel) : there;
  }
  struct Part {
    const FileList& list;
    const std::filesystem::path& chosen;
    const char* what;
  };
  const Part parts[] = {{lists.os, mChoice.os, "O/S file"}, {lists.fonts, mChoice.fonts, "file of system fonts"}};
  for (const Part& part : parts) {
    if (!part.chosen.empty()) continue;
    const std::string folder = Utf8FromPath(part.list.folder) + ".";
    if (part.list.IsEmpty()) {
      return Refuse(DownloadCause::File, std::string("There is no ") + part.what + " in " + folder);
    }
    if (part.list.preselected) continue;
    return Refuse(DownloadCause::NotFit,
                  std::string("No ") + part.what + " was chosen, and none fits this controller in " + folder);
  }
  return Decline();
}

clsAurexOSDownloader::Step clsAurexOSDownloader::CheckType() {
  const std::string type = AurexOsTypeIn(GetFileName(mChoice.os));
  if (type == ExpectedAurexOsType(mModel)) return {};
  const std::string text = "PLC Type: " + mModel + " does not match OS Type: " + type;
  mWork->Tell(text, PromptIcon::None, kTelepanel);
  return Refuse(DownloadCause::NotFit, text + ".");
}

// What is wrong with the fonts is told in its place among the questions.
clsAurexOSDownloader::Step clsAurexOSDownloader::ReadFiles() {
  auto os = ReadAurexOsFile(mChoice.os);
  if (!os) {
    mWork->Tell(os.error().Text(), PromptIcon::Exclamation, kTelepanel);
    return Refuse(DownloadCause::File, os.error().Text());
  }
  mOs = *std::move(os);
  mChange.next = mOs->number.version;
  mFonts = ReadFontsFile(mChoice.fonts);
  if (!mFonts) return {};
  mTransfer = MakeOsTransfer(*mOs, *mFonts, [this](std::span<const std::uint8_t> bytes) {
    return Deflate(bytes, [this] { mContext.pacer.Turn(); });
  });
  return {};
}

clsAurexOSDownloader::Step clsAurexOSDownloader::CheckBackup() {
  if (mWork->order.backup == nullptr) return {};
  const std::string why = WhyNoBackup(mWork->link, mFound);
  return why.empty() ? Step() : Refuse(DownloadCause::Backup, why);
}

clsAurexOSDownloader::Step clsAurexOSDownloader::ShowPreview() {
  if (mWork->order.onPreview) mWork->order.onPreview(Preview());
  return {};
}

DownloadPreview clsAurexOSDownloader::Preview() const {
  DownloadPreview preview{.controller = ControllerName(), .now = SideOf(mFound), .then = {}};
  preview.then.os = NumberText(mOs->number);
  if (mFonts) preview.then.fonts = FontsText(*mFonts);
  if (std::string why = WhyNoFonts(); !why.empty()) preview.warnings.push_back(std::move(why));
  preview.bytes = StreamBytes(mTransfer);
  // Each chunk and each status goes with a head and a check of 32 bytes, both ways.
  const std::uint64_t exchanges = ChunkCount(mTransfer) + 2 * mTransfer.topics.size() + 4;
  preview.about = TimeOnLink(mWork->link, preview.bytes + 64 * exchanges, exchanges);
  const int passes = (mChange.NeedsMemorySaved() ? kPassesOfSave : 0) + (mWork->order.backup ? kPassesOfBackup : 0);
  preview.clones = CloneTimeText(mWork->link, passes);
  preview.losses = mChange.Losses();
  if (const BackupBefore* backup = mWork->order.backup) {
    preview.warnings.push_back("What it holds now is cloned into " + Utf8FromPath(backup->File()) +
                               " first. The download does not write that clone back.");
  }
  for (std::string& warning : mWork->WarningsOf(mFound, mOs->number)) preview.warnings.push_back(std::move(warning));
  return preview;
}

clsAurexOSDownloader::Step clsAurexOSDownloader::AskForNoNewerOs() {
  return mWork->AskForNoNewerOs(mFound, ControllerName(), mOs->number, kTelepanel);
}

// A question of its own: who wants the O/S need not know that somebody else is at it.
clsAurexOSDownloader::Step clsAurexOSDownloader::AskToEndLoad() {
  if (mFound.info.state != 'L') return {};
  const bool isWanted =
      mWork->Asks(DownloadQuestion::EndLoad,
                  "The controller (" + ControllerName() +
                      ") is loading: a restore or download was cut, or somebody else's is under way. What is being "
                      "loaded would be lost, and somebody else's tool may take what comes out for its own. End that "
                      "load?",
                  PromptIcon::Exclamation);
  return isWanted ? Step() : Decline();
}

clsAurexOSDownloader::Step clsAurexOSDownloader::Confirm() {
  const bool isWanted = mWork->Asks(DownloadQuestion::Begin,
                                    "O/S download is done via the Aurex's COM port 1. \r\n\r\n"
                                    "Note that the download process will cause:\r\n"
                                    " - Your current application to STOP running.\r\n"
                                    " - The PLC to RESET at the end of the download process.\r\n\r\n"
                                    "Continue ?",
                                    PromptIcon::Exclamation, "PLC STOP & RESET");
  return isWanted ? Step() : Decline();
}

clsAurexOSDownloader::Step clsAurexOSDownloader::CheckFontsVersion() {
  if (!mChange.RefusesFonts(FontsVersionIn(GetFileName(mChoice.fonts)).value_or(0))) return {};
  const std::string text = "This OS requires system fonts version 130 B(0) or later.";
  mWork->Tell(text, PromptIcon::None, kTelepanel);
  return Refuse(DownloadCause::NotFit, text);
}

clsAurexOSDownloader::Step clsAurexOSDownloader::WarnOfBootLoader() {
  if (!mChange.ChangesBootLoader() || mWindow.WarnOfIncompatibleBios() != BiosAnswer::Abort) return {};
  return Decline();
}

clsAurexOSDownloader::Step clsAurexOSDownloader::WarnOfDataTypes() {
  if (!mChange.LosesDataTypes()) return {};
  const bool isWanted =
      mWork->Asks(DownloadQuestion::LoseValues,
                  "This operating system does not support the data types currently defined in this controller.\r\n"
                  "Continuing this operation will corrupt the values currently in the controller's memory.\r\n"
                  "Do you want to continue?",
                  PromptIcon::Exclamation, "Warning");
  return isWanted ? Step() : Decline();
}

clsAurexOSDownloader::Step clsAurexOSDownloader::CheckFonts() {
  const std::string why = WhyNoFonts();
  if (why.empty()) return {};
  mWork->Tell("Illegal Fonts file", PromptIcon::None, "Error");
  return Refuse(mFonts ? DownloadCause::NotFit : DownloadCause::File, why);
}

std::string clsAurexOSDownloader::WhyNoFonts() const {
  if (!mFonts) return mFonts.error().Text() + ".";
  if (mFonts->model == mOs->model) return "";
  return GetFileName(mChoice.fonts) + " holds system fonts for the O/S model " + mFonts->model + ", not for " +
         mOs->model + ".";
}

// A password that is not known is found out in a dry run, too.
clsAurexOSDownloader::Step clsAurexOSDownloader::EndDryRun() {
  if (!mWork->order.isDryRun) return {};
  for (const bool isCloned : {mWork->order.backup != nullptr, mChange.NeedsMemorySaved()}) {
    if (!isCloned) continue;
    if (Step asked = mWork->ShowCloneQuestions(ControllerName(), mFound.info.state); !asked) return asked;
  }
  return std::unexpected(DownloadOutcome{.end = DownloadEnd::WouldGoOn});
}

clsAurexOSDownloader::Step clsAurexOSDownloader::NameOperation() {
  const std::string fonts = mChoice.fonts.empty() ? "" : " and the fonts " + Utf8FromPath(mChoice.fonts);
  mWork->BeginOperation("download the O/S " + Utf8FromPath(mChoice.os) + fonts + mFound.ReplacedText());
  return {};
}

std::string clsAurexOSDownloader::ControllerName() const {
  return ControllerNameOf(mFound, DownloadFamily::Aurex, mWork->order.link);
}

clsAurexOSDownloader::Step clsAurexOSDownloader::Refuse(DownloadCause cause, const std::string& reason) const {
  Step refused = mWork->Refuse(reason);
  refused.error().cause = cause;
  return refused;
}

clsAurexOSDownloader::Step clsAurexOSDownloader::Decline() const {
  if (mWork->pacer.StopRequested()) return mWork->Stop();
  Step declined = mWork->Fail(DownloadCause::User, "It was not confirmed.");
  declined.error().end = DownloadEnd::Declined;
  return declined;
}

clsAurexOSDownloader::Step clsAurexOSDownloader::FailLink(const std::string& what, const LinkError& error) const {
  return Behind(what, mWork->FailOf(error).error());
}

clsAurexOSDownloader::Step clsAurexOSDownloader::Behind(const std::string& what, DownloadOutcome failure) const {
  failure.reason = what + "\n" + failure.reason;
  failure.left = mWork->left;
  return std::unexpected(std::move(failure));
}

}  // namespace kv
