#pragma once

#include <expected>
#include <string>
#include <vector>

#include "desktop/Prompts.h"
#include "host/shared/SharedState.h"

namespace kv {

// What the list of sessions shows beside a name.
struct SessionFacts {
  std::string model{};
  std::string link{};      // "COM3, 115200 8N1, unit 1"; empty without a driver to ask
  std::string lastUsed{};  // when it last went on line: "2026-11-21 14:03:21"; empty: never
  bool isMarked = false;   // as in use
};

// Why a session cannot be deleted; empty when nothing is known against it.
struct SessionHold {
  std::string happened;
  std::string cause;
  std::string cure;
};

// What the session window and the command line do with sessions: list, create as a copy of the current one, activate,
// delete. A session is a folder under Sessions; exactly one is current. The session made current carries the in-use
// mark, "Default" never.
class SessionManager {
 public:
  SessionManager(SharedState& shared, Prompts& prompts) : mShared(shared), mPrompts(prompts) {}

  // Names of the session folders, by name. Files are not sessions. Empty when the Sessions folder cannot be read.
  [[nodiscard]] std::vector<std::string> List() const;
  // Why the Sessions folder cannot be read, with cause and cure; empty when it can.
  [[nodiscard]] std::string ListFault() const;

  // What is kept in a session that is listed.
  [[nodiscard]] SessionFacts Describe(const std::string& name) const;

  // Copies the current session to `name` and makes the copy current. A failure of any step is told under "Create
  // Session", leaves the current session as it was and no half-made folder behind.
  bool Create(const std::string& name);

  // The copy alone: the current session stays current. The error is a sentence for the user.
  [[nodiscard]] std::expected<void, std::string> CopyCurrent(const std::string& name) const;

  // The name of a session that a simulated controller of the model answers: `name`, or that with a number where a
  // session of this name has another link or model. It is made where there is none, without a link of its own, so that
  // it follows its model. The error is a sentence for the user.
  [[nodiscard]] std::expected<std::string, std::string> SimulatedSession(const std::string& name,
                                                                         const std::string& model) const;

  // Makes an existing session current. False, told under "Activate Session", when it is not listed.
  bool Activate(const std::string& name);

  // Deletes a session's folder; "Default" is refused under "Remove Session". A folder that holds a read-only file (the
  // mark of a session in use) stays as it is, without a message. True when the folder is gone.
  bool Delete(const std::string& name);

  // Delete, after a question where there is something to lose.
  enum class Deletion { Done, Declined, Failed };
  Deletion DeleteOnConsent(const std::string& name);

  // What keeps Delete from deleting a session that is listed, other than "Default": a file in it that is
  // write-protected, such as the mark of a session in use, which a program that was ended abruptly leaves behind.
  [[nodiscard]] SessionHold HoldOf(const std::string& name) const;

  [[nodiscard]] std::string SaveCaption() const;    // "Save 'Default' As..."
  [[nodiscard]] std::string ActiveCaption() const;  // "Active Session: Default"
  // The blank before the closing quote belongs to the text.
  [[nodiscard]] static std::string ActivateCaption(const std::string& selected);  // "Activate 'Default ' And Exit"

 private:
  [[nodiscard]] SharedState StateOf(const std::string& name) const;
  [[nodiscard]] bool IsListed(const std::string& name) const;
  [[nodiscard]] std::string WhyTaken(const std::string& name) const;
  [[nodiscard]] bool IsSimulated(const std::string& name, const std::string& model) const;
  [[nodiscard]] std::expected<void, std::string> MakeEmpty(const std::string& name, const std::string& model) const;
  void MakeCurrent(const std::string& name);

  SharedState& mShared;
  Prompts& mPrompts;
};

// Why `name` cannot be the name of a session's folder; empty when it can. A name must be one folder's name on every
// platform that the program runs on, since session folders are carried between machines.
[[nodiscard]] std::string SessionNameFault(const std::string& name);

}  // namespace kv
