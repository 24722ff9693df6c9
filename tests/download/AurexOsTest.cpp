// The O/S of an Aurex controller: what is asked, what is sent, and what is left when it is cut.

#include <gmock/gmock.h>

#include "AurexOsFixture.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kMismatch =
    "Telepanel: There is a mismatch between PLC Type defined in Telepanel and connected PLC.";

TEST(AurexOs, EachVersionHasItsOwnQuestions) {
  struct Row {
    int installed;
    int next;
    bool changesBootLoader;
    bool losesDataTypes;
    bool savesMemory;
  };
  const Row rows[] = {
      {110, 110, false, false, false}, {110, 111, true, false, false},  {111, 112, false, false, false},
      {200, 201, true, false, false},  {201, 250, false, false, false}, {250, 251, true, false, false},
      {290, 291, true, false, false},  {291, 373, false, false, false}, {373, 374, true, true, true},
      {374, 475, false, false, false}, {300, 299, false, true, false},  {299, 298, false, false, false},
      {374, 373, false, true, false},  {373, 372, false, false, false}, {299, 374, true, true, true},
      {300, 374, true, true, true},    {109, 290, true, false, false},  {475, 460, false, false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.installed) + " to " + std::to_string(row.next));
    const AurexOsChange change{row.installed, row.next, false};
    EXPECT_EQ(change.ChangesBootLoader(), row.changesBootLoader);
    EXPECT_EQ(change.LosesDataTypes(), row.losesDataTypes);
    EXPECT_EQ(change.NeedsMemorySaved(), row.savesMemory);
    EXPECT_EQ(change.RefusesFonts(129), row.next >= 374);
    EXPECT_FALSE(change.RefusesFonts(130));
    const AurexOsChange fromBoot{row.installed, row.next, true};
    EXPECT_TRUE(fromBoot.ChangesBootLoader() && fromBoot.LosesDataTypes() && !fromBoot.NeedsMemorySaved());
  }
}

// A file of each kind and each O/S model.
std::vector<std::filesystem::path> PutSamples(AurexOsFixture& fixture) {
  std::vector<std::filesystem::path> files;
  const auto put = [&](const std::string& name, const std::string& content) {
    files.push_back(fixture.home.Path() / name);
    AurexOsFixture::PutFile(files.back(), content);
  };
  const std::pair<const char*, const char*> os[] = {{"K220", "K220-22-R1"}, {"K222", "K220-32"}, {"K330", "K330"}};
  for (const auto& [osModel, model] : os) {
    put("Aurex" + std::string(osModel) + "v47503.kos", SampleOs(model, {"4.75", 3}));
  }
  for (const char* model : {"Q50", "Q51", "Q58", "PX1", "PR1"}) {
    put(sim::OsFileName(ModelCalled(model), {"4.71", 2}), SampleOs(model, {"4.71", 2}));
  }
  put("hall.dai", SampleProject("K220-22-R1"));
  put("hall.d50", SampleProject("Q50", 200));
  put("AurexFontv1300.kos", SampleFonts("K220-22-R1", {"1.30", 0}));
  return files;
}

TEST(AurexOs, EveryModelGetsItsOwnAndRefusesEveryOtherFile) {
  for (const sim::Model& model : sim::AllModels()) {
    const bool hasOs = model.UnderstandsBlocks() && !model.HasColour();
    for (const bool boot : {false, true}) {
      AurexOsFixture fixture(std::string(model.name), "", boot);
      const auto files = PutSamples(fixture);
      const std::string truth = fixture.controller->Truth();
      int done = 0;
      for (const auto& file : files) {
        SCOPED_TRACE(std::string(model.name) + " gets " + file.filename().string() + (boot ? " in boot" : ""));
        const auto fonts = fixture.home.Path() / "AurexFontv1300.kft";
        AurexOsFixture::PutFile(fonts, SampleFonts(hasOs ? std::string(model.name) : "K330", {"1.30", 0}));
        fixture.desk.choice = {file, fonts};
        if (hasOs && file.filename() == "Aurex" + std::string(model.osModel) + "v47503.kos") {
          EXPECT_TRUE(fixture.Download()) << fixture.outcome.reason;
          EXPECT_EQ(fixture.review->after.os, "4.75 (B03)");
          EXPECT_THAT(fixture.controller->Truth(),
                      testing::AnyOf(HasSubstr("|4.75|03|R"), HasSubstr("O/S 4.75;|B03;|R")));
          ++done;
          continue;
        }
        EXPECT_FALSE(fixture.Download());
        EXPECT_EQ(fixture.outcome.end, DownloadEnd::Refused);
        EXPECT_EQ(fixture.outcome.left, ControllerLeft::Untouched);
        EXPECT_THAT(fixture.desk.said, ElementsAre(hasOs ? HasSubstr("Telepanel: PLC Type: ") : HasSubstr(kMismatch)));
        EXPECT_THAT(fixture.controller->told, IsEmpty());
      }
      EXPECT_EQ(done, hasOs ? 1 : 0);
      EXPECT_EQ(fixture.controller->Truth() == truth, !hasOs);
    }
  }
}

constexpr const char* kStop = "PLC STOP & RESET: O/S download is done via the Aurex's COM port 1. ";
constexpr const char* kTypes =
    "Warning: This operating system does not support the data types currently defined in this controller.";
constexpr const char* kReset = "Reset PLC: The controller is about to restart";
constexpr const char* kCloner = "Korvantis PLC Cloner: ";

// The boxes to the letter: text, icon, buttons, and whether No is the default.
void ExpectSettled(const std::vector<MessageBox>& boxes) {
  const MessageBox settled[] = {
      {.text = "O/S download is done via the Aurex's COM port 1. \r\n\r\n"
               "Note that the download process will cause:\r\n"
               " - Your current application to STOP running.\r\n"
               " - The PLC to RESET at the end of the download process.\r\n\r\n"
               "Continue ?",
       .title = "PLC STOP & RESET",
       .icon = PromptIcon::Exclamation,
       .buttons = PromptButtons::YesNo,
       .canLose = true},
      {.text = "This operating system does not support the data types currently defined in this controller.\r\n"
               "Continuing this operation will corrupt the values currently in the controller's memory.\r\n"
               "Do you want to continue?",
       .title = "Warning",
       .icon = PromptIcon::Exclamation,
       .buttons = PromptButtons::YesNo,
       .canLose = true},
      {.text = "This OS requires system fonts version 130 B(0) or later.", .title = "Telepanel"},
      {.text = "The controller is about to restart", .title = "Reset PLC", .icon = PromptIcon::Information},
      {.text = "SB 501 is ON, Inputs forces might be active.", .title = "Warning", .icon = PromptIcon::Exclamation},
  };
  for (const MessageBox& box : boxes) {
    if (box.title == "Korvantis PLC Cloner") continue;  // the cloner's own
    EXPECT_THAT(settled, testing::Contains(box)) << box.text;
  }
}

TEST(AurexOs, EverythingIsAskedInItsOrderAndNothingIsSentBefore) {
  struct Row {
    const char* installed;
    bool isInBoot;
    const char* next;
    const char* fonts;
    std::size_t noAt;  // the box that is answered with No; 0: none
    DownloadEnd end;
    std::vector<std::string> said;
  };
  const std::string created = std::string(kCloner) + "Clone File Created Successfully.";
  const Row rows[] = {
      {"4.60", false, "4.75", "1.30", 0, DownloadEnd::Done, {kStop, kReset}},
      {"4.60", false, "4.75", "1.30", 1, DownloadEnd::Declined, {kStop}},
      {"3.73",
       false,
       "3.74",
       "1.29",
       0,
       DownloadEnd::Refused,
       {kStop, "Telepanel: This OS requires system fonts version 130 B(0) or later."}},
      {"3.73",
       false,
       "3.74",
       "1.30",
       0,
       DownloadEnd::Done,
       {kStop, "(bios)", kTypes, std::string(kCloner) + "The PLC is about to STOP, Continue?", created, kReset,
        "Warning: SB 501 is ON, Inputs forces might be active.",
        std::string(kCloner) + "Korvantis Clone File:\tV100\t"
                               "2024-01-01\t00:00:00",
        std::string(kCloner) + "Clone Restore Successfully."}},
      {"3.73", false, "3.74", "1.30", 3, DownloadEnd::Declined, {kStop, "(bios)", kTypes}},
      {"3.73", false, "3.74", "1.30", 2, DownloadEnd::Declined, {kStop, "(bios)"}},
      {"3.73",
       false,
       "3.74",
       "1.30",
       4,
       DownloadEnd::Stopped,
       {kStop, "(bios)", kTypes, std::string(kCloner) + "The PLC is about to STOP, Continue?",
        std::string(kCloner) + "Operation Failed."}},
      {"2.00", false, "2.01", "1.29", 0, DownloadEnd::Done, {kStop, "(bios)", kReset}},
      {"2.01", false, "2.50", "1.29", 0, DownloadEnd::Done, {kStop, kReset}},
      {"4.60", true, "4.75", "1.30", 0, DownloadEnd::Done, {kStop, "(bios)", kTypes, kReset}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.installed) + " to " + row.next + " at " + std::to_string(row.noAt));
    AurexOsFixture fixture("K220-22-R1", row.installed, row.isInBoot);
    fixture.Put("K220", {row.next, 3}, {row.fonts, 0});
    const bool isForced = row.said.size() > 5;
    if (isForced) fixture.controller->Tell("WO00000201F500010100000000");
    fixture.desk.answer = [&](const MessageBox& box) {
      return fixture.desk.said.size() == row.noAt ? LeastCommitting(box.buttons) : Consent(box.buttons);
    };
    if (row.noAt == 2) fixture.desk.bios = BiosAnswer::Abort;
    const std::string before = fixture.controller->Tell("RM000000100000010000000000").text;
    EXPECT_EQ(fixture.Download(), row.end == DownloadEnd::Done) << fixture.outcome.reason;
    EXPECT_EQ(fixture.outcome.end, row.end);
    EXPECT_EQ(fixture.desk.said, row.said);
    ExpectSettled(fixture.desk.boxes);
    if (row.end != DownloadEnd::Done) {
      EXPECT_THAT(fixture.controller->told, IsEmpty());
      continue;
    }
    EXPECT_THAT(fixture.controller->Truth(), HasSubstr(std::string("|") + row.next + "|03|R"));
    if (isForced) {
      EXPECT_EQ(fixture.controller->Tell("RM000000100000010000000000").text, before) << "the memory is back";
      EXPECT_TRUE(std::filesystem::is_empty(fixture.paths.Temporary()));
    }
  }
}

}  // namespace
}  // namespace kv::test
