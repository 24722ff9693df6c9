#include <gtest/gtest.h>

#include <deque>

#include "Fixture.h"
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

  std::optional<Secret> Password(const PasswordWanted& asked) override {
    wanted.push_back(asked);
    mPacer.Sleep(60s);  // far longer than any request may take
    if (meanwhile) meanwhile();
    if (mPasswords.empty()) return std::nullopt;
    Secret next = Secret::TakenFrom(mPasswords.front());
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

struct Guarded : Fixture {
  Typist user;
  explicit Guarded(std::deque<std::string> passwords)
      : Fixture("K220", SerialSettings(), "secret"), user(pacer, std::move(passwords)) {
    channel.UsePasswords(&user);
  }
};

void PutAnother(Guarded& fixture) {
  sim::SimulatorOptions another;
  another.serialNumber = 4711;
  fixture.plant.Connect("K220", "secret", another);
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
    Guarded fixture({"secret"});
    EXPECT_TRUE(request(fixture.channel)) << fixture.Error().Text();
    EXPECT_TRUE(fixture.channel.WriteMI(0, kSeven, 1));
    fixture.plant.isCut = true;
    EXPECT_TRUE(fixture.channel.WriteMI(0, kSeven, 1)) << "after a reconnect";
    ASSERT_EQ(fixture.user.wanted.size(), 1U);
    const std::string serial = std::to_string(fixture.channel.GetControllerInfo(1)->serialNumber);
    EXPECT_EQ(fixture.user.wanted[0].controller, "K220-22-R1, serial number " + serial);
    EXPECT_EQ(fixture.user.wanted[0].link, "COM3, 115200 8N1, unit 1");
    fixture.channel.Close();
    EXPECT_TRUE(fixture.channel.Open());
    EXPECT_FALSE(fixture.channel.WriteMI(0, kSeven, 1)) << "another connection";
    EXPECT_EQ(fixture.user.wanted.size(), 2U);
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
    Guarded fixture(each.typed);
    const bool isWritten = fixture.channel.WriteMI(0, kSeven, 1);
    EXPECT_EQ(isWritten, each.code == 0);
    EXPECT_EQ(fixture.Error().controllerCode, each.code);
    EXPECT_EQ(fixture.Error().cure, isWritten ? "" : "type better");
    std::vector<bool> asked;
    for (const PasswordWanted& wanted : fixture.user.wanted) asked.push_back(wanted.wasWrong);
    EXPECT_EQ(asked, each.wasWrong);
    EXPECT_EQ(fixture.channel.RunController(1), isWritten) << "the same operation tidies up";
    EXPECT_EQ(fixture.channel.EnsureAccess(1), isWritten);
    EXPECT_EQ(fixture.user.wanted.size(), asked.size());
    fixture.channel.BeginOperation();
    (void)fixture.channel.RunController(1);
    EXPECT_EQ(fixture.user.wanted.size(), asked.size() + (isWritten ? 0 : 1));
    EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1)) << "reading needs none";
  }
}

void ReadInVain(Guarded& fixture) {
  EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(fixture.Error().happened, "another request is under way");
}

TEST(Access, WhatHappensWhileTheUserTypesIsNoticed) {
  const struct {
    const char* what;
    std::function<void(Guarded&)> meanwhile;
    LinkErrorCode code;
  } cases[] = {
      {"cut", [](Guarded& fixture) { fixture.plant.isCut = true; }, LinkErrorCode::None},
      {"Ctrl-C", [](Guarded& fixture) { fixture.pacer.RequestStop(); }, LinkErrorCode::Stopped},
      {"closed", [](Guarded& fixture) { fixture.channel.Close(); }, LinkErrorCode::Closed},
      {"busy", [](Guarded& fixture) { fixture.plant.UseFaults({"busy:on=AC,nth=1"}); }, LinkErrorCode::Busy},
      {"another machine", PutAnother, LinkErrorCode::OtherController},
      {"second", ReadInVain, LinkErrorCode::None},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.what);
    Guarded fixture({"secret"});
    fixture.user.meanwhile = [&] { each.meanwhile(fixture); };
    EXPECT_EQ(fixture.channel.WriteMI(0, kSeven, 1), each.code == LinkErrorCode::None);
    EXPECT_EQ(fixture.Error().code, each.code) << fixture.Error().Text();
    EXPECT_EQ(fixture.user.wanted.size(), 1U);
    const bool isGiven = fixture.trace->Text().find("/01AC") != std::string::npos;
    const bool isGone = each.code != LinkErrorCode::None && each.code != LinkErrorCode::Busy;
    EXPECT_NE(isGiven, isGone);
    EXPECT_EQ(fixture.Error().isNotExecuted, isGone) << "the write was refused, and did not go out again";
  }
}

}  // namespace
}  // namespace kv
