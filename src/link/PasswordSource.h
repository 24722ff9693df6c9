#pragma once

#include <optional>
#include <string>

#include "secret/Secret.h"

namespace kv {

// The controller that wants its password, in words for a user.
struct PasswordWanted {
  std::string controller;  // "K220-22-R1, serial number 305419896"
  std::string link;        // "COM3, 115200 8N1, unit 1"
  bool wasWrong = false;   // the controller has refused the one that was given before
};

// Where the driver gets the password of a controller that refuses a request without it. Asked while that request is
// under way: the driver gives access with the answer, sends the request once more, and keeps the password for as long
// as the link is open.
class PasswordSource {
 public:
  virtual ~PasswordSource() = default;

  // At most 8 characters, Windows-1252. Nothing: none is known, and the user gave none.
  [[nodiscard]] virtual std::optional<Secret> Password(const PasswordWanted& wanted) = 0;
  // How a user of this program gives the password, for the error of a request that went without.
  [[nodiscard]] virtual std::string Cure() const = 0;
  // Another user works from now on: what is remembered of the passwords of the one before is forgotten.
  virtual void Forget() {}
};

}  // namespace kv
