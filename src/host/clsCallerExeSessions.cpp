// Sessions: telling the host about the active one, and all of them for a host that offers them by itself.

#include "base/PathText.h"
#include "host/clsCallerExe.h"
#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"
#include "sessions/SessionManager.h"

namespace kv {

void clsCallerExe::TellSession(const std::string& before) {
  if (mShared.CurrentSession != before) FollowSession();
  UpdateLinkDescription();
  mRemote->SetSessionPath(Utf8FromPath(SessionFolder(mShared)));
  mRemote->Refresh();
}

void clsCallerExe::FollowSession() {
  mRemote->SetSessionName(mShared.CurrentSession);
  mRemote->SetModel(LastModel(mShared));  // the one before belongs to the session before
  mRemote->SetRecentCaches(ReadRecentCaches(mShared));
  ConfigureDriverForSession(mShared, mWinsock);
}

std::vector<SessionCard> clsCallerExe::Sessions() const {
  SharedState shared(mShared.paths);
  shared.ComDriver = mVsCon.get();
  SessionManager sessions(shared, *mParts.prompts);
  std::vector<SessionCard> cards;
  for (const std::string& name : sessions.List()) {
    const SessionFacts facts = sessions.Describe(name);
    cards.push_back({name, facts.model, facts.link, facts.lastUsed, facts.isMarked});
  }
  return cards;
}

std::string clsCallerExe::SessionsFault() const {
  SharedState shared(mShared.paths);
  return SessionManager(shared, *mParts.prompts).ListFault();
}

bool clsCallerExe::ActivateSession(const std::string& name) {
  const std::string before = mShared.CurrentSession;
  if (!SessionManager(mShared, *mParts.prompts).Activate(name)) return false;
  TellSession(before);
  return true;
}

bool clsCallerExe::CreateSession(const std::string& name) {
  const std::string before = mShared.CurrentSession;
  if (!SessionManager(mShared, *mParts.prompts).Create(name)) return false;
  TellSession(before);
  return true;
}

bool clsCallerExe::ActivateSimulated(const std::string& name, const std::string& model) {
  const auto found = SessionManager(mShared, *mParts.prompts).SimulatedSession(name, model);
  if (found) return ActivateSession(*found);
  Warn(found.error());
  return false;
}

}  // namespace kv
