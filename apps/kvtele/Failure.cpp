#include "apps/kvtele/Failure.h"

#include <array>
#include <string_view>

#include "desktop/console/HarmlessText.h"
#include "link/ControllerErrorText.h"

namespace kv::cli {

namespace {

struct CodeRow {
  LinkErrorCode code;
  std::string_view name;
  ExitCode neverConnected;
  ExitCode wasConnected;
};

// clang-format off
constexpr std::array kCodes = {
    CodeRow{LinkErrorCode::None,            "failed",          ExitCode::Failed,       ExitCode::Failed},
    CodeRow{LinkErrorCode::BadArgument,     "badArgument",     ExitCode::Failed,       ExitCode::Failed},
    CodeRow{LinkErrorCode::CannotOpen,      "cannotOpen",      ExitCode::NoConnection, ExitCode::LinkLost},
    CodeRow{LinkErrorCode::NoReply,         "noReply",         ExitCode::NoConnection, ExitCode::LinkLost},
    CodeRow{LinkErrorCode::Damaged,         "damaged",         ExitCode::NoConnection, ExitCode::LinkLost},
    CodeRow{LinkErrorCode::Refused,         "refused",         ExitCode::Refused,      ExitCode::Refused},
    CodeRow{LinkErrorCode::Busy,            "busy",            ExitCode::Refused,      ExitCode::Refused},
    CodeRow{LinkErrorCode::NotSupported,    "notSupported",    ExitCode::Refused,      ExitCode::Refused},
    CodeRow{LinkErrorCode::Stopped,         "interrupted",     ExitCode::Interrupted,  ExitCode::Interrupted},
    CodeRow{LinkErrorCode::LinkLost,        "linkLost",        ExitCode::NoConnection, ExitCode::LinkLost},
    CodeRow{LinkErrorCode::Closed,          "linkClosed",      ExitCode::NoConnection, ExitCode::LinkLost},
    CodeRow{LinkErrorCode::OtherController, "otherController", ExitCode::Refused,      ExitCode::LinkLost},
    CodeRow{LinkErrorCode::Unsure,          "unsure",          ExitCode::LinkLost,     ExitCode::LinkLost},
};
// clang-format on

// Scripts tell these from other refusals: they have the cure in their hands.
std::string_view NameOf(const LinkError& error, const CodeRow& row) {
  if (error.controllerCode == kNeedsPasswordCode) return "passwordNeeded";
  return error.controllerCode == kWrongPasswordCode ? "wrongPassword" : row.name;
}

const CodeRow& RowOf(LinkErrorCode code) {
  for (const CodeRow& row : kCodes) {
    if (row.code == code) return row;
  }
  return kCodes.front();
}

}  // namespace

std::string Failure::Text() const {
  const std::string text = LinkError{LinkErrorCode::BadArgument, 0, doing, happened, cause, cure}.Text();
  return HarmlessText(text, "\n\t") + "\n";  // what a controller said may be in it
}

Failure UsageFailure(std::string happened, std::string cure) {
  if (cure.empty()) cure = "see kvtele --help";
  return {ExitCode::Usage, "usage", {}, std::move(happened), {}, std::move(cure)};
}

Failure NotFitFailure(std::string doing, std::string happened, std::string cause, std::string cure) {
  return {ExitCode::Refused, "notFit", std::move(doing), std::move(happened), std::move(cause), std::move(cure)};
}

Failure InterruptedFailure(std::string doing) {
  return {ExitCode::Interrupted, "interrupted", std::move(doing), "stopped by Ctrl-C", {}, {}};
}

Failure LinkFailure(const LinkError& error, bool wasConnected) {
  const CodeRow& row = RowOf(error.code);
  return {wasConnected ? row.wasConnected : row.neverConnected,
          std::string(NameOf(error, row)),
          error.doing,
          error.happened.empty() ? "the controller did not do it" : error.happened,
          error.cause,
          error.cure};
}

}  // namespace kv::cli
