#include "sessions/SessionManager.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "base/Texts.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 255;  // what the common file systems take for one folder's name, in bytes

// Names that a Windows machine keeps for devices, with or without an extension.
constexpr auto kDeviceNames = std::to_array<std::string_view>({"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"});
constexpr auto kNumberedDevices = std::to_array<std::string_view>({"COM", "LPT"});
constexpr auto kSuperscripts = std::to_array<std::string_view>({"\xC2\xB9", "\xC2\xB2", "\xC2\xB3"});  // 1, 2, 3

bool IsDeviceNumber(std::string_view text) {
  return (text.size() == 1 && text[0] >= '0' && text[0] <= '9') ||
         std::ranges::find(kSuperscripts, text) != kSuperscripts.end();
}

bool IsDeviceName(const std::string& name) {
  std::string stem = UpperCased(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  if (std::ranges::find(kDeviceNames, stem) != kDeviceNames.end()) return true;
  return stem.size() > 3 && IsDeviceNumber(std::string_view(stem).substr(3)) &&
         std::ranges::find(kNumberedDevices, stem.substr(0, 3)) != kNumberedDevices.end();
}

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// What is alike in two names that a file system without case takes for one; of letters beyond A to Z, those of Western
// Europe.
std::string CaseFolded(const std::string& name) {
  std::string folded = UpperCased(name);
  for (std::size_t i = 1; i < folded.size(); ++i) {
    const auto second = static_cast<unsigned char>(folded[i]);
    const bool isSmall = folded[i - 1] == '\xC3' && second >= 0xA0 && second <= 0xBE && second != 0xB7;
    if (isSmall) folded[i] = static_cast<char>(second - 0x20);
  }
  return folded;
}

bool IsReadOnly(const fs::path& file) {
  std::error_code error;
  const auto status = fs::symlink_status(file, error);
  return !error && fs::is_regular_file(status) && (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

// The first file that keeps the folder from being deleted: one that is write-protected, or the folder itself when it
// cannot be looked through.
std::optional<fs::path> FindHold(const fs::path& folder) {
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (IsReadOnly(entry->path())) return entry->path();
  }
  return error ? std::optional(folder) : std::nullopt;
}

// The journal of changes tells of the one session.
void CopyFiles(const fs::path& source, const fs::path& target, std::error_code& error) {
  for (fs::directory_iterator entry(source, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path name = entry->path().filename();
    if (Utf8FromPath(name).starts_with(kChangesFilePrefix)) continue;
    fs::copy(entry->path(), target / name, fs::copy_options::recursive, error);
    if (error) return;
  }
}

std::string Failure(const std::string& what, const std::error_code& error) {
  return what + ": " + SystemMessage(error) + "; check that this user may write there, and that the disk has room.";
}

bool HasJournal(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (Utf8FromPath(entry->path().filename()).starts_with(kChangesFilePrefix)) return true;
  }
  return false;
}

MessageBox DeleteQuestion(const std::string& name, const SessionFacts& facts, bool hasJournal) {
  std::string about = facts.model;
  if (!facts.link.empty()) about += (about.empty() ? "" : ", ") + facts.link;
  return {
      .text = "Delete the session '" + name + "'" + (about.empty() ? "" : " (" + about + ")") +
              "?\r\n\r\nIts settings, regions and values are lost" +
              (hasJournal ? ", and the journal of who changed what in its controllers. The journal of a session that "
                            "is made anew with this name will begin with saying so."
                          : "."),
      .title = "Remove Session",
      .icon = PromptIcon::Exclamation,
      .buttons = PromptButtons::YesNo,
      .canLose = true};
}

}  // namespace

std::string SessionNameFault(const std::string& name) {
  if (name.empty()) return "A session needs a name.";
  if (name == "." || name == "..") return "\"" + name + "\" is not a name: it stands for a folder that exists already.";
  if (std::ranges::any_of(name, IsControl)) return "A session name cannot contain tabs or other control characters.";
  if (const auto at = name.find_first_of(kForbiddenInNames); at != std::string::npos) {
    return std::string("A session name cannot contain the character  ") + name[at] +
           "  , which no folder's name can have on every computer.";
  }
  if (name.back() == ' ' || name.back() == '.') return "A session name cannot end with a blank or a point.";
  if (IsDeviceName(name)) return "\"" + name + "\" is kept for a device and cannot be the name of a session.";
  if (name.size() > kLongestName) {
    return "The session name is too long: it takes " + std::to_string(name.size()) + " bytes, and a folder's name " +
           std::to_string(kLongestName) + ". A letter beyond A to Z takes two or more.";
  }
  return "";
}

std::vector<std::string> SessionManager::List() const {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(mShared.paths.Sessions(), error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unreadable;
    if (entry->is_directory(unreadable)) names.push_back(Utf8FromPath(entry->path().filename()));
  }
  // Some file systems list in no order that a user could follow.
  std::ranges::sort(names, [](const std::string& a, const std::string& b) {
    return std::pair(UpperCased(a), a) < std::pair(UpperCased(b), b);
  });
  return names;
}

std::string SessionManager::ListFault() const {
  const fs::path folder = mShared.paths.Sessions();
  std::error_code error;
  const fs::directory_iterator entries(folder, error);
  if (!error) return "";
  return "The folder " + Utf8FromPath(folder) + " with the sessions cannot be read: " + SystemMessage(error) +
         ".\nLikely cause: it was moved, deleted or protected, or this is not the program folder.\nWhat to do: put the "
         "folder back, or start with the program folder that it is in.";
}

SessionFacts SessionManager::Describe(const std::string& name) const {
  const SharedState session = StateOf(name);
  SessionFacts facts{.model = LastModel(session), .link = "", .lastUsed = LastUsed(session)};
  facts.isMarked = IsReadOnly(SessionFile(session, kSessionMarkFile));
  if (mShared.ComDriver) facts.link = mShared.ComDriver->DescribeSession(LinkOfSession(session, facts.model, nullptr));
  return facts;
}

SharedState SessionManager::StateOf(const std::string& name) const {
  SharedState session(mShared.paths);
  session.CurrentSession = name;
  return session;
}

bool SessionManager::IsListed(const std::string& name) const {
  const auto names = List();
  return std::ranges::find(names, name) != names.end();
}

bool SessionManager::Create(const std::string& name) {
  MarkSessionInUse(mShared, false);
  if (const auto copied = CopyCurrent(name); !copied) {
    MarkSessionInUse(mShared, true);
    mPrompts.Show({.text = copied.error(), .title = "Create Session", .icon = PromptIcon::Exclamation});
    return false;
  }
  MakeCurrent(name);
  return true;
}

std::expected<void, std::string> SessionManager::CopyCurrent(const std::string& name) const {
  if (const std::string fault = SessionNameFault(name); !fault.empty()) return std::unexpected(fault);
  const fs::path source = SessionFolder(mShared);
  const fs::path target = mShared.paths.Session(name);
  std::error_code error;
  if (const std::string taken = WhyTaken(name); !taken.empty()) return std::unexpected(taken);
  if (!fs::is_directory(source, error)) {
    return std::unexpected("The folder of the current session, " + Utf8FromPath(source) + ", is not there any more.");
  }
  const bool isMade = fs::create_directory(target, error);
  if (error) return std::unexpected(Failure("The folder " + Utf8FromPath(target) + " could not be made", error));
  if (!isMade) return std::unexpected("A session named \"" + name + "\" has just been made by another program.");
  ScopeGuard removeHalfMade([&] {
    std::error_code ignored;
    fs::remove_all(target, ignored);
  });
  CopyFiles(source, target, error);
  if (error) return std::unexpected(Failure("The current session could not be copied", error));
  const fs::path mark = target / kSessionMarkFile;
  fs::permissions(mark, fs::perms::owner_write, fs::perm_options::add, error);  // the copy of a marked one is read-only
  if (!std::ofstream(mark, std::ios::trunc)) {
    return std::unexpected("The file " + Utf8FromPath(mark) + " could not be written.");
  }
  removeHalfMade.Dismiss();
  return {};
}

std::expected<std::string, std::string> SessionManager::SimulatedSession(const std::string& name,
                                                                         const std::string& model) const {
  constexpr int kMost = 99;
  std::string taken;
  for (int number = 1; number <= kMost; ++number) {
    const std::string each = number == 1 ? name : name + " " + std::to_string(number);
    if (IsListed(each) && IsSimulated(each, model)) return each;
    taken = WhyTaken(each);
    if (!taken.empty()) continue;
    if (const auto made = MakeEmpty(each, model); !made) return std::unexpected(made.error());
    return each;
  }
  return std::unexpected(taken);
}

bool SessionManager::IsSimulated(const std::string& name, const std::string& model) const {
  const SharedState session = StateOf(name);
  const std::string selected = LastModel(session);
  const SessionLink link = LinkOfSession(session, selected, nullptr);
  return mShared.ComDriver && selected == model && mShared.ComDriver->SimulatedModelOf(link) == model;
}

std::expected<void, std::string> SessionManager::MakeEmpty(const std::string& name, const std::string& model) const {
  const fs::path folder = mShared.paths.Session(name);
  std::error_code error;
  fs::create_directory(folder, error);
  if (error) return std::unexpected(Failure("The folder " + Utf8FromPath(folder) + " could not be made", error));
  ScopeGuard removeHalfMade([&] {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  });
  if (const auto kept = SetLastModel(StateOf(name), model); !kept) return kept;
  if (!std::ofstream(folder / kSessionMarkFile)) {
    return std::unexpected("The file " + Utf8FromPath(folder / kSessionMarkFile) + " could not be written.");
  }
  removeHalfMade.Dismiss();
  return {};
}

std::string SessionManager::WhyTaken(const std::string& name) const {
  const auto names = List();
  const auto isSame = [&](const std::string& other) { return CaseFolded(other) == CaseFolded(name); };
  if (const auto found = std::ranges::find_if(names, isSame); found != names.end()) {
    const std::string text = "A session named \"" + *found + "\" exists already.";
    return *found == name ? text : text + " On many computers capital and small letters are the same in a name.";
  }
  std::error_code error;
  if (!fs::exists(mShared.paths.Session(name), error)) return "";
  return "The Sessions folder has a file named \"" + name + "\", so that no session can be.";
}

bool SessionManager::Activate(const std::string& name) {
  if (!IsListed(name)) {
    mPrompts.Show({.text = "The session \"" + name + "\" is not there any more.",
                   .title = "Activate Session",
                   .icon = PromptIcon::Exclamation});
    return false;
  }
  MarkSessionInUse(mShared, false);
  MakeCurrent(name);
  return true;
}

void SessionManager::MakeCurrent(const std::string& name) {
  mShared.CurrentSession = name;
  MarkSessionInUse(mShared, true);
}

bool SessionManager::Delete(const std::string& name) {
  if (name == kDefaultSession) {
    mPrompts.Show(
        {.text = "'Default' Session cannot be deleted.", .title = "Remove Session", .icon = PromptIcon::Exclamation});
    return false;
  }
  const fs::path folder = mShared.paths.Session(name);
  if (!IsListed(name) || FindHold(folder)) return false;
  std::error_code ignored;
  fs::remove_all(folder, ignored);
  return !fs::exists(folder, ignored);
}

SessionManager::Deletion SessionManager::DeleteOnConsent(const std::string& name) {
  const bool wouldGo = name != kDefaultSession && IsListed(name) && !FindHold(mShared.paths.Session(name));
  if (wouldGo &&
      mPrompts.Show(DeleteQuestion(name, Describe(name), HasJournal(mShared.paths.Session(name)))) != PromptAnswer::Yes)
    return Deletion::Declined;
  return Delete(name) ? Deletion::Done : Deletion::Failed;
}

SessionHold SessionManager::HoldOf(const std::string& name) const {
  const fs::path folder = mShared.paths.Session(name);
  const auto file = FindHold(folder);
  if (!file) return {};
  if (*file != folder / kSessionMarkFile) {
    return {"the session \"" + name + "\" cannot be deleted: " + Utf8FromPath(*file) + " is write-protected",
            "somebody protected it from being changed", "make it writable, then delete the session"};
  }
  return {"the session \"" + name + "\" is marked as in use, and is not deleted",
          "it is the active session of a program, or of one that was ended abruptly and left the mark",
          "activate another session in the program that uses it; when none does, activate it in the session window and "
          "then another one, which takes the mark away, or make " +
              Utf8FromPath(*file) + " writable"};
}

std::string SessionManager::SaveCaption() const {
  return "Save '" + mShared.CurrentSession + "' As...";
}

std::string SessionManager::ActiveCaption() const {
  return "Active Session: " + mShared.CurrentSession;
}

std::string SessionManager::ActivateCaption(const std::string& selected) {
  return "Activate '" + selected + " ' And Exit";
}

}  // namespace kv
