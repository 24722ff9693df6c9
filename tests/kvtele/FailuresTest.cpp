#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/kvtele/CommandFixture.h"

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

// 150 words: three requests.
std::string LongWrite() {
  std::string line = "--link sim:Q50 write DBI 0";
  for (int i = 0; i < 150; ++i) line += " 1";
  return line;
}

TEST(Failures, InTheMiddleSayHowFarItWas) {
  const std::string longWrite = LongWrite();
  const char* const write = "--link sim:Q50 regions write @two.axt @two.csv --yes";
  const FailingCommand rows[] = {
      {"--link sim:Q50 read MI 0", 4, "busy", "busy", "busy:on=RO"},
      {"--link sim:Q50 read MI 0", 3, "noReply", "no reply", "noreply:on=ID"},
      {longWrite.c_str(), 4, "refused", "DBI 0..119 had been written before", "refuse:on=WO,code=06,nth=3"},
      {longWrite.c_str(), 7, "unsure", "DBI 60..119 may have been written; DBI 0..59 had been written before",
       "lost:on=WO,nth=2,dir=in,away=600000"},
      {longWrite.c_str(), 130, "interrupted", "DBI 0..59 had been written before", "late:on=WO,nth=2,ms=900"},
      {write, 4, "refused", "nothing was written", "refuse:on=WO,code=06"},
      {write, 7, "noReply", "was written, but could not be read back", "noreply:on=RO"},
      {"--link sim:Q50 watch @two.axt --for 60", 7, "noReply", "no reply", "noreply:on=RO"},
      {"--link sim:Q50 watch @two.axt --for 60", 7, "linkLost", "Simulated Q50", "lost:on=RO,nth=3,away=600000"},
  };
  for (const FailingCommand& row : rows) {
    CommandFixture fixture;
    fixture.home.Put("two.axt", "Version 100\r\nQ50\r\n2\tMI\t0\t1\t\r\n1\tMB\t0\t0\t\r\n\r\n");
    fixture.home.Put("two.csv", "MI,0,5\nMI,1,6\nMB,0,1\n");
    const auto stop = [&] { fixture.pacer.RequestStop(); };  // as Ctrl-C does
    if (row.exit == 130) fixture.pacer.After(std::chrono::milliseconds(400), stop);
    fixture.ExpectFailure(row);
  }
}

}  // namespace
}  // namespace kv::test
