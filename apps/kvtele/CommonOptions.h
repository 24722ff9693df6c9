#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "apps/kvtele/Failure.h"
#include "base/ProgramFolders.h"
#include "secret/Secret.h"

namespace kv::cli {

// What every command takes. Paths and names are UTF-8; what is not given stays empty.
struct CommonOptions {
  std::string home;    // the folder that holds Sessions, as --home names it; empty: the program finds one
  ProgramPaths paths;  // with what was found
  std::string session = "Default";
  bool isSessionNamed = false;                // --session was given
  std::string link;                           // text of a link; empty: the session's own
  std::optional<int> unit;                    // 0 to 255
  std::optional<std::uint32_t> serialNumber;  // of the controller that is meant
  std::optional<int> redials;                 // how often a watch dials a lost call again, 0 to 99
  std::optional<int> timeOut;                 // milliseconds a reply may take, 50 to 300000
  std::optional<int> retries;                 // how often a request is repeated, 0 to 9
  Secret password;                            // the controller's, 1 to 8 characters; empty: none is known
  std::string passwordFrom = "--password";    // where it comes from
  std::string passwordFile;                   // empty: none
  std::string user;                           // who works with it; empty: the user of this computer
  std::string model;                          // a selectable model; empty: what the controller says it is
  bool json = false;
  std::string trace;        // file that every frame is written to; empty: none
  bool yes = false;         // questions are answered with yes
  bool unrecorded = false;  // changes may pass where they cannot be recorded
  std::string reason;       // that is recorded with what the command changes
};

// Tells the parser these options; `options` must outlive the parsing. Everything that can be judged without a
// controller is checked by it.
void DeclareCommonOptions(CLI::App& app, CommonOptions& options);

// Finds the folders of sessions and all else, below --home if that was given, and tells why they are there.
[[nodiscard]] OrFailure<HomeReason> FindFolders(CommonOptions& options, const ProgramPlaces& places);

// Where --password was not given: takes it from --password-file, else `fromEnvironment`, the value of KVTELE_PASSWORD.
[[nodiscard]] OrFailure<void> FindPassword(CommonOptions& options, const Secret& fromEnvironment);

}  // namespace kv::cli
