#include "host/LogIn.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/Utf8.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

constexpr std::string_view kLastUserName = "LastUserName";

// A password without a name can be logged off, too, so the host must see that there is one.
std::string ShownName(const SharedState& shared) {
  return shared.UserName.empty() && !shared.UserPassword.IsEmpty() ? "(no name)" : shared.UserName;
}

void ChangeUser(SharedState& shared, const std::string& name, Secret password) {
  shared.UserName = name;
  shared.UserPassword = std::move(password);
  if (shared.ComDriver) shared.ComDriver->ForgetPasswords();
  if (shared.Remote) shared.Remote->SetUserName(ShownName(shared));
}

}  // namespace

std::string UserNameFault(std::string_view name) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  if (Utf16FromUtf8(name).size() <= kLongestUserName && std::ranges::none_of(name, isControl)) return {};
  return "a user's name has at most " + std::to_string(kLongestUserName) +
         " characters, none of them a control character";
}

std::string LastUserName(const SharedState& shared) {
  return ReadSessionIni(shared, kLastUserName, "");
}

void LogIn(SharedState& shared, const std::string& name, Secret password) {
  ChangeUser(shared, name, std::move(password));
  const auto kept = WriteSessionIni(shared, kLastUserName, name);
  if (!kept && shared.Remote) {
    shared.Remote->StatusMessage("The user name was not kept for the next log-in. " + kept.error());
  }
}

void LogOff(SharedState& shared) {
  ChangeUser(shared, "", {});
}

}  // namespace kv
