#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "link/Channel.h"
#include "link/ListeningSocket.h"
#include "link/PasswordSource.h"

namespace kv {

// What the driver is told about the session that it serves.
struct SessionLink {
  std::string folder{};               // the session's folder, UTF-8: the driver keeps its settings there
  std::string model{};                // the catalogue's text of the model; empty: none that it offers
  bool isCompactDriver = false;       // IsCompactDriverModel of the model
  bool isBrio = false;                // the upper-cased model is "BRIO"
  bool isColour = false;              // IsColourModel of the model
  ListeningSocket* socket = nullptr;  // for controllers that dial in; may be null, must outlive the driver
};

// The communication driver: owns the physical link and its settings, and hands out the channel. Exactly one exists
// while the program runs.
class CommDriver {
 public:
  virtual ~CommDriver() = default;

  virtual void SetDriverActive(bool active) = 0;
  // Loads the session's link settings; closes a link that they no longer describe.
  virtual void ConfigureForSession(const SessionLink& session) = 0;

  // The current channel, opened when it was not. Null when the link cannot be opened; LastError() says why.
  [[nodiscard]] virtual std::shared_ptr<Channel> GetChannel() = 0;
  virtual void SetChannel(std::shared_ptr<Channel> channel) = 0;
  [[nodiscard]] virtual const LinkError& LastError() const = 0;
  virtual void CloseDriver() = 0;

  // Who is asked when a controller wants its password first; null: nobody, and the refusal stands. Outlives the driver.
  // A user who gives no password is not asked again until a tool takes the channel anew.
  virtual void SetPasswordSource(PasswordSource* source) = 0;

  // Who hears of every request that is no read, of all channels from now on; null: nobody. Outlives the driver.
  virtual void SetChangeObserver(ChangeObserver*) {}

  // Another user works from now on: the passwords of the one before are forgotten, and the access ends that they have
  // opened. Not to be called in the middle of an operation.
  virtual void ForgetPasswords() {}

  // The last frames on the link, one a line, as the trace shows them: without anything that depends on a password.
  [[nodiscard]] virtual std::string RecentFrames() const { return {}; }

  // A text like "COM3, 115200 8N1, unit 1", "192.168.1.20:20300, unit 1" or "Simulated K220-22-R1".
  [[nodiscard]] virtual std::string LinkDescription() const = 0;

  // The only controller that the link's settings allow; nothing when any may answer.
  [[nodiscard]] virtual std::optional<std::uint32_t> TiedSerialNumber() const { return std::nullopt; }

  // The speed in the link's settings, whatever a tool has set the channel to since; 0 on a link without one.
  [[nodiscard]] virtual int UsualBaudRate() const { return 0; }

  // The description of another session's link, as its settings stand; nothing is opened.
  [[nodiscard]] virtual std::string DescribeSession(const SessionLink& session) const = 0;

  // The model of the simulated controller that such a link leads to; empty when it leads to any other controller.
  [[nodiscard]] virtual std::string SimulatedModelOf(const SessionLink&) const { return {}; }

  // Marks who opens the settings dialog, then the dialogs themselves, modal. Without windows they do nothing.
  virtual void ComParamsCaller(const std::string& caller) = 0;
  virtual void ShowComParams() = 0;
  virtual void ShowModemSettings() = 0;
  // Everything that passes on the link, in a window that stays open beside all others.
  virtual void ShowTrace() = 0;

  // Event: texts for the status line of the host.
  std::function<void(const std::string& message)> OnComMessage;
};

}  // namespace kv
