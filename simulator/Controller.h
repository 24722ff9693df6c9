#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Time.h"
#include "simulator/SimulatorOptions.h"

namespace sim {

struct BlockRequest {
  std::uint16_t opCode = 0;
  std::uint32_t param1 = 0;
  std::uint32_t dataLength = 0;
  std::uint16_t param3 = 0;
  std::uint16_t param4 = 0;
  std::string_view payload;  // stands in the message
};

struct BlockReply {
  int status = 10;
  std::string payload;
};

// What the one at the other end of a connection may do.
struct ConnectionAccess {
  bool hasAccess = false;   // the password was given
  std::uint16_t lease = 0;  // to operate the panel, taken on this connection; 0: none
};

// What a text command did: the reply text without seal and frame, and what the line has to do after it was sent.
struct TextReply {
  std::string text;
  bool changesNothing = true;  // a read: SY does not remember it
  std::optional<int> newBaud;  // line speed from after the reply on
  bool resets = false;         // the controller restarts after the reply: every connection loses its access
};

// One simulated controller: what it is, what it holds and what it does with a request. It knows nothing of frames,
// seals, tags of block messages or faults: those are the line's (simulator/Line.h).
class Controller {
 public:
  // Refused with a plain sentence when the options do not fit together (unknown model, bad version, damaged state
  // file).
  [[nodiscard]] static std::expected<std::unique_ptr<Controller>, std::string> Create(const SimulatorOptions& options);
  virtual ~Controller() = default;

  // Lets the controller's own life go on until `now`: clock, ramps, counters, running timers, flash work.
  virtual void Advance(kv::Instant now) = 0;

  // Executes one ASCII request, the text as it stood in the frame (for our own commands with tag and check, the check
  // having been found good by the line). Everything but SY, which is the line's.
  [[nodiscard]] virtual TextReply ExecuteText(std::string_view text, ConnectionAccess& connection) = 0;

  // Power fails and comes back: what was going on is cut short, whatever it was, and the controller starts as after a
  // reset.
  virtual void Restart() = 0;

  // Executes one block message.
  [[nodiscard]] virtual BlockReply ExecuteBlock(const BlockRequest& request, ConnectionAccess& connection) = 0;

  // The connection has ended: who operated the panel over it does so no longer.
  virtual void EndConnection(const ConnectionAccess&) {}

  [[nodiscard]] virtual bool UnderstandsBlocks() const = 0;
  [[nodiscard]] virtual std::uint8_t Unit() const = 0;

  // While this is on, requests are answered as done but change nothing. The password is taken all the same: it changes
  // the connection.
  virtual void SetLying(bool lying) = 0;

  // Writes the state file when there is one and something has changed. False with the reason on stderr's text.
  [[nodiscard]] virtual std::expected<void, std::string> SaveState() = 0;
};

}  // namespace sim
