#pragma once

#include <string>
#include <vector>

namespace kv {

// One session, as a host shows it to choose from. Texts are UTF-8.
struct SessionCard {
  std::string name{};
  std::string model{};
  std::string link{};      // "COM3, 115200 8N1, unit 1"
  std::string lastUsed{};  // when it last went on line: "2026-11-21 14:03:21"; empty: never
  bool isMarked = false;   // as in use: by this program, by another one, or by one that was ended abruptly

  bool operator==(const SessionCard&) const = default;
};

// The sessions, for a host that offers them by itself. What has become the active one is told to the host as any other
// change of the session is.
class SessionChoice {
 public:
  virtual ~SessionChoice() = default;

  // By name.
  [[nodiscard]] virtual std::vector<SessionCard> Sessions() const = 0;
  // Why they cannot be listed; empty when they can.
  [[nodiscard]] virtual std::string SessionsFault() const = 0;
  // Makes a session the active one. False: the user has been told why not.
  virtual bool ActivateSession(const std::string& name) = 0;
  // The same with a new one, a copy of the active one.
  virtual bool CreateSession(const std::string& name) = 0;
  // The same with one that has a simulated controller of that model, which is made where there is none. It is called
  // `name`, or that with a number where another session has the name.
  virtual bool ActivateSimulated(const std::string& name, const std::string& model) = 0;
};

}  // namespace kv
