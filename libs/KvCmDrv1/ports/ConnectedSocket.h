#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "KvCmDrv1/ports/Port.h"
#include "base/Time.h"

namespace kv {

// A connected TCP socket past its set-up: what moves the bytes of TCP ports, whoever dialled whom. An exchange costs
// one call to send and one to receive, because it waits inside the receiving call; that is worth a tenth of the
// exchanges a second on one machine.
class ConnectedSocket {
 public:
#ifdef _WIN32
  using Handle = std::uintptr_t;
  static constexpr Handle kNone = ~Handle{0};
#else
  using Handle = int;
  static constexpr Handle kNone = -1;
#endif

  ConnectedSocket() = default;
  // Takes over a connected socket of the system and closes it in the end.
  explicit ConnectedSocket(Handle handle);
  ~ConnectedSocket() { Close(); }
  ConnectedSocket(ConnectedSocket&& other) noexcept;
  ConnectedSocket& operator=(ConnectedSocket&& other) noexcept;

  [[nodiscard]] bool IsOpen() const { return mHandle != kNone; }
  void Close();

  // As in Port. Lost leaves the reason in LossCode().
  [[nodiscard]] Port::Result Write(std::string_view& bytes, Duration slice);
  [[nodiscard]] Port::Result Read(std::string& buffer, Duration slice);

  // Whether the other side has closed the connection and everything that it sent was read. Takes no byte.
  [[nodiscard]] bool HasEnded() const;

  // What ended the connection; no error when the other side closed it in good order.
  [[nodiscard]] std::error_code LossCode() const { return mLossCode; }

 private:
  [[nodiscard]] Port::Result Lose(std::error_code code);
  void SetReceiveLimit(Duration slice);

  Handle mHandle = kNone;
  Duration mReceiveLimit{};  // what the system was told; 0: nothing yet
  std::error_code mLossCode;
};

}  // namespace kv
