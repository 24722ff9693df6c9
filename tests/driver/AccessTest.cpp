#include <gtest/gtest.h>

#include <deque>

#include "Bench.h"
#include "desktop/ScriptedPrompts.h"
#include "link/PromptedPassword.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
const std::vector<std::int16_t> kSeven = {7};

// A user who types these passwords one after the other, taking his time, and then cancels.
class Typist final : public PasswordSource {
 public:
  Typist(VirtualPacer& pacer, std::deque<std::string> passwords) : mPacer(pacer), mPasswords(std::move(passwords)) {}

  std::optional<std::string> Password(const PasswordWanted& asked) override {
    wanted.push_back(asked);
    mPacer.Sleep(60s);  // far longer than any request may take
    if (meanwhile) meanwhile();
    if (mPasswords.empty()) return std::nullopt;
    std::string next = mPasswords.front();
    mPasswords.pop_front();
    return next;
  }
  std::string Cure() const override { return "type better"; }

  std::vector<PasswordWanted> wanted;
  std::function<void()> meanwhile;

 private:
  VirtualPacer& mPacer;
  std::deque<std::string> mPasswords;
};

struct Guarded : Bench {
  Typist user;
  explicit Guarded(std::deque<std::string> passwords)
      : Bench("K220", SerialSettings(), "secret"), user(pacer, std::move(passwords)) {
    channel.UsePasswords(&user);
  }
};

void PutAnother(Guarded& bench) {
  sim::SimulatorOptions another;
  another.serialNumber = 4711;
  bench.plant.Connect("K220", "secret", another);
}

TEST(Access, IsAskedForOnceAndKeptForTheConnection) {
  const std::pair<const char*, std::function<bool(Channel&)>> requests[] = {
      {"write", [](Channel& channel) { return channel.WriteMI(0, kSeven, 1); }},
      {"stop", [](Channel& channel) { return channel.StopController(1); }},
      {"text", [](Channel& channel) { return channel.SendCommand("CCS")->text.starts_with("CCOK"); }},
      {"block", BeginDownload},
      {"raw", [](Channel& channel) { return channel.EnsureAccess(1); }},
  };
  for (const auto& [name, request] : requests) {
    SCOPED_TRACE(name);
    Guarded bench({"secret"});
    EXPECT_TRUE(request(bench.channel)) << bench.Error().Text();
    EXPECT_TRUE(bench.channel.WriteMI(0, kSeven, 1));
    bench.plant.isCut = true;
    EXPECT_TRUE(bench.channel.WriteMI(0, kSeven, 1)) << "after a reconnect";
    ASSERT_EQ(bench.user.wanted.size(), 1U);
    const std::string serial = std::to_string(bench.channel.GetControllerInfo(1)->serialNumber);
    EXPECT_EQ(bench.user.wanted[0].controller, "K220-22-R1, serial number " + serial);
    EXPECT_EQ(bench.user.wanted[0].link, "COM3, 115200 8N1, unit 1");
    bench.channel.Close();
    EXPECT_TRUE(bench.channel.Open());
    EXPECT_FALSE(bench.channel.WriteMI(0, kSeven, 1)) << "another connection";
    EXPECT_EQ(bench.user.wanted.size(), 2U);
  }
}

TEST(Access, AWrongPasswordIsSaidAndAskedAgainAtMostThreeTimesAndNeverAfterCancel) {
  const struct {
    std::deque<std::string> typed;
    std::vector<bool> wasWrong;  // of each question
    int code;
  } cases[] = {
      {{"Secret", "", "secret"}, {false, true, true}, 0},
      {{"Secret", "secret12", "x", "secret"}, {false, true, true}, 0x08},
      {{"secret   "}, {false, true}, 0x08},  // nine characters are none
      {{}, {false}, 0x07},
  };
  for (const auto& each : cases) {
    Guarded bench(each.typed);
    const bool isWritten = bench.channel.WriteMI(0, kSeven, 1);
    EXPECT_EQ(isWritten, each.code == 0);
    EXPECT_EQ(bench.Error().controllerCode, each.code);
    EXPECT_EQ(bench.Error().cure, isWritten ? "" : "type better");
    std::vector<bool> asked;
    for (const PasswordWanted& wanted : bench.user.wanted) asked.push_back(wanted.wasWrong);
    EXPECT_EQ(asked, each.wasWrong);
    EXPECT_EQ(bench.channel.RunController(1), isWritten) << "the same operation tidies up";
    EXPECT_EQ(bench.channel.EnsureAccess(1), isWritten);
    EXPECT_EQ(bench.user.wanted.size(), asked.size());
    bench.channel.BeginOperation();
    (void)bench.channel.RunController(1);
    EXPECT_EQ(bench.user.wanted.size(), asked.size() + (isWritten ? 0 : 1));
    EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1)) << "reading needs none";
  }
}

TEST(Access, WhatHappensWhileTheUserTypesIsNoticed) {
  const struct {
    const char* what;
    std::function<void(Guarded&)> meanwhile;
    LinkErrorCode code;
  } cases[] = {
      {"cut", [](Guarded& bench) { bench.plant.isCut = true; }, LinkErrorCode::None},
      {"Ctrl-C", [](Guarded& bench) { bench.pacer.RequestStop(); }, LinkErrorCode::Stopped},
      {"closed", [](Guarded& bench) { bench.channel.Close(); }, LinkErrorCode::Closed},
      {"busy", [](Guarded& bench) { bench.plant.UseFaults({"busy:on=AC,nth=1"}); }, LinkErrorCode::Busy},
      {"another machine", PutAnother, LinkErrorCode::OtherController},
      {"second", [](Guarded& bench) { EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1)); }, LinkErrorCode::None},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.what);
    Guarded bench({"secret"});
    bench.user.meanwhile = [&] { each.meanwhile(bench); };
    EXPECT_EQ(bench.channel.WriteMI(0, kSeven, 1), each.code == LinkErrorCode::None);
    EXPECT_EQ(bench.Error().code, each.code) << bench.Error().Text();
    EXPECT_EQ(bench.user.wanted.size(), 1U);
    const bool isGiven = bench.trace->Text().find("/01AC") != std::string::npos;
    const bool isGone = each.code != LinkErrorCode::None && each.code != LinkErrorCode::Busy;
    EXPECT_NE(isGiven, isGone);
    EXPECT_EQ(bench.Error().isNotExecuted, isGone) << "the write was refused, and did not go out again";
  }
}

TEST(Access, AKnownPasswordIsTriedBeforeTheUserIsAsked) {
  ScriptedPrompts prompts([](const std::string& what) { ADD_FAILURE() << what; });
  PromptedPassword password(prompts, "cure", "old");
  EXPECT_EQ(password.Password({.controller = "K220", .link = "COM3"}), "old");
  prompts.Enter("n\xC3\xBC");
  EXPECT_EQ(password.Password({.controller = "K220", .link = "COM3", .wasWrong = true}), "n\xFC");
  EXPECT_TRUE(prompts.Inputs()[0].secret);
  for (const char* part : {"wrong", "K220", "COM3"}) EXPECT_NE(prompts.Inputs()[0].text.find(part), std::string::npos);
}

}  // namespace
}  // namespace kv
