// Sessions at the windows as they were looked at: tests/host_ui/steps. Who has changed a window renews the files with
// KV_RENEW_LOOKS=1 in the environment, and reads their difference.
//
// "## MODEL" begins a session with the program on a simulated controller, "% NAME TEXT" puts a file into its folder,
// "> ..." is a step, and what follows is what it has changed.

#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "tests/download/Samples.h"
#include "tests/host_ui/WindowFixture.h"
#include "tests/steps_ui/WindowSteps.h"
#include "tests/support/Recorded.h"

namespace kv::test {
namespace {

struct WindowStepsTest : WindowFixture, testing::WithParamInterface<const char*> {};

// One session: its heading, its files, its steps.
struct Session {
  std::vector<std::string> head;
  std::vector<std::string> steps;
};

std::vector<Session> SessionsOf(const std::string& written) {
  std::vector<Session> sessions;
  std::istringstream lines(written);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("## ")) sessions.emplace_back();
    if (line.starts_with("## ") || line.starts_with("% ")) sessions.back().head.push_back(line);
    if (line.starts_with("> ")) sessions.back().steps.push_back(line);
  }
  return sessions;
}

#ifdef _WIN32
// Each step with what it has changed in any order. Colours of letters and frames are the system's, and so is what has
// the keys behind a box or an editor: with them a cell becomes current.
std::string OnEverySystem(const std::string& steps) {
  std::string all;
  std::multiset<std::string> changes;
  std::istringstream lines(ToldHere(steps) + "> ");
  for (std::string line; std::getline(lines, line);) {
    line = std::regex_replace(line, std::regex("no control has the keys,"), "the keys go to");
    if (std::regex_search(line, std::regex("^  (#|[-+] (at \\d|@))"))) continue;
    const bool isChange = line.starts_with("  - ") || line.starts_with("  + ");
    if (line.starts_with("> ")) {
      for (const std::string& change : std::exchange(changes, {})) all += change + "\n";
    }
    if (!isChange) {
      all += line + "\n";
      continue;
    }
    std::string opposite = line;
    opposite[2] = line[2] == '-' ? '+' : '-';
    const auto moved = changes.find(opposite);
    moved == changes.end() ? void(changes.insert(line)) : void(changes.erase(moved));
  }
  return all;
}
#else
const std::string& OnEverySystem(const std::string& steps) {
  return steps;
}
#endif

TEST_P(WindowStepsTest, EachStepChangesWhatItDid) {
  const auto file = std::filesystem::path(KV_TEST_DATA) / "host_ui" / "steps" / (std::string(GetParam()) + ".txt");
  const std::string written = TemporaryFolder::Content(file);
  ASSERT_NE(written, "");
  std::string again;
  PutDownloadFiles(home.Path());
  home.PutCopy("Templates", KV_TEST_DATA "/../runtime/Templates");
  home.PutCopy("help/pages", KV_HELP_FOLDER "/pages");
  for (const Session& session : SessionsOf(written)) {
    PutLink("Transport=sim\r\nModel=" + session.head.front().substr(3) + "\r\n");
    for (const std::string& line : session.head) {
      again += (again.empty() || line.starts_with("% ") ? "" : "\n") + line + "\n";
      const std::size_t end = std::min(line.find(' ', 2), line.size());
      const QString content = QString::fromStdString(line.substr(std::min(end + 1, line.size())));
      if (line.starts_with("% "))
        PutFile(home.Path() / line.substr(2, end - 2),
                QString(content).replace("\\r", "\r").replace("\\n", "\n").replace("\\t", "\t").toStdString());
    }
    Run([&](QMainWindow&) { again += WindowSteps(home, session.steps).Do(); });
  }
  if (qEnvironmentVariableIsSet("KV_RENEW_LOOKS") && !HasFailure()) std::ofstream(file, std::ios::binary) << again;
  test::ExpectSameLines(OnEverySystem(again), OnEverySystem(written), "> ");
}

INSTANTIATE_TEST_SUITE_P(Windows, WindowStepsTest,
                         testing::Values("cloner", "downloader", "help", "importing", "link", "main", "operands",
                                         "menus", "panel", "places"),
                         [](const auto& made) { return std::string(made.param); });

}  // namespace
}  // namespace kv::test
