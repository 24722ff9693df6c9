// Imports from a simulated controller: what ends up in the file is one controller's own, or the file is as it was; and
// the controller's display is out of SYSTEM mode again.

#include <gmock/gmock.h>

#include "KvTele2/cache/CacheImport.h"
#include "base/FilePlatform.h"
#include "tests/cache/ChangingController.h"
#include "tests/driver/Fixture.h"
#include "tests/support/FullDisk.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::cache {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;

sim::SimulatorOptions Like(const std::string& model, std::uint32_t serialNumber = 77, const std::string& os = {}) {
  sim::SimulatorOptions options;
  options.model = model;
  options.osVersion = os;
  options.serialNumber = serialNumber;
  options.baud = 115200;
  return options;
}

struct Bench : CacheImportWindow {
  explicit Bench(const sim::SimulatorOptions& options = Like("K670")) : plant("K670") {
    PutIn(options);
    channel = std::make_unique<ChannelImpl>(
        pacer, std::make_shared<Trace>(), SerialSettings(),
        [this](const LinkSettings&) { return std::make_unique<PlantPort>(plant, pacer); }, [](const std::string&) {});
    EXPECT_TRUE(channel->Open());
  }
  // Another controller at the end of the cable.
  void PutIn(const sim::SimulatorOptions& options) {
    auto changing = std::make_unique<ChangingController>(sim::Controller::Create(options).value());
    controller = changing.get();
    gone.push_back(std::move(plant.simulated));
    plant.simulated = sim::SimulatedController::CreateAround(std::move(changing), options).value();
    ++plant.cables;
  }

  void Event_Step(CacheStep step, CacheStepState state) override {
    constexpr const char* kStates[] = {"runs", "done", "failed"};
    steps.push_back((step == CacheStep::Font ? "fonts " : "images ") + std::string(kStates[static_cast<int>(state)]));
  }
  void Event_Progress(const CacheProgress& progress) override {
    EXPECT_LE(progress.done, progress.total);
    EXPECT_TRUE(progress.done == 0 || controller->isSystemMode) << "bytes come in SYSTEM mode alone";
    if (++pieces == stopAt) pacer.RequestStop();
  }

  CacheOutcome Import() {
    steps.clear();
    question.clear();
    controller->requests.clear();
    import = std::make_unique<CacheImport>(order, pacer, pacer, *this);
    auto plan = import->Prepare(channel.get());
    if (!plan) return plan.error();
    question = plan->question;
    amount = ReadingText(*plan, plan->BytesToRead());
    if (beforeRun) beforeRun();
    return import->Run(*channel);
  }
  // Whether the file holds what the controller has now, byte for byte.
  [[nodiscard]] static bool Holds(const CacheContent& content, const ChangingController::Parts& parts) {
    for (const CacheStep kind : {CacheStep::Font, CacheStep::Image}) {
      const auto& wanted = parts.at(static_cast<int>(kind));
      if (!content.Part(kind) || content.Part(kind)->size() != wanted.size()) return false;
      for (std::size_t i = 0; i < wanted.size(); ++i) {
        const CachedResource& had = (*content.Part(kind))[i];
        if (had.entry.id != wanted[i].id || had.bytes != wanted[i].bytes) return false;
      }
    }
    return true;
  }
  [[nodiscard]] bool IsControllersOwn() const { return Holds(ReadCacheFile(order.file).value(), controller->parts); }

  VirtualPacer pacer;
  Plant plant;
  std::vector<std::unique_ptr<sim::SimulatedController>> gone;
  ChangingController* controller = nullptr;
  std::unique_ptr<ChannelImpl> channel;
  TemporaryFolder folder;
  CacheImportOrder order{.file = folder.Path() / "plant.ktc",
                         .workingFile = folder.Path() / "tmpfile.ktc",
                         .emptyCache = fs::path(KV_TEST_DATA) / "../runtime/TP_Temp/TP_Temp_1"};
  std::unique_ptr<CacheImport> import;
  std::function<void()> beforeRun;
  std::vector<std::string> steps;
  std::string question;
  std::string amount;
  int pieces = 0;
  int stopAt = 0;
};

TEST(CacheImport, ReadsEverythingOnceAndThenWhatHasChanged) {
  Bench bench;
  const CacheOutcome first = bench.Import();
  ASSERT_EQ(first.end, CacheEnd::Done) << first.reason;
  EXPECT_EQ(first.text, "plant.ktc was successfully created from the PLC");
  EXPECT_EQ(bench.question, "");
  EXPECT_EQ(bench.amount, "14 KiB of fonts and images, about 2 s on this link");
  EXPECT_THAT(bench.steps, ElementsAre("fonts runs", "fonts done", "images runs", "images done"));
  EXPECT_EQ(bench.import->Results().size(), 5U);
  EXPECT_EQ(bench.import->Results().front().fault.empty(), false) << "\"sans\" is no font, and kept all the same";
  EXPECT_EQ(bench.controller->Count(260), 2);
  EXPECT_FALSE(bench.controller->isSystemMode);
  auto content = ReadCacheFile(bench.order.file).value();
  EXPECT_TRUE(bench.IsControllersOwn());
  EXPECT_EQ(content.owner->serialNumber, 77U);
  EXPECT_EQ(content, bench.import->Content());
  EXPECT_EQ(content, ReadCacheFile(bench.order.workingFile));

  EXPECT_EQ(bench.Import().end, CacheEnd::Done);
  EXPECT_EQ(bench.controller->Count(259) + bench.controller->Count(260), 0) << "nothing is read, nothing is hidden";
  EXPECT_TRUE(bench.IsControllersOwn());

  bench.channel->GetDownloadEngine()->SetMessage({.opCode = 260, .param1 = 1});
  ASSERT_TRUE(bench.channel->GetDownloadEngine()->Send());
  EXPECT_EQ(bench.Import().end, CacheEnd::Done);
  EXPECT_FALSE(bench.controller->isSystemMode) << "left by an import that was killed";

  bench.controller->parts[2][1].bytes = "gauge";
  bench.controller->parts[2][2].name = "renamed";
  bench.controller->parts[1].pop_back();
  EXPECT_EQ(bench.Import().end, CacheEnd::Done);
  EXPECT_EQ(bench.controller->Count(259), 1);
  content = ReadCacheFile(bench.order.file).value();
  EXPECT_TRUE(bench.IsControllersOwn());
  EXPECT_EQ(content.images->back().entry.name, "renamed");

  bench.order.readsAll = true;
  bench.order.fonts = false;
  bench.controller->parts[1].clear();
  EXPECT_EQ(bench.Import().end, CacheEnd::Done);
  EXPECT_EQ(bench.controller->Count(259), 4) << "9000 bytes in three pieces, and one";
  EXPECT_EQ(ReadCacheFile(bench.order.file)->fonts, content.fonts) << "not imported now, so kept";
}

TEST(CacheImport, TrustsNoCheckAlone) {
  Bench bench;
  ASSERT_EQ(bench.Import().end, CacheEnd::Done);
  const std::string before = TemporaryFolder::Content(bench.order.file);
  bench.controller->parts[2][0].tooLong = 3;  // another length, the CRC-32 of the file's bytes
  const CacheOutcome outcome = bench.Import();
  EXPECT_EQ(outcome.cause, CacheCause::Changed) << outcome.reason;
  EXPECT_GT(bench.controller->Count(259), 0) << "read again";
  EXPECT_EQ(TemporaryFolder::Content(bench.order.file), before);
}

// What happens at the request of each number in turn, until an import is over before it comes to that.
struct Trouble {
  const char* name;
  void (*happens)(Bench& bench);
  bool mayBeDone;
};

TEST(CacheImport, LeavesTheFileAsItWasOrAsTheControllerIs) {
  const Trouble troubles[] = {
      {"the link breaks",
       [](Bench& bench) {
         bench.plant.isCut = true;
         bench.plant.isReachable = false;
       },
       false},
      {"the link breaks and comes back", [](Bench& bench) { bench.plant.isCut = true; }, true},
      {"another controller is put in",
       [](Bench& bench) {
         bench.plant.isCut = true;
         bench.PutIn(Like("K670", 78));
       },
       false},
      {"an image changes", [](Bench& bench) { bench.controller->parts[2][0].bytes[4100] = 'q'; }, true},
      {"a font goes", [](Bench& bench) { bench.controller->parts[1].pop_back(); }, true},
      {"two images change places",
       [](Bench& bench) { std::swap(bench.controller->parts[2][0].id, bench.controller->parts[2][1].id); }, true},
      {"the user stops", [](Bench& bench) { bench.pacer.RequestStop(); }, false},
  };
  for (const Trouble& trouble : troubles) {
    bool isOver = false;
    int done = 0;
    for (int at = 1; !isOver; ++at) {
      SCOPED_TRACE(trouble.name + std::string(" at request ") + std::to_string(at));
      ASSERT_LT(at, 100);
      Bench bench;
      SaveCacheFile(bench.order.file, {.owner = CacheOwner{.version = {.model = "old"}}}).value();
      const std::string before = TemporaryFolder::Content(bench.order.file);
      isOver = true;
      ChangingController::Parts wanted;
      bench.controller->onRequest = [&, was = bench.controller](int number) {
        // When the display leaves SYSTEM mode everything has been read and compared.
        if (number <= at) wanted = was->parts;
        if (number != at || (was->requests.back() == 260 && was->isSystemMode)) return;
        isOver = false;
        trouble.happens(bench);
        wanted = was->parts;
      };
      const CacheOutcome outcome = bench.Import();
      EXPECT_FALSE(outcome.text.empty());
      if (outcome.end == CacheEnd::Done) {
        ++done;
        EXPECT_TRUE(isOver || trouble.mayBeDone);
        EXPECT_TRUE(Bench::Holds(ReadCacheFile(bench.order.file).value(), wanted));
      } else {
        EXPECT_EQ(TemporaryFolder::Content(bench.order.file), before) << outcome.reason;
        EXPECT_TRUE(outcome.end == CacheEnd::Stopped || !outcome.reason.empty());
        EXPECT_NE(bench.steps.empty() ? "" : bench.steps.back(), "images runs");
      }
      EXPECT_EQ(outcome.end == CacheEnd::Stopped, trouble.name == std::string("the user stops") && !isOver);
      const bool isLeft = bench.gone.size() == 1 && bench.controller->isSystemMode;
      EXPECT_TRUE(!isLeft || !bench.import->Warnings().empty()) << "SYSTEM mode stays, and nobody is told";
      EXPECT_LE(bench.folder.EntryCount(), 2) << "nothing but the file and the working file";
    }
    EXPECT_GE(done, 1);
  }
}

TEST(CacheImport, GivesUpOnAControllerThatKeepsChanging) {
  Bench bench;
  bench.controller->onRequest = [&](int number) {
    bench.controller->parts[2][0].bytes[0] = static_cast<char>('a' + number % 26);
  };
  const CacheOutcome outcome = bench.Import();
  EXPECT_EQ(outcome.cause, CacheCause::Changed);
  EXPECT_THAT(outcome.reason, HasSubstr("pump"));
  EXPECT_EQ(bench.steps.back(), "images failed");
  EXPECT_FALSE(bench.controller->isSystemMode);
  EXPECT_FALSE(fs::exists(bench.order.file));
}

TEST(CacheImport, ComesThroughABadLine) {
  Bench bench;
  bench.plant.UseFaults({"damage:every=3"});
  const CacheOutcome outcome = bench.Import();
  ASSERT_EQ(outcome.end, CacheEnd::Done) << outcome.reason;
  EXPECT_TRUE(bench.IsControllersOwn());
}

struct Misfit {
  const char* model;
  const char* os;
  CacheCause cause;
  const char* text;
};

TEST(CacheImport, RefusesWhatItCannotImportFromBeforeItTouchesAFile) {
  const Misfit rows[] = {
      {"K220", "", CacheCause::NotColour,
       "The connected Hardware is not a Aurex Color model\r\nThis operation can not be completed!"},
      {"Q51", "", CacheCause::NotColour,
       "The connected Hardware is not a Aurex Color model\r\nThis operation can not be completed!"},
      {"K670", "1.0", CacheCause::OldOs,
       "The O/S currently installed in this controller is too old.\r\n"
       "Minimum required Operating Systems (O/S) version is 1.1"},
      {"K670", "1.1", CacheCause::None, ""},
      {"K670", "2.0", CacheCause::None, ""},
  };
  for (const Misfit& row : rows) {
    Bench bench(Like(row.model, 77, row.os));
    const CacheOutcome outcome = bench.Import();
    EXPECT_EQ(outcome.cause, row.cause) << row.model << " " << row.os << ": " << outcome.reason;
    if (row.cause == CacheCause::None) continue;
    EXPECT_EQ(outcome.text, row.text);
    EXPECT_EQ(bench.folder.EntryCount(), 0);
  }
  Bench bench;
  bench.plant.isSilent = true;
  EXPECT_EQ(bench.Import().text, "Could Not Connect To PLC.\r\nPlease Check Cables and Try Again!");
  EXPECT_EQ(bench.import->Prepare(nullptr).error().cause, CacheCause::NoConnection);
  bench.order.fonts = bench.order.images = false;
  EXPECT_EQ(bench.Import().cause, CacheCause::NothingWanted);
}

TEST(CacheImport, AsksBeforeSomethingIsLost) {
  Bench bench;
  ASSERT_EQ(bench.Import().end, CacheEnd::Done);
  CacheContent content = ReadCacheFile(bench.order.file).value();
  const std::string whole = TemporaryFolder::Content(bench.order.file);
  const auto ask = [&](const std::string& bytes) {
    bench.folder.Put("plant.ktc", bytes);
    CacheImport import(bench.order, bench.pacer, bench.pacer, bench);
    return import.Prepare(bench.channel.get()).value();
  };
  EXPECT_EQ(ask(whole).question, "");
  EXPECT_EQ(ask(CacheBytes({}).value()).question, "");
  const CacheImportPlan repair = ask(whole.substr(0, whole.size() - 4096));
  EXPECT_THAT(repair.question, HasSubstr("is damaged. Repair it"));
  EXPECT_GT(repair.fonts.kept + repair.images.kept, 0U);
  EXPECT_GT(repair.BytesToRead(), 0U);
  EXPECT_EQ(bench.import->Run(*bench.channel).end, CacheEnd::Failed) << "somebody else's file has come";
  EXPECT_THAT(ask("what is this").question, HasSubstr("is no colour cache file. Replace it"));
  std::string newer = whole;
  newer[63] = 9;
  EXPECT_THAT(ask(newer).question, HasSubstr("made by a newer version"));
  content.owner->serialNumber = 4711;
  const std::string model = std::exchange(content.owner->version.model, "K450-45");
  EXPECT_EQ(ask(CacheBytes(content).value()).images.kept, 0U) << "nothing of another model is kept";
  content.owner->version.model = model;
  bench.controller->parts[2][1].bytes = "gauge";
  const CacheImportPlan other = ask(CacheBytes(content).value());
  EXPECT_THAT(other.question, testing::AllOf(HasSubstr("serial number 4711"), HasSubstr("serial number 77")));
  EXPECT_EQ(other.images.bytesToRead, 5U) << "of a machine that is built alike only what differs is read";
  const fs::path beside = bench.folder.Path() / ("plant.ktc." + std::to_string(ProcessNumber()) + ".part");
  fs::create_directories(beside / "in the way");
  EXPECT_THAT(bench.Import().reason, HasSubstr("cannot be written"));
  EXPECT_EQ(bench.question, "") << "which is known before anybody is asked";
  fs::remove_all(beside);
  EXPECT_EQ(bench.Import().end, CacheEnd::Done);
  EXPECT_TRUE(bench.IsControllersOwn());
  EXPECT_EQ(ReadCacheFile(bench.order.file)->owner->serialNumber, 77U);
}

TEST(CacheImport, SaysWhereAFileCannotBeWritten) {
  Bench bench;
  bench.order.file = bench.folder.Path() / "no" / "plant.ktc";
  CacheOutcome outcome = bench.Import();
  EXPECT_EQ(outcome.cause, CacheCause::File);
  EXPECT_THAT(outcome.reason, HasSubstr("check that its folder exists"));
  EXPECT_EQ(bench.controller->Count(260), 0) << "known before anything is read";
  bench.order.file = bench.folder.Path() / "plant.ktc";
  bench.beforeRun = [&] { bench.folder.Put("plant.ktc", "somebody else's"); };
  EXPECT_THAT(bench.Import().reason, HasSubstr("somebody else has put another file there"));
  EXPECT_EQ(TemporaryFolder::Content(bench.order.file), "somebody else's");
  bench.beforeRun = {};
  bench.order.emptyCache = bench.folder.Put("TP_Temp_1", "no cache");
  EXPECT_THAT(bench.Import().reason, HasSubstr("install the program again"));
  bench.order.emptyCache = bench.folder.Put("TP_Temp_1", CacheBytes({}).value());
  fs::permissions(bench.order.emptyCache, fs::perms::owner_read);
  EXPECT_EQ(bench.Import().end, CacheEnd::Done) << "a read-only empty cache gives a working file all the same";
  EXPECT_EQ(bench.Import().end, CacheEnd::Done) << "which is replaced";
#ifndef _WIN32
  bench.controller->parts[2][0].bytes.assign(60000, 'x');
  const std::string before = TemporaryFolder::Content(bench.order.file);
  {
    const test::FullDisk full;
    outcome = bench.Import();
  }
  EXPECT_EQ(outcome.cause, CacheCause::File);
  EXPECT_EQ(outcome.text, "Errors occurred during the creation of the plant.ktc file");
  EXPECT_EQ(TemporaryFolder::Content(bench.order.file), before);
#endif
}

}  // namespace
}  // namespace kv::cache
