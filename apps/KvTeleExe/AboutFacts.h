#pragma once

#include "host/ErrorReport.h"

namespace kv {

// This program, for the about screen and its report: the system, the screen, and the libraries that it runs with.
[[nodiscard]] ReportedProgram ThisProgram();

}  // namespace kv
