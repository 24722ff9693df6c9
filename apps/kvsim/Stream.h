#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Time.h"

namespace kvsim {

#ifdef _WIN32
using Handle = std::uintptr_t;  // a SOCKET
#else
using Handle = int;
#endif

// How long a client that talks may be silent before the server looks at all of them again.
inline constexpr kv::Duration kTalkPause = std::chrono::milliseconds(2);

// The bytes between this program and one client. Nothing but ReadWaiting ever waits: the server does, for all at once.
class Stream {
 public:
  enum class Result { Done, Nothing, Ended };

  virtual ~Stream() = default;

  // What to wait on for bytes.
  [[nodiscard]] virtual Handle WaitHandle() const = 0;

  // Appends what has arrived. Ended: the client has left.
  [[nodiscard]] virtual Result Read(std::string& buffer) = 0;

  // The same, waiting for kTalkPause at most inside the call, where CanWaitInside() says that this is possible.
  [[nodiscard]] virtual Result ReadWaiting(std::string& buffer) { return Read(buffer); }
  [[nodiscard]] virtual bool CanWaitInside() const { return false; }

  // Sends what the line takes and removes it from the front of `bytes`.
  [[nodiscard]] virtual Result Write(std::string_view& bytes) = 0;

  // The speed that the client's end is set to, in bits a second; 0 on a stream without one.
  [[nodiscard]] virtual int Baud() const { return 0; }

  // Cuts the client off.
  virtual void Cut() = 0;

  // Whether another client can come in on this stream after one has left or was cut off.
  [[nodiscard]] virtual bool OutlivesClients() const { return false; }
};

}  // namespace kvsim
