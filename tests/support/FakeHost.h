#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/shared/RemoteHost.h"

namespace kv::test {

// What happened, in order, across all the fakes of a test: "Model K230", "Driver ShowComParams".
using CallLog = std::vector<std::string>;

// A host without windows. Every order that it gets is written into the log; what it answers is set by the test.
class FakeHost : public RemoteHost {
 public:
  explicit FakeHost(CallLog& log) : mLog(log) {}

  std::function<void()> onRun;  // what the user does while the host runs
  bool enabled = true;
  std::string model = "K220-22-R1";
  std::string installFolder;
  std::vector<std::string> toolIds;
  bool readsColourCaches = true;
  std::expected<bool, std::string> opensCaches = true;
  std::string fittingCache;  // of those it is asked for; empty: the first
  bool online = false;
  bool holdsLink = false;
  bool projectMatches = true;
  std::string refusal;        // of the last controller that was refused
  RefusedController refused;  // and what was known of it
  SessionChoice* sessions = nullptr;

  bool Enabled() const override { return enabled; }
  void SetEnabled(bool on) override {
    enabled = on;
    Note("Enabled", Switch(on));
  }
  void StatusMessage(const std::string& text) override { Note("StatusMessage", text); }
  void Refresh() override { Note("Refresh"); }
  void Run() override {
    Note("Run");
    if (onRun) onRun();
  }
  void Quit() override { Note("Quit"); }

  void SetSessionName(const std::string& name) override { Note("SessionName", name); }
  void SetSessionPath(const std::string& folder) override { Note("SessionPath", folder); }
  void SetStartupOption(int option) override { Note("StartupOption", std::to_string(option)); }
  std::string Model() const override { return model; }
  void SetModel(const std::string& text) override {
    model = text;
    Note("Model", text);
  }
  void SetComDescription(const std::string& text) override { Note("ComDescription", text); }
  void SetUserName(const std::string& name) override { Note("UserName", name); }
  void SetSessionChoice(SessionChoice* choice) override { sessions = choice; }
  std::string InstallFolder() const override { return installFolder; }
  void SetHourglass(bool busy) override { Note("Hourglass", Switch(busy)); }
  std::vector<std::string> ToolIds() const override { return toolIds; }
  void SetToolMissing(const std::string& toolId, const std::string&) override { Note("ToolMissing", toolId); }

  bool OpenPagesFile(const std::string& path) override { return Note("OpenPagesFile", path); }
  void SetRecentCaches(const std::vector<std::string>& entries) override {
    Note("RecentCaches", std::to_string(entries.size()));
  }
  bool ReadsColourCaches() const override { return readsColourCaches; }
  std::expected<bool, std::string> OpenColourCache(const std::string& path) override {
    Note("OpenColourCache", path);
    return opensCaches;
  }
  std::string ChooseColourCache(const std::vector<std::string>& paths, const std::string&) override {
    return fittingCache.empty() ? paths.front() : fittingCache;
  }

  bool IsOnline() const override { return online; }
  bool HoldsLink() const override { return holdsLink; }
  void BeginConnect() override { Note("BeginConnect"); }
  void EndConnect() override { Note("EndConnect"); }
  void SetConnectedUnit(int unit) override { Note("ConnectedUnit", std::to_string(unit)); }
  void AttachChannel(std::shared_ptr<Channel>) override { Note("AttachChannel"); }
  void SetControllerModelText(const std::string& text) override { Note("ControllerModelText", text); }
  void SetCompactIdentification(bool compact) override { Note("CompactIdentification", Switch(compact)); }
  void SetControllerInfoByte(int value) override { Note("ControllerInfoByte", std::to_string(value)); }
  bool ProjectMatches() override { return projectMatches; }
  void ConnectionRefused(const std::string& text, const RefusedController& controller) override {
    refusal = text;
    refused = controller;
  }
  void SetPanelData(const std::string& path, const std::string&) override { Note("PanelData", path); }
  void GoOnline() override {
    online = true;
    Note("GoOnline");
  }
  void RunPanelSession(const std::string& caption) override { Note("RunPanelSession", caption); }

 private:
  static const char* Switch(bool on) { return on ? "on" : "off"; }
  bool Note(const std::string& order, const std::string& detail = "") {
    mLog.push_back(detail.empty() ? order : order + " " + detail);
    return true;
  }

  CallLog& mLog;
};

}  // namespace kv::test
