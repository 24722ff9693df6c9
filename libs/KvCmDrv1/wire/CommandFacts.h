#pragma once

#include <cstddef>
#include <string_view>

namespace kv {

// What may be done when a request was not answered.
enum class RequestKind {
  Read,           // changes nothing: sent again as it stands
  Idempotent,     // executed twice it does the same as once: sent again on the same connection
  NonIdempotent,  // must not be executed twice: sent again only when the controller says that it was not executed
};

// What the driver knows about a text command before it sends it.
struct CommandFacts {
  RequestKind kind = RequestKind::NonIdempotent;
  bool isSettled = true;         // its text has no tag: the counter alone tells replies to equal requests apart
  bool isSlow = true;            // may work for as long as the time-out allows before it answers
  bool resets = false;           // silent for a while after its reply, and may identify itself otherwise then
  std::size_t longestReply = 0;  // characters of the reply text, with its seal
};

// The facts of a command with settled text. A text that the protocol does not have is taken for one of the most
// dangerous kind: not idempotent, and slow.
[[nodiscard]] CommandFacts CommandFactsOf(std::string_view text);

// Whether the command may change something in the controller. One that the protocol does not have may.
[[nodiscard]] bool ChangesSomething(std::string_view text);

// Longest replies of commands with a tag, in characters without the seal.
inline constexpr std::size_t kSynchronisationReply = 62;  // letters, tag, counter, check, power-up, 40 characters
inline constexpr std::size_t kInformationReply = 55;      // letters, tag, serial number, state, name
inline constexpr std::size_t kAccessReply = 9;

// The facts of the commands with a tag.
[[nodiscard]] CommandFacts TaggedRead(std::size_t longestReply);
[[nodiscard]] CommandFacts TaggedWrite(std::size_t longestReply);

}  // namespace kv
