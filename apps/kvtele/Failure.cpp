#include "apps/kvtele/Failure.h"

#include <array>
#include <string_view>

#include "desktop/console/HarmlessText.h"
#include "link/ControllerErrorText.h"

namespace kv::cli {

namespace {

struct LinkErrorRow {
  LinkErrorCode code;
  std::string_view name;
  ExitCode neverConnected;
  ExitCode wasConnected;
};

// clang-format off
constexpr std::array kLinkErrors = {
    LinkErrorRow{LinkErrorCode::None,            "failed",          ExitCode::Failed,       ExitCode::Failed},
    LinkErrorRow{LinkErrorCode::BadArgument,     "badArgument",     ExitCode::Failed,       ExitCode::Failed},
    LinkErrorRow{LinkErrorCode::CannotOpen,      "cannotOpen",      ExitCode::NoConnection, ExitCode::LinkLost},
    LinkErrorRow{LinkErrorCode::NoReply,         "noReply",         ExitCode::NoConnection, ExitCode::LinkLost},
    LinkErrorRow{LinkErrorCode::Damaged,         "damaged",         ExitCode::NoConnection, ExitCode::LinkLost},
    LinkErrorRow{LinkErrorCode::Refused,         "refused",         ExitCode::Refused,      ExitCode::Refused},
    LinkErrorRow{LinkErrorCode::Busy,            "busy",            ExitCode::Refused,      ExitCode::Refused},
    LinkErrorRow{LinkErrorCode::NotSupported,    "notSupported",    ExitCode::Refused,      ExitCode::Refused},
    LinkErrorRow{LinkErrorCode::Stopped,         "interrupted",     ExitCode::Interrupted,  ExitCode::Interrupted},
    LinkErrorRow{LinkErrorCode::LinkLost,        "linkLost",        ExitCode::NoConnection, ExitCode::LinkLost},
    LinkErrorRow{LinkErrorCode::Closed,          "linkClosed",      ExitCode::NoConnection, ExitCode::LinkLost},
    LinkErrorRow{LinkErrorCode::OtherController, "otherController", ExitCode::Refused,      ExitCode::LinkLost},
    LinkErrorRow{LinkErrorCode::NotRecorded,     "notRecorded",     ExitCode::Failed,       ExitCode::Failed},
    LinkErrorRow{LinkErrorCode::Unsure,          "unsure",          ExitCode::LinkLost,     ExitCode::LinkLost},
};

// Reply and Link are named by the error of the link.
constexpr CauseRow<CloneCause> kCauses[] = {
    {CloneCause::Stop,     "interrupted", ExitCode::Interrupted},
    {CloneCause::OldOs,    "notFit",      ExitCode::Refused},
    {CloneCause::Segments, "segments",    ExitCode::Refused},
    {CloneCause::Password, "password",    ExitCode::Refused},
    {CloneCause::NoPassword, "password",  ExitCode::Refused},
    {CloneCause::File,     "badFile",     ExitCode::BadFile},
    {CloneCause::Unproven, "unproven",    ExitCode::Failed},
};
// clang-format on

// Scripts tell these from other refusals: they have the cure in their hands.
std::string_view NameOf(const LinkError& error, const LinkErrorRow& row) {
  if (error.controllerCode == kNeedsPasswordCode) return "passwordNeeded";
  return error.controllerCode == kWrongPasswordCode ? "wrongPassword" : row.name;
}

const LinkErrorRow& RowOf(LinkErrorCode code) {
  for (const LinkErrorRow& row : kLinkErrors) {
    if (row.code == code) return row;
  }
  return kLinkErrors.front();
}

}  // namespace

std::string Failure::Text() const {
  const std::string text =
      LinkError{LinkErrorCode::BadArgument, 0, doing, untold.value_or(happened), cause, cure}.Text();
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
  const LinkErrorRow& row = RowOf(error.code);
  return {wasConnected ? row.wasConnected : row.neverConnected,
          std::string(NameOf(error, row)),
          error.doing,
          error.happened.empty() ? "the controller did not do it" : error.happened,
          error.cause,
          error.cure};
}

Failure CloneFailure(std::string doing, const CloneOutcome& outcome) {
  if (const auto* row = RowOf<CloneCause>(kCauses, outcome.cause)) {
    return {row->exit, std::string(row->name), std::move(doing), outcome.reason, {}, {}};
  }
  const Failure link = LinkFailure(outcome.link, true);
  const bool isUseless = outcome.cause != CloneCause::None && outcome.link.code == LinkErrorCode::None;
  return {isUseless ? ExitCode::LinkLost : link.exit,
          outcome.cause == CloneCause::Reply ? "badReply" : link.code,
          std::move(doing),
          outcome.reason,
          {},
          {}};
}

}  // namespace kv::cli
