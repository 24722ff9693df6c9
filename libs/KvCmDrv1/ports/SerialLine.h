#pragma once

#include <expected>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/ports/Port.h"
#include "base/Time.h"

namespace kv {

// An open serial line of the system: raw bytes, no flow control, nobody else on it. What differs between the platforms
// is behind it, in SerialLinePosix.cpp and SerialLineWindows.cpp.
class SerialLine {
 public:
  [[nodiscard]] static std::expected<std::unique_ptr<SerialLine>, PortError> Open(const std::string& port, int baudRate,
                                                                                  const SerialFraming& framing);
  ~SerialLine();
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;

  // As in Port. After Lost the line is of no more use; LossCode() tells why, no error meaning that it just ended.
  [[nodiscard]] Port::Result Write(std::string_view& bytes, Duration slice);
  [[nodiscard]] Port::Result Read(std::string& buffer, Duration slice);
  [[nodiscard]] bool SetBaudRate(int baudRate);
  [[nodiscard]] std::error_code LossCode() const;

 private:
  struct System;
  explicit SerialLine(std::unique_ptr<System> system);

  std::unique_ptr<System> mSystem;
};

}  // namespace kv
