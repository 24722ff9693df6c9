#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/LibraryNotice.h"
#include "desktop/WallClock.h"
#include "host/shared/SharedState.h"

namespace kv {

// What a report tells of the program that makes it.
struct ReportedProgram {
  std::string name;                      // "KvTeleExe"
  std::vector<std::string> system;       // a line each
  std::vector<LibraryNotice> libraries;  // that it runs with
};

// The text that belongs to a report of an error: version, system, the session's settings and the last frames of the
// link. Nothing in it is secret: no password, no telephone number, no init text of a modem (it may hold a PIN), no
// user's name.
[[nodiscard]] std::string ErrorReport(const SharedState& shared, const WallClock& clock,
                                      const ReportedProgram& program);

// "libzip 1.7.3 (BSD-3-Clause)"
[[nodiscard]] std::string LibraryText(const LibraryNotice& library);

}  // namespace kv
