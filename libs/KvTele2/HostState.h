#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTele2/ControllerFacts.h"
#include "KvTele2/PagesFile.h"

namespace kv {

enum class ConnectionState {
  Offline,
  Connecting,
  Online,
  Lost,  // was on line, and the controller has stopped answering
};

// A pages file that is open.
struct OpenPages {
  std::string path;
  PagesFile content;
};

// Everything that the main window shows, but for the log. Texts are UTF-8.
struct HostState {
  std::string session;
  std::string user;   // empty: nobody is logged in
  std::string link;   // "COM3, 115200 8N1, unit 1"
  std::string model;  // the selected one
  std::string message;
  std::string caption;  // of the panel session; empty: the host's own

  ConnectionState connection = ConnectionState::Offline;
  bool isSilent = false;    // on line, and the controller has owed an answer for some time
  bool isWithTool = false;  // a tool works with the controller, and the host asks it nothing
  // Why the controller could not be reached, was refused or lost, or does not fit: what happened, cause and cure.
  std::string trouble;
  std::optional<ControllerFacts> controller;  // on line or lost, or the one that was refused
  std::optional<LinkFacts> quality;           // on line or lost

  std::optional<OpenPages> pages;
  std::vector<std::string> recentPages;  // newest first
  bool isEnabled = true;                 // takes user input
  bool isPointerBusy = false;
};

// "On line", "Connection lost".
[[nodiscard]] std::string ConnectionText(const HostState& state);
// The same with the link, and what the program does about it: "Connection lost, looking for the controller: COM3".
[[nodiscard]] std::string ConnectionHeading(const HostState& state);
// "Default - K220-22-R1 - Telepanel".
[[nodiscard]] std::string WindowTitle(const HostState& state);
// "Line2.kta: project Bakery, model K220-22-R1", or "None".
[[nodiscard]] std::string PagesText(const HostState& state);
// What to do when the controller that is on line is another one than the selected model; empty when it fits.
[[nodiscard]] std::string MisfitText(const HostState& state);
// Whether the catalogue offers this model for selection, and whether it is offered among those of the Aurex family.
[[nodiscard]] bool IsOfferedModel(std::string_view model);
[[nodiscard]] bool IsAurexModel(std::string_view model);

}  // namespace kv
