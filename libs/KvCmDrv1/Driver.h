#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/DriverDialogs.h"
#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/LinkText.h"
#include "KvCmDrv1/LinkTrial.h"
#include "KvCmDrv1/Trace.h"
#include "KvCmDrv1/ports/PortFactory.h"
#include "base/InProcessLine.h"
#include "link/CommDriver.h"

namespace kv {

// A line to a new simulated controller of a model; null for a model that is not simulated. Programs register it, so
// that this library does not need to know the simulator.
using SimulatedLineFactory = std::function<std::unique_ptr<InProcessLine>(const std::string& model)>;

// The driver of our wire: one link with its settings, and the channel over it.
//
//   Driver driver(pacer, simulatedLines, MakePort);
//   driver.ConfigureForSession(session);           // or driver.UseSettings(settings, false)
//   if (auto channel = driver.GetChannel()) ...    // null: driver.LastError()
class Driver final : public CommDriver {
 public:
  // `pacer` outlives the driver and the channels that are still held.
  Driver(Pacer& pacer, SimulatedLineFactory simulatedLines, PortMaker makePort);
  ~Driver() override;

  // False closes the link; no channel is given out then.
  void SetDriverActive(bool active) override;
  // Settings that cannot be used are told through OnComMessage, one message each. The link of another session is closed
  // even when the settings are the same.
  void ConfigureForSession(const SessionLink& session) override;
  [[nodiscard]] std::shared_ptr<Channel> GetChannel() override;
  // A channel of the caller's in place of the driver's own; null gives that back.
  void SetChannel(std::shared_ptr<Channel> channel) override { mForeign = std::move(channel); }
  [[nodiscard]] const LinkError& LastError() const override { return mError; }
  void SetPasswordSource(PasswordSource* source) override;
  void SetChangeObserver(ChangeObserver* observer) override;
  void ForgetPasswords() override;
  [[nodiscard]] std::string RecentFrames() const override { return mTrace->Text(); }
  void CloseDriver() override;
  [[nodiscard]] std::string LinkDescription() const override;
  [[nodiscard]] std::optional<std::uint32_t> TiedSerialNumber() const override { return Settings().serialNumber; }
  [[nodiscard]] int UsualBaudRate() const override { return HasRate(mSettings) ? mSettings.baudRate : 0; }
  [[nodiscard]] std::string DescribeSession(const SessionLink& session) const override;
  [[nodiscard]] std::string SimulatedModelOf(const SessionLink& session) const override;
  void ComParamsCaller(const std::string& caller) override { mCaller = caller; }
  void ShowComParams() override;
  void ShowModemSettings() override;
  void ShowTrace() override;

  [[nodiscard]] const LinkSettings& Settings() const { return mSettings; }
  // Takes other settings; the link is closed when they differ. `keep` writes them into the session's file; false when
  // that failed.
  bool UseSettings(const LinkSettings& settings, bool keep);
  // Opens a link with these settings, identifies the controller, and closes it; nothing is kept. The driver's own link
  // is closed for the time, since a port, and many a controller, serves one link. A call by telephone and a controller
  // that dialled in are not got back by themselves. A stop request ends the trial and is used up by it.
  [[nodiscard]] std::expected<LinkTrial, LinkError> TryLink(const LinkSettings& settings);
  // The dialogs of a program with windows; null for one without. They outlive the driver.
  void SetDialogs(DriverDialogs* dialogs) { mDialogs = dialogs; }
  [[nodiscard]] Trace& GetTrace() { return *mTrace; }
  // For a window that may outlive the driver.
  [[nodiscard]] std::shared_ptr<Trace> ShareTrace() const { return mTrace; }

 private:
  [[nodiscard]] std::unique_ptr<Port> MakeAnyPort(const LinkSettings& settings);
  [[nodiscard]] std::shared_ptr<InProcessLine> SimulatedLine(const std::string& model);
  [[nodiscard]] bool MayEdit();
  void Tell(const std::string& message);
  void FailInactive();
  void TakeSessionSettings();
  void FailUnreadable();

  Pacer& mPacer;
  SimulatedLineFactory mSimulatedLines;
  PortMaker mMakePort;
  std::shared_ptr<Trace> mTrace;  // shared with channels that are still held
  LinkSettings mSettings;
  std::filesystem::path mFolder;
  LinkSettings mDefaults;   // of the session
  std::string mUnreadable;  // why the session's settings could not be read; the link stays closed until they can
  ListeningSocket* mSocket = nullptr;
  std::map<std::string, std::shared_ptr<InProcessLine>> mLines;  // simulated controllers live as long as the driver
  std::shared_ptr<ChannelImpl> mChannel;
  std::shared_ptr<Channel> mForeign;
  DriverDialogs* mDialogs = nullptr;
  PasswordSource* mPasswords = nullptr;
  ChangeObserver* mChanges = nullptr;
  std::string mCaller;
  LinkError mError;
  bool mIsActive = true;
};

}  // namespace kv
