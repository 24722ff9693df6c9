#pragma once

#include <string>

namespace kv {

// Why a link call failed. The order has no meaning; nothing outside this process sees the numbers.
enum class LinkErrorCode {
  None,
  BadArgument,      // the caller asked for something that no controller could do; nothing was sent
  CannotOpen,       // port missing, in use, no permission, connection refused, number busy
  NoReply,          // after all repeats: silence, a few stray bytes, or only messages that answer something else
  Damaged,          // after all repeats: no reply arrived whole, or the last one stopped in the middle
  Refused,          // the controller said ERROR and a code
  Busy,             // the controller said that it is busy
  NotSupported,     // this controller or this kind of link has no such operation
  Stopped,          // the user or AbortComm ended it
  LinkLost,         // the connection broke and did not come back in time
  Closed,           // the link was closed, or its settings were changed: this channel is of no use any more
  OtherController,  // another controller answers than before, or than the link's serial number names
  NotRecorded,      // a change that could not be recorded: nothing was sent
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
  bool isNotExecuted = false;  // it is certain that the request was not executed, whether it went out or not

  // The whole as one sentence a line, for a message box or a terminal; empty when there is no error.
  [[nodiscard]] std::string Text() const;
};

}  // namespace kv
