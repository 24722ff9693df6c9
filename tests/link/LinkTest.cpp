#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "desktop/ScriptedPrompts.h"
#include "link/OsVersion.h"
#include "link/PromptedPassword.h"
#include "link/ReconnectPauses.h"

// clang-format off: the tables are laid out by hand
namespace kv {
namespace {

// Nobody is asked for what is known, and no controller is given twice what it has refused.
TEST(PromptedPassword, GivesTheKnownOneFirstAndAsksWhenItIsWrong) {
  Secret known("g\xC3\xBC\x6Et");
  ScriptedPrompts prompts([](const std::string& what) { ADD_FAILURE() << what; });
  PromptedPassword source(prompts, "", {[&] { return &known; }, "The password of the log-in"});
  const auto given = [&](const char* controller, bool wasWrong, const std::optional<std::string>& typed = "typed") {
    const std::size_t asked = prompts.Inputs().size();
    prompts.Enter(typed);
    const auto password = source.Password({.controller = controller, .link = "COM3", .wasWrong = wasWrong});
    if (prompts.Inputs().size() == asked) (void)prompts.Ask({});
    return password ? std::string(password->View()) : "(none)";
  };
  const auto lastText = [&] { return prompts.Inputs().back().text.substr(0, 40); };
  EXPECT_EQ(given("one", false), "g\xFCnt");
  EXPECT_EQ(given("one", false), "g\xFCnt") << "over another connection";
  EXPECT_EQ(given("other", false), "g\xFCnt");
  EXPECT_EQ(given("other", true), "typed");
  EXPECT_THAT(lastText(), testing::StartsWith("The password of the log-in is wrong here"));
  EXPECT_EQ(given("other", true, std::nullopt), "(none)");
  EXPECT_THAT(lastText(), testing::StartsWith("This password is wrong. "));
  EXPECT_EQ(given("other", false), "typed");
  EXPECT_THAT(lastText(), testing::StartsWith("The controller does this only with its"));
  EXPECT_EQ(given("one", false), "g\xFCnt");
  source.Forget();
  EXPECT_EQ(given("other", false), "g\xFCnt");
  for (const char* impossible : {"", "nine char", "\xD0\x9C"}) {
    known = Secret(impossible);
    EXPECT_EQ(given("one", false), "typed") << impossible;
  }
}

TEST(ReconnectPauses, DoubleUpToTheLongest) {
  const auto first = [](const ReconnectPauses& pauses) {
    std::vector<std::int64_t> milliseconds;
    for (int i = 0; i < 8; ++i) milliseconds.push_back(pauses.After(i).count() / 1000);
    return milliseconds;
  };
  EXPECT_EQ(first(kPausesInRequest), (std::vector<std::int64_t>{0, 100, 200, 400, 800, 1600, 3200, 5000}));
  EXPECT_EQ(kPausesWhileWatching.After(5), std::chrono::seconds(30));
  EXPECT_EQ(kPausesBetweenCalls.After(1'000'000), std::chrono::minutes(5));
}

TEST(OsVersion, IsReadFromTheTextsThatControllersReport) {
  using Version = std::optional<ColourOsVersion>;
  const std::vector<std::pair<std::string, Version>> colour = {
      {"HW 1.0;BT 1.2;FL 2.0;O/S 1.10;", ColourOsVersion{1, 10}}, {"a;b;c;O/S   2.3 ", ColourOsVersion{2, 3}},
      {";;;xxxx1.0.7;more", ColourOsVersion{1, 0}}, {"a;b;O/S 1.10", {}}, {"a;b;c;O/S", {}}, {"a;b;c;O/S ", {}},
      {"a;b;c;O/S 1", {}}, {"a;b;c;O/S 1.", {}}, {"a;b;c;O/S -1.5", {}}, {"a;b;c;O/S 9999999999.1", {}}, {"", {}}};
  for (const auto& [text, version] : colour) EXPECT_EQ(ParseColourOsVersion(text), version) << text;
  EXPECT_EQ((ColourOsVersion{1, 1}).Number(), 1001);
  const VersionInfo fields{.osVersion = "HW 1.0;BT 1.2;FL 2.0;O/S 1.10;", .osBuild = "B19;"};
  EXPECT_EQ(OsVersionText(fields) + " build " + OsBuildText(fields), "1.10 build 19");
  EXPECT_EQ(OsVersionText({.osVersion = "4.60\xB2"}), "4.60\xC2\xB2");

  const std::vector<std::pair<std::string, std::optional<int>>> plain = {
      {"4.60", 460}, {"2.9", 29}, {"10.1", 101}, {"3.0.0", 300}, {"B03", {}}, {"", {}}, {"12345678901.2", {}}};
  for (const auto& [text, version] : plain) EXPECT_EQ(ParsePlainOsVersion(text), version) << text;
}

}  // namespace
}  // namespace kv
