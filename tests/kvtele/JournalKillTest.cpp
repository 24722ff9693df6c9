#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "desktop/VirtualPacer.h"
#include "desktop/console/ConsolePacer.h"
#include "journal/JournalList.h"
#include "tests/support/Environment.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace kvtest {
namespace {

using Arguments = std::vector<std::string>;

// The program is killed at random moments of writes and restores. KV_KILLS=1000 in the environment does it so often,
// KV_SEED=N in the same way again.
struct JournalKill : testing::Test {
  kv::TemporaryFolder home;
  kv::VirtualPacer pacer;
  KvsimProcess kvsim{{"--model", "K220-22-R1", "--tcp", "0"}};
  std::string link = "tcp:127.0.0.1:" + std::to_string(kvsim.Port());
  std::string clone = (home.Path() / "plc.kdf").string();

  JournalKill() {
    std::filesystem::create_directories(home.Path() / "Sessions" / "Default");
    SetVariable(kUserState, home.Path().string());
  }
  std::unique_ptr<ProgramProcess> Start(Arguments arguments) const {
    arguments.insert(arguments.begin(), {"--home", home.Path().string(), "--link", link, "--yes"});
    return std::make_unique<ProgramProcess>(KVTELE_PROGRAM, std::move(arguments));
  }
  std::string Output(Arguments arguments) const {
    const auto program = Start(std::move(arguments));
    EXPECT_EQ(program->End(), 0) << program->Complaint();
    return program->Output();
  }
  void KillAfter(int milliseconds, Arguments arguments) const {
    const auto program = Start(std::move(arguments));
    kv::ConsolePacer().Sleep(std::chrono::milliseconds(milliseconds));
    program->End(SIGKILL);
  }
  [[nodiscard]] kv::JournalPlaces Places() const {
    return {home.Path() / "Sessions" / "Default", kv::UserStateFolder()};
  }
  // How the last operation that writes `value` ended; nothing without a record of it.
  [[nodiscard]] std::optional<std::string> RecordOf(const std::string& value) {
    std::optional<std::string> result;
    for (const auto& entry : kv::ListJournal(Places(), kv::SystemJournalDisk(), pacer, {.operand = "MI 0"}).entries) {
      if (entry.record.operands.front().after.front() == value) result = entry.end ? entry.end->result : "";
    }
    return result;
  }
};

TEST_F(JournalKill, LeavesARecordOfEveryChangeThatWasMade) {
  Output({"clone", "create", clone, "--password", "pw", "--no-stop"});
  const unsigned seed = NumberFromEnvironment("KV_SEED", 1);
  std::minstd_rand random(seed);
  constexpr int kLongest = 120;  // ms, which most runs take less than
  int executed = 0;
  int cut = 0;
  for (unsigned i = 1; i <= NumberFromEnvironment("KV_KILLS", 12); ++i) {
    SCOPED_TRACE("kill " + std::to_string(i) + ", seed " + std::to_string(seed));
    const int moment = static_cast<int>(random() % kLongest);
    if (i % 4 == 0) {
      KillAfter(moment, {"clone", "restore", clone, "--end-load"});
      continue;
    }
    const std::string value = std::to_string(i);
    KillAfter(moment, {"write", "MI", "0", value});
    const bool isExecuted = Output({"read", "MI", "0"}) == "0\t" + value + "\n";
    const auto recorded = RecordOf(value);
    EXPECT_TRUE(!isExecuted || recorded) << "a change without a record";
    EXPECT_TRUE(isExecuted || recorded != "done") << "a record without its change";
    executed += isExecuted ? 1 : 0;
    cut += recorded == "" ? 1 : 0;
    const kv::JournalCheck check = kv::CheckJournal(Places(), kv::SystemJournalDisk(), pacer);
    ASSERT_TRUE(check.IsSound()) << kv::VerdictText(check) << "\n" << kv::CheckLines(check).front();
  }
  RecordProperty("executed", executed);
  RecordProperty("begunAndNotEnded", cut);
  std::printf("%d writes were executed, %d records have no end\n", executed, cut);
}

}  // namespace
}  // namespace kvtest
