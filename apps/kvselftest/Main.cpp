// kvselftest: the tests of the engines, for the computers of users. Runs them and writes a report that can be sent.

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/AtomicFile.h"
#include "base/DateText.h"
#include "base/PathText.h"
#include "base/ProgramFolders.h"
#include "base/ProgramVersion.h"
#include "base/Texts.h"
#include "desktop/PacerWallClock.h"
#include "desktop/SystemName.h"
#include "desktop/console/ConsoleProgram.h"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kUsage =
    "kvselftest [--report FILE]\n"
    "Runs the tests of the engines on simulated controllers, and writes a report that can be sent.\n"
    "No session is touched, and it connects to nothing but itself. Ends with 0 when all tests passed.\n";

std::string CountedTests(int count) {
  return kv::Counted(static_cast<std::uint64_t>(count), "test");
}

// Gathers the report while the tests run.
class Report : public testing::EmptyTestEventListener {
 public:
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (result.failed()) mMessages += Where(result) + "\n" + Indented(result.message());
  }
  void OnTestEnd(const testing::TestInfo& test) override {
    if (test.result()->Failed()) {
      mFailures += "\n" + std::string(test.test_suite_name()) + "." + test.name() + "\n" + mMessages;
    }
    mMessages.clear();
  }
  void OnTestSuiteEnd(const testing::TestSuite& suite) override {
    const int failed = suite.failed_test_count();
    std::ostringstream line;
    line << (failed == 0 ? "ok      " : "FAILED  ") << suite.name() << ": " << CountedTests(suite.test_to_run_count())
         << ", " << suite.elapsed_time() << " ms\n";
    mSuites += line.str();
    std::cout << line.str() << std::flush;
  }

  [[nodiscard]] std::string Text() const {
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    const auto now = kv::PacerWallClock().LocalTime();
    std::ostringstream text;
    text << "Telepanel self-test report\nkvselftest " << kv::ProgramVersion() << ", " << kv::DateText(now) << " "
         << kv::TimeOfDayText(now) << "\n"
         << kv::SystemName() << "\n\n"
         << CountedTests(all.test_to_run_count()) << ", " << all.failed_test_count() << " failed, "
         << all.skipped_test_count() << " skipped, " << all.elapsed_time() << " ms\n\n"
         << mSuites << mFailures;
    return text.str();
  }

 private:
  // The folder of the sources is that of the computer on which the program was built.
  static std::string Where(const testing::TestPartResult& result) {
    const std::string file = result.file_name() == nullptr ? "" : result.file_name();
    const std::size_t tests = file.rfind("/tests/");
    return "  " + (tests == std::string::npos ? file : file.substr(tests + 1)) + ":" +
           std::to_string(result.line_number());
  }
  static std::string Indented(const std::string& message) {
    std::string text;
    std::istringstream lines(message);
    for (std::string line; std::getline(lines, line);) text += "    " + line + "\n";
    return text;
  }

  std::string mMessages;  // of the test that runs
  std::string mSuites;
  std::string mFailures;
};

// In the home of the programs, where a user finds it; here where they have none.
fs::path UsualReportFile() {
  const auto folders = kv::FindProgramFolders(kv::PlacesOfProgram(), {});
  std::error_code ignored;
  return (folders ? folders->paths.Home() : fs::current_path(ignored)) / "kvselftest-report.txt";
}

// The tests with our report in the place of GoogleTest's own; its text.
std::string RunTests() {
  testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  auto* report = new Report;
  listeners.Append(report);                              // which owns it
  [[maybe_unused]] const int verdict = RUN_ALL_TESTS();  // the report has it
  return report->Text();
}

// Whether it was written.
bool Deliver(const std::string& report, const fs::path& file) {
  if (const auto saved = kv::SaveAtomically(file, report); !saved) {
    std::cout << report << "\nThe report could not be written: " << saved.error().Text() << "\n";
    return false;
  }
  std::cout << "\n" << report.substr(0, report.find("\n\n", report.find("\n\n") + 2)) << "\n";
  std::cout << "\nThe report: " << kv::Utf8FromPath(file) << "\n";
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const kv::ConsoleSetup setup;
  testing::InitGoogleTest(&argc, argv);
  std::vector<std::string> arguments = kv::Utf8Arguments(argc, argv);
  // A test of how a program ends starts this one anew on Windows, with arguments of the tests' library.
  std::erase_if(arguments, [](const std::string& argument) { return argument.starts_with("--gtest_"); });
  const bool isNamed = arguments.size() == 2 && arguments[0] == "--report";
  if (!arguments.empty() && !isNamed) {
    std::cout << kUsage;
    return arguments[0] == "--help" ? 0 : 2;
  }
  const std::string report = RunTests();
  const bool isDelivered = Deliver(report, isNamed ? kv::PathFromUtf8(arguments[1]) : UsualReportFile());
  return isDelivered && testing::UnitTest::GetInstance()->Passed() ? 0 : 1;
}
