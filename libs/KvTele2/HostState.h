#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTele2/ControllerFacts.h"
#include "KvTele2/PagesFile.h"
#include "host/shared/SessionChoice.h"

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

// The values of one of the session's regions, as they are shown while a controller is on line.
struct ShownTile {
  std::string operands{};   // "MI 0..9"
  std::string title{};      // the user's own words; empty: none
  std::string values{};     // as many as a tile has room for; empty: never read
  std::string allValues{};  // for who asks for them
  std::string age{};        // "3 s ago"
  std::string fault{};      // why they could not be read the last time
  bool isOld = false;

  bool operator==(const ShownTile&) const = default;
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
  std::string stateAge;  // "12 s": since the controller told its state, while it is not asked; empty: it is of now
  std::optional<LinkFacts> quality;  // on line or lost
  std::optional<int> secondsToTry;   // until a lost controller is looked for again; 0: now

  std::vector<ShownTile> tiles;  // on line or lost
  bool hasPanel = false;         // on line or lost, with a controller that has told what its screen is
  std::string panelNote;         // what became of the last press, where there is something to say

  std::vector<SessionCard> sessions;  // to choose from while no controller is on line
  std::string sessionsFault;          // why there are none
  std::optional<OpenPages> pages;
  std::vector<std::string> recentPages;  // newest first
  std::vector<std::string> recentCaches;
  bool isEnabled = true;  // takes user input
  bool isPointerBusy = false;
};

// "On line", "Connection lost".
[[nodiscard]] std::string ConnectionText(const HostState& state);
// "Running", or "Running 12 s ago" where it is not of now; empty: not known.
[[nodiscard]] std::string ToldState(const HostState& state);
// Which machine, and how it is: "Line 3 filler - K670 - Running". The last is the connection where that tells more, or
// the state is not known.
[[nodiscard]] std::string HeadingText(const HostState& state);
// The same for the window's title.
[[nodiscard]] std::string WindowTitle(const HostState& state);
// What the program does about a controller that does not answer: "Next try in 12 s"; empty when it does nothing.
[[nodiscard]] std::string RetryText(const HostState& state);
// "Line2.kta: project Bakery, model K220-22-R1", or "None".
[[nodiscard]] std::string PagesText(const HostState& state);
// The model of the controller that is on line, or was refused, when it is another one than the selected model.
[[nodiscard]] std::string OtherModel(const HostState& state);
// What to do about that; empty when it fits.
[[nodiscard]] std::string MisfitText(const HostState& state);
// "Running" for "running".
[[nodiscard]] std::string Capitalised(std::string text);
// What is said above the tiles: what they are, or why there are none.
[[nodiscard]] std::string TilesNote(const HostState& state);
// Which page stands in the middle.
enum class MiddlePage { Start, Values, Panel };
[[nodiscard]] MiddlePage MiddlePageOf(const HostState& state);
// Whether the catalogue offers this model for selection, and whether it is offered among those of the Aurex family.
[[nodiscard]] bool IsOfferedModel(std::string_view model);
[[nodiscard]] bool IsAurexModel(std::string_view model);

}  // namespace kv
