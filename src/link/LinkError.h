#pragma once

#include <string>

namespace kv {

// Why a link call failed. The order has no meaning; nothing outside this process sees the numbers.
enum class LinkErrorCode {
  None,
  BadArgument,      // the caller asked for something that no controller could do; nothing was sent
  CannotOpen,       // port missing, in use, no permission, connection refused, number busy
  NoReply,          // silence after all repeats
  Damaged,          // replies came, none of them whole or ours
  Refused,          // the controller said ERROR and a code
  Busy,             // the controller said that it is busy
  NotSupported,     // this controller or this kind of link has no such operation
  Stopped,          // the user or AbortComm ended it
  LinkLost,         // the connection broke and did not come back in time
  Closed,           // the link was closed, or its settings were changed: this channel is of no use any more
  OtherController,  // the connection came back to another controller
  Unsure,           // a request that must not be done twice: whether it was done could not be found out
};

// What a failed link call leaves to be read: what was being done, what happened, the likely cause and what to do.
struct LinkError {
  LinkErrorCode code = LinkErrorCode::None;
  int controllerCode = 0;      // the code behind ERROR, 1 to 255, when code is Refused or Busy
  std::string doing{};         // "reading MI 0..59 from unit 1 on 192.168.1.20:20300"
  std::string happened{};      // "no reply after 3 tries (1.5 s)"
  std::string cause{};         // "the controller is switched off or has another unit id"
  std::string cure{};          // "check cable and power, and the unit id in the communication settings"
  bool isNotExecuted = false;  // the request may have gone out, but it is certain that it was not executed

  // The whole as one sentence a line, for a message box or a terminal; empty when there is no error.
  [[nodiscard]] std::string Text() const;
};

}  // namespace kv
