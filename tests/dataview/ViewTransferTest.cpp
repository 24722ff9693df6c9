// Reading and writing the regions: what is sent, in which order, what the user is told, and that nothing wrong is
// shown. All of it stands in the record of the test.
#include "tests/dataview/DataViewFixture.h"

namespace kv::test {
namespace {

TEST(ReadRegions, OneRequestARegionAndOneChangeForAll) {
  DataViewFixture fixture;
  EXPECT_THAT(fixture.Run("ID_ReadRegions"), IsEmpty()) << "no regions: nothing is sent";
  EXPECT_THAT(fixture.view.WhyNot("ID_ReadRegions"), HasSubstr("no regions"));
  fixture.Add(MI, 5, 70);
  fixture.Add(SI, 0, 1);
  fixture.Run("ID_ReadRegions");
  fixture.channel->value = [](std::int32_t address) {
    return address == 66 ? 1U : static_cast<std::uint32_t>(address);
  };
  for (int i = 0; i < 2; ++i) fixture.Run("ID_ReadRegions");  // only what changed is drawn
}

TEST(ReadRegions, FailingAtAnyCallLeavesWhatWasShown) {
  for (int call = 3; call <= 6; ++call) {  // the version, and three regions
    SCOPED_TRACE(call);
    DataViewFixture fixture;
    fixture.Add(MI, 0, 129);
    fixture.Run("ID_ReadRegions");
    fixture.channel->value = [](std::int32_t) { return 9U; };
    fixture.channel->failAt = call - 1;
    fixture.pacer.Sleep(std::chrono::seconds(90));
    fixture.Run("ID_ReadRegions");
    EXPECT_TRUE(fixture.view.Status().loss);
    fixture.channel->failAt = 3;
    fixture.Run("ID_ReadAll");
    fixture.channel->failAt = -1;
    fixture.view.SelectRegions({1, 2});
    fixture.Run("ID_RemoveRegion");
    fixture.Run("ID_WriteRegions", {PromptAnswer::Yes});
    EXPECT_FALSE(fixture.view.Status().loss) << "one region that is written is enough";
  }
}

TEST(ReadRegions, StopAndRefusal) {
  DataViewFixture fixture;
  fixture.Add(MI, 0, 179);
  fixture.channel->during = [&] {
    if (fixture.view.Operands().Text(MI, 0) == "0") fixture.pacer.RequestStop();
  };
  fixture.Run("ID_ReadRegions");
  fixture.channel->during = nullptr;
  fixture.channel->version->osVersion = "2.99";
  fixture.Add(MI, 1000, 1024);
  fixture.Run("ID_ReadRegions");
  fixture.Add(MI, 1100, 1170);  // two regions, told of once
  fixture.Run("ID_ReadRegions", {kOk});
  fixture.Run("ID_OnLine", {kOk});

  fixture.driver.channel = nullptr;
  for (const char* tool : {"ID_ReadRegions", "ID_ReadAll", "ID_WriteAll", "ID_OnLine"}) {
    if (std::string_view(tool) == "ID_WriteAll") fixture.prompts.Press(PromptAnswer::Yes);
    fixture.Run(tool);
  }
  fixture.host.model = "Q50";
  EXPECT_THAT(fixture.Run("ID_ReadRegions"), IsEmpty());
  EXPECT_THAT(fixture.view.WhyNot("ID_ReadRegions"), HasSubstr("Q50"));
}

TEST(ReadRegions, NothingPassesToOrFromAnotherModel) {
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"K220-22-R1", "K450-45", false}, {"K220-22-R1", "Q50-2-R34", false}, {"AurexQ50", "Q50-2-R34", false},
      {"Q50", "K220-22-R1", false},     {"K220-22-R1", "BOOT", true},
  };
  for (const auto& [selected, reported, passes] : rows) {
    SCOPED_TRACE(std::string(selected) + " " + reported);
    DataViewFixture fixture(selected);
    fixture.Add(MI, 0, 1);
    fixture.view.Edit(MI, 0, "1");
    fixture.view.Edit(MI, 1, "1");
    fixture.channel->version->model = reported;
    fixture.pacer.OnDoEvents([&] { fixture.view.Run("ID_OnLine"); });
    for (const char* tool : {"ID_WriteRegions", "ID_WriteAll", "ID_ReadRegions", "ID_ReadAll", "ID_OnLine"}) {
      const bool asks = std::string_view(tool) == "ID_WriteAll";
      const CallLog log = asks ? fixture.Run(tool, {PromptAnswer::Yes}) : fixture.Run(tool);
      const bool hasPassed = std::ranges::any_of(
          log, [](const std::string& call) { return call.starts_with("Read") || call.starts_with("WriteMI"); });
      EXPECT_EQ(hasPassed, passes) << tool;
      EXPECT_EQ(fixture.view.Status().refusal.empty(), passes) << "it can be read whole";
    }
    EXPECT_EQ(fixture.view.Status().refusal.contains("these grids are those of"), !passes);
  }
}

TEST(WriteRegions, NothingIsSentUntilAllIsInRange) {
  for (const OperandTypeCode type : {MI, TimerPreset, CounterPreset, MF}) {
    DataViewFixture fixture;
    fixture.Add(MB, 0, 0);
    fixture.view.Edit(MB, 0, "1");
    fixture.Add(type, 0, 1);
    fixture.view.Edit(type, 0, "1");
    fixture.Run("ID_WriteRegions", {kOk});
  }
}

TEST(WriteRegions, ReadOnlyTypesAreToldOnceAndTheOthersWritten) {
  DataViewFixture fixture;
  fixture.Add(SI, 0, 1);
  fixture.Add(MI, 0, 1);
  fixture.Add(SB, 0, 1);
  fixture.Add(ML, 3, 3);
  fixture.Run("ID_ReadRegions");
  fixture.view.Edit(MI, 1, "-5");
  fixture.view.Edit(ML, 3, "70000");
  fixture.pacer.Sleep(std::chrono::seconds(90));
  fixture.Run("ID_WriteRegions", {kOk});
  fixture.view.SelectRegions({1, 3});
  fixture.Run("ID_RemoveRegion");
  fixture.Run("ID_WriteRegions", {kOk});
}

// Notes the operation that is named.
struct NotedOperation final : ChangeObserver {
  Operation operation;
  std::optional<ChangeEnd> end;

  void BeginOperation(const Operation& begun) override { operation = begun; }
  void EndOperation(const std::optional<ChangeEnd>& ended) override { end = ended; }
  std::expected<void, LinkError> BeforeRequest(const ChangeRequest&) override { return {}; }
  void AfterRequest(const ChangeEnd&) override {}
  std::string Head() const override { return ""; }
};

TEST(WriteRegions, NameTheValuesThatTheControllerToldBefore) {
  DataViewFixture fixture;
  NotedOperation noted;
  fixture.channel->changes = &noted;
  fixture.Add(MI, 5, 6);
  fixture.Run("ID_ReadRegions");
  fixture.Add(ML, 0, 0);  // is not read
  fixture.Add(SI, 0, 0);  // cannot be written
  fixture.view.Edit(MI, 5, "7");
  fixture.view.Edit(ML, 0, "70000");
  fixture.Run("ID_WriteRegions", {kOk});
  EXPECT_EQ(noted.operation.what, "write 3 regions");
  EXPECT_THAT(noted.operation.operands, ElementsAre(ChangedOperands{"MI 5..6", {"5", "6"}, {"7", "6"}},
                                                    ChangedOperands{"ML 0", {""}, {"70000"}}));
}

TEST(WriteRegions, AskBeforeTheyWriteWhatAnEarlierSessionHadRead) {
  DataViewFixture fixture;
  NotedOperation noted;
  fixture.channel->changes = &noted;
  fixture.Add(MI, 0, 2);
  fixture.Run("ID_ReadRegions");
  EXPECT_TRUE(fixture.view.Close());
  fixture.view.Open();
  fixture.view.Edit(MI, 1, "9");
  fixture.Run("ID_WriteRegions", {PromptAnswer::No});
  EXPECT_TRUE(fixture.prompts.Boxes().back().canLose) << "Enter does not write";
  fixture.Run("ID_WriteRegions", {PromptAnswer::Yes});
  EXPECT_THAT(noted.operation.operands, ElementsAre(ChangedOperands{"MI 0..2", {"", "", ""}, {"0", "9", "2"}}))
      << "what stood there before is not known";
  fixture.Run("ID_WriteRegions");  // they are as the controller has them
}

TEST(WriteRegions, SaysHowFarItCameAndKeepsTheMarksOfTheRest) {
  DataViewFixture fixture;
  fixture.Add(MI, 0, 179);
  for (std::int32_t address = 0; address < 180; ++address) fixture.view.Edit(MI, address, "3");
  fixture.channel->failAt = 4;  // the second region
  fixture.Run("ID_WriteRegions");
}

TEST(WriteRegions, AreReadBackAndWhatDiffersIsNamed) {
  struct Case {
    const char* what;
    OperandTypeCode type;
    bool isLying;
    int failAt;
  };
  const Case cases[] = {
      {"lying", MI, true, -1},
      {"no reply", MI, false, 7},
      {"runs", TimerCurrent, false, -1},
      {"write-only", DBI, false, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    DataViewFixture fixture(c.type == DBI ? "AurexQ50" : "K220-22-R1");
    const int last = c.isLying ? 4 : 1;
    fixture.Add(c.type, 0, last);
    for (int address = 0; address <= last; ++address)
      fixture.view.Edit(c.type, address, c.type == TimerCurrent ? "0:0:7.0" : "7");
    fixture.channel->isLying = c.isLying;
    fixture.channel->value = [](std::int32_t address) { return static_cast<std::uint32_t>(address); };
    fixture.channel->failAt = c.failAt;
    fixture.Run("ID_WriteRegions");
    if (c.isLying) fixture.Run("ID_Undo");
  }
}

// ---- on line ----

TEST(OnLine, PassesBackToBackUntilTheToolIsPressedAgain) {
  DataViewFixture fixture;
  fixture.Add(MI, 0, 61);
  int passes = 0;
  fixture.pacer.OnDoEvents([&] {
    ++passes;
    EXPECT_EQ(fixture.view.Status().mode, ViewMode::Online);
    for (const char* tool : {"ID_ReadRegions", "ID_WriteAll", "ID_NewRegions", "ID_LoadRegions", "ID_Copy"}) {
      EXPECT_THAT(fixture.view.WhyNot(tool), HasSubstr("while watching")) << tool;
    }
    EXPECT_EQ(fixture.view.WhyNot("ID_OnLine"), "");
    EXPECT_THAT(fixture.view.EditFault(MI, 61, "5"), HasSubstr("being watched"));
    EXPECT_EQ(fixture.view.EditFault(MI, 62, "5"), "");
    fixture.home.Put("a.csv", ",0,1\r\nMI,7,8\r\nML,7,8\r\n");
    if (passes == 1) fixture.prompts.Choose(Utf8FromPath(fixture.home.Path() / "a.csv"));
    if (passes == 1) fixture.view.Run("ID_ImportFromCSV");
    EXPECT_TRUE(fixture.view.SetFormat(0, passes == 1 ? FormatCode::Hex : FormatCode::Decimal));
    if (passes < 3) return;
    fixture.view.Run("ID_OnLine");
  });
  fixture.Run("ID_OnLine");
  EXPECT_EQ(fixture.view.Status().passes, 3U);
}

TEST(OnLine, MarksValuesThatChangeAndFadesTheMarks) {
  DataViewFixture fixture;
  fixture.Add(MI, 0, 1);
  fixture.channel->value = [&](std::int32_t address) { return address == 1 ? fixture.view.Status().passes < 2 : 7U; };
  std::vector<double> marks;
  fixture.pacer.OnDoEvents([&] {
    marks.push_back(fixture.view.ChangeMark(MI, 1));
    EXPECT_EQ(fixture.view.ChangeMark(MI, 0), 0.0);
    fixture.pacer.Sleep(std::chrono::seconds(1));
    if (marks.size() == 5) fixture.view.Run("ID_OnLine");
  });
  fixture.Run("ID_OnLine");
  EXPECT_THAT(marks, ElementsAre(0.0, 0.0, 1.0, 0.5, 0.0)) << "the first read is no change";
}

TEST(OnLine, TellsWhatItCannotRead) {
  DataViewFixture fixture("AurexQ50");
  fixture.Add(MI, 0, 1);
  fixture.Add(DBI, 0, 9);
  std::string said;
  fixture.pacer.OnDoEvents([&] {
    said = fixture.view.Status().message;
    fixture.view.Run("ID_OnLine");
  });
  fixture.Run("ID_OnLine");
  EXPECT_EQ(said, "Watching. 1 region cannot be read from a controller of the model AurexQ50.");
  EXPECT_FALSE(fixture.view.SetFormat(2, FormatCode::Decimal)) << "there are two regions";
  EXPECT_FALSE(fixture.view.SetFormat(0, FormatCode::None)) << "no format";
}

TEST(OnLine, GoesOnByItselfWithTheSameControllerOnly) {
  DataViewFixture fixture;
  fixture.Add(MI, 0, 1);
  fixture.channel->failAt = 5;
  fixture.Run("ID_OnLine");
  ASSERT_TRUE(fixture.view.Status().loss);
  EXPECT_THAT(fixture.view.Status().loss->Text(), HasSubstr("no reply"));
  EXPECT_EQ(fixture.view.Status().loss->serialNumber, 1001U);
  EXPECT_TRUE(fixture.view.Operands().IsOld(MI, 0)) << "nobody knows the values any more";
  EXPECT_FALSE(fixture.view.IsTryDue()) << "not unless the user wants it";
  fixture.view.SetWatchesAgain(true);
  for (const int pause : {0, 2, 4, 8, 16, 30, 30}) {
    if (pause > 0) fixture.pacer.Sleep(std::chrono::seconds(pause) - std::chrono::milliseconds(1));
    EXPECT_EQ(fixture.view.IsTryDue(), pause == 0) << pause;
    fixture.pacer.Sleep(std::chrono::milliseconds(1));
    ASSERT_TRUE(fixture.view.IsTryDue()) << pause;
    fixture.channel->failAt = 2;
    fixture.Taken();
    fixture.view.WatchAgain(true);
    EXPECT_THAT(fixture.Taken(), testing::Not(Contains("ReadOperandList @1: 0,3,0,2,0")));
  }
  fixture.channel->failAt = 2;
  fixture.channel->during = [&] { fixture.pacer.RequestStop(); };
  fixture.view.WatchAgain(true);
  EXPECT_FALSE(fixture.view.WatchesAgain()) << "a try that the user has stopped is the last one";
  fixture.channel->during = nullptr;
  fixture.view.SetWatchesAgain(true);
  fixture.channel->failAt = -1;
  fixture.channel->info->serialNumber = 1002;
  fixture.view.WatchAgain(true);
  EXPECT_THAT(fixture.Taken(), testing::Not(Contains("ReadOperandList @1: 0,3,0,2,0"))) << "another one is not read";
  EXPECT_THAT(fixture.view.Status().loss->Text(), HasSubstr("serial number is 1002, that of the watched one 1001"));
  EXPECT_THAT(fixture.view.WhyNotByItself(), HasSubstr("Another controller"));
  fixture.pacer.Sleep(std::chrono::hours(1));
  EXPECT_FALSE(fixture.view.IsTryDue());

  fixture.driver.tied = 1001;  // by the link's settings: it would only be refused again
  EXPECT_FALSE(fixture.view.CanTakeOther());
  fixture.view.TakeOtherController();
  EXPECT_TRUE(fixture.view.IsOtherController());
  fixture.driver.tied.reset();
  EXPECT_TRUE(fixture.view.CanTakeOther());

  std::string said;
  fixture.pacer.OnDoEvents([&] {
    said = fixture.view.Status().message;
    EXPECT_FALSE(fixture.view.Status().loss);
    EXPECT_FALSE(fixture.view.Operands().IsOld(MI, 0));
    fixture.view.Run("ID_OnLine");
  });
  fixture.pacer.Sleep(std::chrono::seconds(1));
  fixture.Taken();
  fixture.view.TakeOtherController();  // the user has seen what stands there
  EXPECT_THAT(fixture.Taken(), testing::Contains("Driver CloseDriver")) << "the link would refuse it for good";
  EXPECT_FALSE(fixture.view.IsOtherController());
  EXPECT_THAT(said, HasSubstr("another controller than before: its serial number is 1002, not 1001"));

  fixture.channel->info.reset();
  for (const LinkErrorCode code : {LinkErrorCode::Refused, LinkErrorCode::NotSupported, LinkErrorCode::NoReply}) {
    said.clear();
    fixture.channel->error.code = code;
    fixture.Run("ID_OnLine");
    EXPECT_EQ(said.empty(), code == LinkErrorCode::NoReply) << "one that does not tell its number can be watched";
    fixture.view.WatchAgain(true);
    EXPECT_THAT(fixture.Taken(), testing::Not(Contains("ReadOperandList @1: 0,3,0,2,0"))) << "but not found again";
  }
}

}  // namespace
}  // namespace kv::test
