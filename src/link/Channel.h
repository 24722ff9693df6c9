#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"
#include "base/Time.h"
#include "link/ChangeObserver.h"
#include "link/CommandReply.h"
#include "link/DownloadEngine.h"
#include "link/FixedPoint.h"
#include "link/LinkError.h"
#include "link/OperandList.h"
#include "link/PanelLink.h"
#include "link/SerialPortObject.h"
#include "link/VersionInfo.h"

namespace kv {

// The parameters of the link as one opaque value: saved with GetComParams, given back with SetComParams. Only the two
// fields that tools may change have a name.
struct ComParams {
  std::string link;  // the driver's own text
  int baudRate = 0;  // bits a second; 0 on a link without a rate
  int mode = 0;      // 0 as set by the user, 1 while a boot loader's speed is being agreed
  bool operator==(const ComParams&) const = default;
};

// Numbers about the quality of the link since it was opened.
struct LinkQuality {
  Duration roundTrip{};         // smoothed time from request to reply; 0 before the first
  std::uint64_t exchanges = 0;  // requests that ended with an accepted reply (a refusal is one)
  std::uint64_t repeats = 0;    // requests sent again
  std::uint64_t errors = 0;     // requests that ended without one
  std::uint64_t bytesSent = 0;
  std::uint64_t bytesReceived = 0;
};

// What tools ask of the controller. Every call sends one request and waits for its reply, within a total deadline;
// false or nothing means failure, and LastError() says why until the next call. Values are handed back only when unit,
// echo, length and check of the reply were right.
//
// Unit ids are 0 to 255. Addresses and counts of the typed operations are 16-bit as tools pass them; a negative start,
// a count below 1, or one past what a request may carry is BadArgument and sends nothing.
class Channel {
 public:
  virtual ~Channel() = default;

  // Text commands. The reply still has its checksum at the end; one that contains "ERROR" is returned, not failed.
  [[nodiscard]] virtual std::optional<CommandReply> SendCommand(std::string_view command) = 0;
  // Names who is talking, for the trace.
  virtual void SetCommandOwner(std::string_view owner) = 0;
  // Hands the driver a file of the session's, with a purpose number (1: the record of the connection).
  virtual void SetRecordFile(const std::string& path, int purpose) = 0;

  [[nodiscard]] virtual std::uint8_t UnitID() const = 0;
  // How long a reply may take, in milliseconds, 50 to 300000.
  [[nodiscard]] virtual int TimeOut() const = 0;
  virtual void SetTimeOut(int milliseconds) = 0;

  [[nodiscard]] virtual ComParams GetComParams() const = 0;
  [[nodiscard]] virtual bool SetComParams(const ComParams& params) = 0;
  // Reopens the link on a port and at a rate (both 0 or below: as they are).
  [[nodiscard]] virtual bool OpenLink(int commPort, int baudRate) = 0;
  virtual void SetLinkBusy(bool busy) = 0;
  // True ends the exchange that is under way, if any, as stopped, and throws away what is still on its way, so that the
  // next exchange starts clean. False takes back a request that nothing has noticed yet.
  virtual void AbortComm(bool abort) = 0;
  // Number of the serial port (the 3 of COM3 or ttyS3); 0 on other links.
  [[nodiscard]] virtual int CommPort() const = 0;

  [[nodiscard]] virtual bool StopController(std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool RunController(std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool ResetController(std::uint8_t unit) = 0;
  [[nodiscard]] virtual std::optional<VersionInfo> GetVersionInfo(std::uint8_t unit) = 0;
  // Opens access with the controller's password, at most 8 characters.
  [[nodiscard]] virtual bool GiveAccess(std::string_view password, std::uint8_t unit) = 0;
  // The user begins something new. Who did not give the password before is asked for it again.
  virtual void BeginOperation() = 0;
  // Makes sure that requests which need the password are taken, asking the driver's source of passwords if need be.
  // Every other call does so by itself when it is refused; raw traffic cannot.
  [[nodiscard]] virtual bool EnsureAccess(std::uint8_t unit) = 0;

  // What the controller tells about itself beside its version.
  struct ControllerInfo {
    std::uint32_t serialNumber = 0;
    char state = 'S';         // 'R' running, 'S' stopped, 'B' boot loader, 'L' loading
    std::string projectName;  // Windows-1252 bytes, at most 20
  };
  [[nodiscard]] virtual std::optional<ControllerInfo> GetControllerInfo(std::uint8_t unit) = 0;

  // Operands of any driver type code, one array of values per record.
  [[nodiscard]] virtual std::optional<std::vector<OperandListValues>> ReadOperandList(
      std::span<const OperandListRequest> records, std::uint8_t unit) = 0;

  // Typed reads of the compact family. Bits are 0 or 1; timer words carry their time base in bits 14 and 15.
  using BitValues = std::optional<std::vector<std::uint8_t>>;
  using WordValues = std::optional<std::vector<std::int16_t>>;
  using TimerWords = std::optional<std::vector<std::uint16_t>>;
  [[nodiscard]] virtual BitValues ReadMB(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual BitValues ReadSB(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual BitValues ReadInputs(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual BitValues ReadOutputs(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual BitValues ReadTimerBits(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual WordValues ReadMI(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual WordValues ReadSI(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual WordValues ReadDBI(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual TimerWords ReadTimerPresets(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;
  [[nodiscard]] virtual TimerWords ReadTimerCurrents(std::int16_t start, std::int16_t count, std::uint8_t unit) = 0;

  // Typed writes, both families. The count is the number of values. Timer values are hundredths of a second.
  using BitSpan = std::span<const std::uint8_t>;
  using WordSpan = std::span<const std::int16_t>;
  using LongSpan = std::span<const std::int32_t>;
  using UnsignedSpan = std::span<const FixedPoint>;
  using FloatWordSpan = std::span<const std::uint32_t>;  // IEEE 754 bits with their 16-bit halves swapped
  [[nodiscard]] virtual bool WriteMB(std::int16_t start, BitSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteXB(std::int16_t start, BitSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteSB(std::int16_t start, BitSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteMI(std::int16_t start, WordSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteDBI(std::int16_t start, WordSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteXI(std::int16_t start, WordSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteML(std::int16_t start, LongSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteXL(std::int16_t start, LongSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteDW(std::int16_t start, UnsignedSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteXDW(std::int16_t start, UnsignedSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteCounterPresets(std::int16_t start, UnsignedSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteCounterCurrents(std::int16_t start, UnsignedSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteTimerPresets(std::int16_t start, UnsignedSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteTimerCurrents(std::int16_t start, UnsignedSpan values, std::uint8_t unit) = 0;
  [[nodiscard]] virtual bool WriteMF(std::int16_t start, FloatWordSpan values, std::uint8_t unit) = 0;

  // `length` bytes, 1 to 4096, of controller memory. On a bad line they are fetched in smaller pieces.
  [[nodiscard]] virtual std::optional<Bytes> ReadMemoryBlock(std::uint32_t address, std::uint32_t length,
                                                             std::uint8_t unit) = 0;

  // Binary block messages. Null on a controller that understands ASCII frames only.
  [[nodiscard]] virtual DownloadEngine* GetDownloadEngine() = 0;
  // The controller's panel; null on a channel that never has one. Whether there is a display, its description tells.
  [[nodiscard]] virtual PanelLink* Panel() { return nullptr; }
  // The port under the link, for raw traffic; null while the link is closed.
  [[nodiscard]] virtual SerialPortObject* GetSerialPort() = 0;

  // Who hears of changes, for the scopes with which tools name their operations; null: nobody.
  [[nodiscard]] virtual ChangeObserver* Changes() { return nullptr; }

  [[nodiscard]] virtual const LinkError& LastError() const = 0;
  [[nodiscard]] virtual LinkQuality Quality() const = 0;
};

}  // namespace kv
