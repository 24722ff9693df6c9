#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/Time.h"

namespace kv {

// Why a port could not be opened or has gone: what happened, the likely cause, and what to do.
struct PortError {
  std::string happened;
  std::string cause;
  std::string cure;
};

// A byte line to a controller. The channel cannot tell a serial line from TCP: all it sees is this.
//
// States: closed -> open -> lost (the other side has gone) -> closed. Read and Write on a port that is not open report
// Lost.
class Port {
 public:
  enum class Result { Done, Nothing, Lost };

  virtual ~Port() = default;

  // Opens the port. Takes as long as `limit` at most and gives the pacer its turns meanwhile; a stop request ends it.
  [[nodiscard]] virtual std::expected<void, PortError> Open(Duration limit) = 0;
  virtual void Close() = 0;
  [[nodiscard]] virtual bool IsOpen() const = 0;

  // Sends what the line takes within `slice` and removes it from the front of `bytes`. Nothing: the line takes no byte
  // now.
  [[nodiscard]] virtual Result Write(std::string_view& bytes, Duration slice) = 0;

  // Appends what arrives within `slice` (a few milliseconds) to `buffer` and returns as soon as anything has. Nothing:
  // silence.
  [[nodiscard]] virtual Result Read(std::string& buffer, Duration slice) = 0;

  // Why the port was lost; empty texts before that.
  [[nodiscard]] virtual const PortError& LossReason() const = 0;

  // Time that one byte takes on the wire; 0 where the line is faster than anybody waits for.
  [[nodiscard]] virtual Duration ByteTime() const = 0;

  // Changes the speed of an open line; false on ports without one.
  [[nodiscard]] virtual bool SetBaudRate(int baudRate) = 0;

  // "COM3, 115200 8N1", "192.168.1.20:20300", "Simulated K220-22-R1".
  [[nodiscard]] virtual std::string Description() const = 0;

  // Number of the serial port (the 3 of COM3 or ttyS3); 0 on other ports.
  [[nodiscard]] virtual int CommPort() const { return 0; }

  // Whether it is the other side that calls, so that anybody may be there after Open.
  [[nodiscard]] virtual bool IsCalled() const { return false; }
  // Ends the connection that is there. Where partners call, the others wait on, and the next Open takes the next one.
  virtual void DropPartner() { Close(); }
  // Whether somebody has called since the partner that is there was taken.
  [[nodiscard]] virtual bool HasNewerCall() { return false; }

  // Gets what the port says and hears before and after the connection, where it does: the dialogue with a modem.
  enum class Side { Said, Heard };
  std::function<void(Side side, std::string_view bytes)> OnDialogue;
};

}  // namespace kv
