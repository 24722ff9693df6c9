#pragma once

#include <cstddef>
#include <string_view>

namespace kv {

// What may be done when a request was not answered.
enum class RequestKind {
  Read,     // changes nothing: sent again as it stands
  Placing,  // doing it twice is the same as doing it once: sent again on the same connection
  Once,     // must not be done twice: sent again only when the controller says that it was not done
};

// What the driver knows about a text command before it sends it.
struct CommandFacts {
  RequestKind kind = RequestKind::Once;
  bool isSettled = true;         // its text has no tag: the counter alone tells replies to equal requests apart
  bool isSlow = true;            // may work for as long as the time-out allows before it answers
  bool resets = false;           // silent for a while after its reply, and may identify itself otherwise then
  std::size_t longestReply = 0;  // characters of the reply text, with its seal
};

// The facts of a command with settled text. A text that the protocol does not have is taken for one of the most
// dangerous kind: once, and slow.
[[nodiscard]] CommandFacts FactsOf(std::string_view text);

// The facts of the commands with a tag.
[[nodiscard]] CommandFacts TaggedRead(std::size_t longestReply);
[[nodiscard]] CommandFacts TaggedWrite(std::size_t longestReply);

}  // namespace kv
