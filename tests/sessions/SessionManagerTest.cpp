#include "sessions/SessionManager.h"

#include <gmock/gmock.h>

#include <fstream>

#include "sessions/SessionIni.h"
#include "tests/support/SessionFixture.h"

namespace kv {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct SessionsTest : testing::Test, test::SessionFixture {
  SessionManager sessions{shared, prompts};

  [[nodiscard]] bool IsMarked(const std::string& name) const {
    return (fs::status(Session(name) / "tmp.txt").permissions() & fs::perms::owner_write) == fs::perms::none;
  }
  void ExpectCreateFails(const std::string& name, const std::string& reason) {
    prompts.Press(PromptAnswer::Ok);
    EXPECT_FALSE(sessions.Create(name)) << name;
    EXPECT_THAT(Taken(), ElementsAre(HasSubstr("Box (!) Create Session: "))) << name;
    EXPECT_THAT(prompts.Boxes().back().text, HasSubstr(reason)) << name;
  }
};

TEST_F(SessionsTest, ANewSessionIsACopyOfTheCurrentOneAndBecomesCurrent) {
  Put("KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=K230\r\n");
  fs::create_directory(Session("Default") / "sub");
  home.Put("Sessions/Default/sub/vsfOperands_1.vsf", "grid");

  ASSERT_TRUE(sessions.Create("Plant 2"));
  EXPECT_EQ(shared.CurrentSession, "Plant 2");
  EXPECT_EQ(ReadSessionIni(shared, "LastModel", ""), "K230");
  EXPECT_EQ(TemporaryFolder::Content(Session("Plant 2") / "sub" / "vsfOperands_1.vsf"), "grid");
  EXPECT_TRUE(IsMarked("Plant 2"));
  EXPECT_FALSE(fs::exists(Session("Default") / "tmp.txt"));

  Put("../Plant 2/notes.txt", "x");
  ASSERT_TRUE(sessions.Create("Plant 3"));  // from a marked one: its mark goes, and is not what the copy carries
  EXPECT_FALSE(IsMarked("Plant 2"));
  EXPECT_TRUE(IsMarked("Plant 3"));
  EXPECT_TRUE(fs::exists(Session("Plant 3") / "notes.txt"));
}

TEST_F(SessionsTest, NamesThatAreNoFolderNameAreRefusedAndNothingIsCopied) {
  const std::pair<std::string, std::string> cases[] = {{"", "needs a name"},
                                                       {"..", "stands for a folder"},
                                                       {"a/b", "cannot contain"},
                                                       {"a\\b", "cannot contain"},
                                                       {"a<b", "the character  <"},
                                                       {"tab\t", "control characters"},
                                                       {"\x7F", "control characters"},
                                                       {"CON", "kept for a device"},
                                                       {"con .txt", "kept for a device"},
                                                       {"CONIN$", "kept for a device"},
                                                       {"com1.old", "kept for a device"},
                                                       {"LPT\xC2\xB2", "kept for a device"},
                                                       {"a.", "cannot end"},
                                                       {"a ", "cannot end"},
                                                       {std::string(300, 'n'), "takes 300 bytes"},
                                                       {"default", "\"Default\" exists already. On many"},
                                                       {"KvTele.log", "a file named"}};
  home.Put("Sessions/KvTele.log", "");
  for (const auto& [name, reason] : cases) ExpectCreateFails(name, reason);
  EXPECT_THAT(sessions.List(), ElementsAre("Default")) << "a file is no session";
  EXPECT_EQ(shared.CurrentSession, "Default");
  for (const std::string& name : {std::string("CONSOLE"), std::string("COM10"), std::string("Plant.2"),
                                  std::string("100 %"), std::string("\xC3\x9C"), std::string(255, 'n')}) {
    EXPECT_EQ(SessionNameFault(name), "");
  }
  ASSERT_TRUE(
      sessions.Create("\xC3\x9C"
                      "ber"));
  ExpectCreateFails(
      "\xC3\xBC"
      "BER",
      "exists already");
}

TEST_F(SessionsTest, AFailedCreateLeavesTheCurrentSessionMarkedAndNoHalfMadeFolder) {
  ASSERT_TRUE(sessions.Create("mine"));
  ExpectCreateFails("Default", "exists already");
  EXPECT_TRUE(IsMarked("mine"));

  fs::create_directory(Session("mine") / "tmp.txt.d");
  fs::create_directory_symlink(Session("mine") / "nowhere", Session("mine") / "link");  // cannot be copied
  ExpectCreateFails("copy", "could not be copied");
  EXPECT_FALSE(fs::exists(Session("copy")));
  EXPECT_EQ(shared.CurrentSession, "mine");

  fs::remove_all(Session("mine"));  // under the program's feet
  ExpectCreateFails("copy", "is not there any more");
  fs::remove_all(home.Path() / "Sessions");
  ExpectCreateFails("copy", "is not there any more");
  EXPECT_THAT(sessions.ListFault(), HasSubstr("Sessions with the sessions cannot be read: "));
}

TEST_F(SessionsTest, DeletingSparesDefaultAndWhatIsInUseAndAsksWhereThereIsSomethingToLose) {
  ASSERT_TRUE(sessions.Create("one"));
  ASSERT_TRUE(sessions.Create("two"));
  EXPECT_FALSE(sessions.Delete("two"));  // in use: stays, without a message
  EXPECT_FALSE(sessions.Delete(".."));
  EXPECT_FALSE(sessions.Delete("gone"));
  using enum SessionManager::Deletion;
  for (const char* name : {"two", "gone"}) EXPECT_EQ(sessions.DeleteOnConsent(name), Failed);
  EXPECT_THAT(Taken(), IsEmpty());
  std::ofstream(Session("one") / "Changes.0001.journal") << "records";
  for (const auto& [answer, deletion] : {std::pair(PromptAnswer::No, Declined), {PromptAnswer::Yes, Done}}) {
    prompts.Press(answer);
    EXPECT_EQ(sessions.DeleteOnConsent("one"), deletion);
    EXPECT_EQ(fs::exists(Session("one")), deletion == Declined);
    EXPECT_THAT(Taken(),
                ElementsAre(testing::AllOf(HasSubstr("Delete the session 'one' ("), HasSubstr("who changed what"))));
    EXPECT_TRUE(prompts.Boxes().back().canLose) << "Enter keeps it";
  }
  EXPECT_THAT(sessions.List(), ElementsAre("Default", "two"));
  EXPECT_TRUE(fs::exists(Session("two") / "tmp.txt"));

  prompts.Press(PromptAnswer::Ok);
  EXPECT_FALSE(sessions.Delete("Default"));
  EXPECT_THAT(Taken(), ElementsAre("Box (!) Remove Session: 'Default' Session cannot be deleted."));

  prompts.Press(PromptAnswer::Ok);
  EXPECT_FALSE(sessions.Activate("one"));
  EXPECT_THAT(Taken(), ElementsAre("Box (!) Activate Session: The session \"one\" is not there any more."));
  EXPECT_EQ(shared.CurrentSession, "two");
}

TEST_F(SessionsTest, ACopyHasNotBeenUsedWhenItsOriginalHas) {
  using namespace std::chrono;
  EXPECT_EQ(sessions.Describe("Default").lastUsed, "");
  NoteSessionUsed(shared, local_seconds(sys_days(2026y / 11 / 21).time_since_epoch() + 14h + 3min + 21s));
  EXPECT_EQ(sessions.Describe("Default").lastUsed, "2026-11-21 14:03:21");
  ASSERT_TRUE(sessions.Create("Plant 2"));
  EXPECT_EQ(sessions.Describe("Plant 2").lastUsed, "");
  EXPECT_TRUE(sessions.Describe("Plant 2").isMarked);
  EXPECT_FALSE(sessions.Describe("Default").isMarked);
}

TEST_F(SessionsTest, TheSimulatedSessionLeavesThoseThatUsersMadeAlone) {
  const auto make = [&] { return sessions.SimulatedSession("Simulated K670", "K670-67-C30 / K390-29-C30"); };
  EXPECT_EQ(make(), "Simulated K670");
  EXPECT_EQ(sessions.Describe("Simulated K670").model, "K670-67-C30 / K390-29-C30");
  EXPECT_EQ(make(), "Simulated K670") << "it is found again";
  driver.realLinks = {"Simulated K670"};  // somebody has given it the link to a machine
  EXPECT_EQ(make(), "Simulated K670 2");
  home.Put("Sessions/Simulated K670 2/KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=K230\r\n");
  EXPECT_EQ(make(), "Simulated K670 3");
  EXPECT_THAT(sessions.List(), testing::SizeIs(4));
  EXPECT_EQ(shared.CurrentSession, "Default");
}

}  // namespace
}  // namespace kv
