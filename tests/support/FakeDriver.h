#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "link/CommDriver.h"
#include "tests/support/FakeHost.h"

namespace kv::test {

// A driver without a link: writes into the log what it is told, and hands out the channel that the test gives it.
class FakeDriver : public CommDriver {
 public:
  explicit FakeDriver(CallLog& log) : mLog(log) {}
  ~FakeDriver() override { Note("gone"); }

  std::shared_ptr<Channel> channel;
  std::string description = "COM3, 115200 8N1, unit 1";
  std::optional<std::uint32_t> tied;  // the serial number that the link is set to
  std::string nextDescription;        // after the next change of its settings; empty: as it is
  SessionLink session;                // of the last ConfigureForSession

  void SetDriverActive(bool active) override { Note(active ? "active" : "not active"); }
  void ConfigureForSession(const SessionLink& link) override {
    session = link;
    Change();
    Note("ConfigureForSession " + link.folder);
  }
  std::shared_ptr<Channel> GetChannel() override {
    Note("GetChannel");
    return channel;
  }
  void SetChannel(std::shared_ptr<Channel> newChannel) override { channel = std::move(newChannel); }
  const LinkError& LastError() const override { return mError; }
  void SetPasswordSource(PasswordSource*) override {}
  void ForgetPasswords() override { Note("ForgetPasswords"); }
  void CloseDriver() override { Note("CloseDriver"); }
  std::string LinkDescription() const override { return description; }
  std::optional<std::uint32_t> TiedSerialNumber() const override { return tied; }
  std::vector<std::string> realLinks;  // sessions whose controller is no simulated one
  std::string SimulatedModelOf(const SessionLink& link) const override {
    const bool isReal = std::ranges::any_of(realLinks, [&](const auto& name) { return link.folder.ends_with(name); });
    return isReal ? "" : link.model;
  }
  std::string DescribeSession(const SessionLink& link) const override { return "Link of " + link.model; }
  void ComParamsCaller(const std::string& caller) override { Note("ComParamsCaller " + caller); }
  void ShowComParams() override { Note("ShowComParams"); }
  void ShowTrace() override { Note("ShowTrace"); }
  void ShowModemSettings() override {
    Change();
    Note("ShowModemSettings");
  }

 private:
  void Change() {
    if (!nextDescription.empty()) description = nextDescription;
  }
  void Note(const std::string& what) { mLog.push_back("Driver " + what); }

  CallLog& mLog;
  LinkError mError;
};

}  // namespace kv::test
