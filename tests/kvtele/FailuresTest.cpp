#include "apps/kvtele/Failure.h"

#include <gtest/gtest.h>

namespace kv::test {
namespace {

// Scripts rely on them: what stands here stays.
TEST(Failures, HaveANameAndAnExitCodeEach) {
  using enum LinkErrorCode;
  struct LinkRow {
    LinkErrorCode code;
    const char* name;
    int neverConnected;
    int wasConnected;
  };
  // clang-format off
  const LinkRow links[] = {
      {None,            "failed",            1,   1},
      {BadArgument,     "badArgument",       1,   1},
      {CannotOpen,      "cannotOpen",        3,   7},
      {NoReply,         "noReply",           3,   7},
      {Damaged,         "damaged",           3,   7},
      {Refused,         "refused",           4,   4},
      {Busy,            "busy",              4,   4},
      {NotSupported,    "notSupported",      4,   4},
      {Stopped,         "interrupted",     130, 130},
      {LinkLost,        "linkLost",          3,   7},
      {Closed,          "linkClosed",        3,   7},
      {OtherController, "otherController",   4,   7},
      {Unsure,          "unsure",            7,   7},
  };
  // clang-format on
  const auto text = [](const cli::Failure& failure) {
    return failure.code + " " + std::to_string(static_cast<int>(failure.exit));
  };
  for (const LinkRow& row : links) {
    const LinkError error{.code = row.code, .doing = "", .happened = "", .cause = "", .cure = ""};
    EXPECT_EQ(text(cli::LinkFailure(error, false)), row.name + (" " + std::to_string(row.neverConnected)));
    EXPECT_EQ(text(cli::LinkFailure(error, true)), row.name + (" " + std::to_string(row.wasConnected)));
  }
}

}  // namespace
}  // namespace kv::test
