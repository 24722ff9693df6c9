#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "link/LinkError.h"

namespace kv {

// Operands that an operation writes, with a text for each of them.
struct ChangedOperands {
  std::string operands;             // "MI 0..59"
  std::vector<std::string> before;  // as the controller told them last; a text is empty, or all are, where it never did
  std::vector<std::string> after;

  bool operator==(const ChangedOperands&) const = default;
};

// What a tool is about to do to a controller, UTF-8.
struct Operation {
  std::string tool;  // "Operand view"
  std::string what;  // "restore the clone plc.kdf"
  std::vector<ChangedOperands> operands{};
};

// Who a controller is, as far as it has told, UTF-8.
struct ControllerName {
  std::string model{};
  std::optional<std::uint32_t> serialNumber{};
  std::string project{};

  bool operator==(const ControllerName&) const = default;
};

// A request that is no read, when it is about to go out.
struct ChangeRequest {
  std::string meaning;  // "unit 1: write MI 0..59"
  ControllerName controller;
  std::string link;  // "192.168.1.20:20300, unit 1"
};

// What became of a request, or of a whole operation.
enum class ChangeResult : std::uint8_t {
  Done,
  Sent,     // raw bytes: whoever sends them reads the answer
  Refused,  // by the controller, or never sent: nothing was changed
  Failed,   // it may have been executed
  Stopped,  // by the user
};

struct ChangeEnd {
  ChangeResult result = ChangeResult::Done;
  std::string detail{};  // why; empty when there is nothing to say
};

// Hears of every request that is no read, of all tools, at the one place in the driver that they pass.
class ChangeObserver {
 public:
  virtual ~ChangeObserver() = default;

  // A tool begins an operation: all requests until its end belong to it. Operations may be nested; the outermost
  // counts.
  virtual void BeginOperation(const Operation& operation) = 0;
  virtual void EndOperation(const std::optional<ChangeEnd>& end) = 0;

  // The request goes out only when there is no error. After it comes AfterRequest.
  [[nodiscard]] virtual std::expected<void, LinkError> BeforeRequest(const ChangeRequest& request) = 0;
  virtual void AfterRequest(const ChangeEnd& end) = 0;

  // Number and hash of the last record, for what is kept beside other files: "42 0a1b..."; empty when there is none.
  [[nodiscard]] virtual std::string Head() const = 0;
};

// Names the operation of a tool for as long as it lives. Nothing is recorded of one that sends nothing but reads.
//
//   OperationScope restoring(link.Changes(), {"Cloner", "restore the clone plc.kdf"});
//   ...
//   restoring.End({ChangeResult::Failed, reason});  // else it ended as its requests did
class [[nodiscard]] OperationScope {
 public:
  // Without an observer nothing happens.
  OperationScope(ChangeObserver* observer, const Operation& operation) : mObserver(observer) {
    if (mObserver) mObserver->BeginOperation(operation);
  }
  ~OperationScope() { Close(); }
  OperationScope(const OperationScope&) = delete;
  OperationScope& operator=(const OperationScope&) = delete;

  // How it ended, as the tool tells its user.
  void End(ChangeEnd end) {
    mEnd = std::move(end);
    Close();
  }

 private:
  void Close() {
    if (ChangeObserver* observer = std::exchange(mObserver, nullptr)) observer->EndOperation(mEnd);
  }

  ChangeObserver* mObserver;
  std::optional<ChangeEnd> mEnd;
};

}  // namespace kv
