// What kvtele prints and returns, to the letter: each file in tests/kvtele/transcripts is a session at a terminal. Who
// has changed a text renews the files with KV_RENEW_TRANSCRIPTS=1 in the environment, and reads their difference.
//
// "## ..." begins a session with new controllers, "% WORD TEXT" prepares something, "$ ..." is a command line. What
// follows is what came of it: "! ..." stood on standard error, "= N" is the exit code where it is not 0. The words of
// the parser's library are left out, which change with its version. "$ cat NAME" shows a file, "$ ls NAME" what is in a
// folder, HEAD in a command is the head that was told behind three records, "$ trace WORD" what passed on the line
// during the command before, from the first line with that word on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

#include "KvTele2/PagesFile.h"
#include "base/PathText.h"
#include "base/ProgramVersion.h"
#include "tests/download/Samples.h"
#include "tests/kvtele/CommandFixture.h"
#include "tests/support/FileRights.h"
#include "tests/support/PortTo.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/Recorded.h"

namespace kv::test {
namespace {

// A file's content as a transcript writes it.
std::string Unescaped(std::string text) {
  for (const auto& [written, meant] : {std::pair("\\r", "\r"), {"\\n", "\n"}, {"\\t", "\t"}, {"\\0", "\xFF"}})
    text = Replaced(text, written, meant);
  return text;
}

std::string NamesIn(const std::filesystem::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.insert(entry.path().filename().string());
  std::string lines;
  for (const std::string& name : names) lines += name + "\n";
  return lines;
}

class Session {
 public:
  void Prepare(const std::string& word, const std::string& text);
  [[nodiscard]] std::string Run(const std::string& line);

 private:
  using Preparation = std::function<void(Session&, const std::string& text)>;
  static const std::map<std::string, Preparation>& Preparations();
  static std::pair<std::string, std::string> Halves(const std::string& text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    return {text.substr(0, end), text.substr(std::min(end + 1, text.size()))};
  }
  void Exchange(const std::string& model) {
    mFixture.options.serialNumber = mFixture.options.serialNumber.value_or(0) + 1;
    mFixture.ReplaceController(model);
  }
  [[nodiscard]] std::filesystem::path File(const std::string& name) const { return mFixture.home.Path() / name; }
  [[nodiscard]] std::string Lines(const std::string& text, const char* mark) const;

  CommandFixture mFixture;
  std::string mTrace;
  std::string mHead;  // of the journal's first three records
};

const std::map<std::string, Session::Preparation>& Session::Preparations() {
  static const std::map<std::string, Preparation> all = {
      {"fault", [](Session& s, const std::string& text) { s.mFixture.options.faults = {text}; }},
      {"boot", [](Session& s, const std::string&) { s.mFixture.options.boot = true; }},
      {"os", [](Session& s, const std::string& text) { s.mFixture.options.osVersion = text; }},
      {"needs", [](Session& s, const std::string& text) { s.mFixture.options.password = text; }},
      {"unit", [](Session& s, const std::string& text) { s.mFixture.options.unit = std::uint8_t(std::stoi(text)); }},
      {"memory", [](Session& s, const std::string& text) { s.mFixture.options.memorySeed = std::stoul(text); }},
      {"baud", [](Session& s, const std::string& text) { s.mFixture.options.baud = std::stoi(text); }},
      {"nowhere",  // is a place for files
       [](Session& s, const std::string&) { s.mFixture.places = ProgramPlaces{s.File("nowhere"), {}}; }},
      {"exchanged-behind-reset",  // a controller, by one with another serial number
       [](Session& s, const std::string& model) {
         s.mFixture.pacer.OnTurn([&s, model, isDone = false]() mutable {
           if (isDone || !TemporaryFolder::Content(s.File("trace.txt")).contains("/01CCE")) return;
           isDone = true;
           s.Exchange(model);
         });
       }},
      {"exchanged-after",  // so many milliseconds, too
       [](Session& s, const std::string& text) {
         const auto [time, model] = Halves(text);
         s.mFixture.pacer.After(std::chrono::milliseconds(std::stoi(time)), [&s, model] { s.Exchange(model); });
       }},
      {"replace", [](Session& s, const std::string& text) { s.mFixture.ReplaceController(text); }},
      {"variable", [](Session& s, const std::string& text) { s.mFixture.password = Secret(text); }},
      {"records", [](Session& s, const std::string&) { s.mFixture.recordsChanges = true; }},
      {"terminal", [](Session& s, const std::string&) { s.mFixture.errIsTerminal = true; }},
      {"broken", [](Session& s, const std::string&) { s.mFixture.outIsBroken = true; }},
      {"whole", [](Session& s, const std::string&) { s.mFixture.outIsBroken = false; }},
      {"nobody", [](Session& s, const std::string&) { s.mFixture.input.lines.reset(); }},
      {"types", [](Session& s, const std::string& text) { s.mFixture.input.lines.emplace(1, text); }},
      {"types-also", [](Session& s, const std::string& text) { s.mFixture.input.lines->push_back(text); }},
      {"goes-on", [](Session& s, const std::string&) { s.mFixture.pacer.ClearStop(); }},
      {"stops-at-question",
       [](Session& s, const std::string&) {
         s.mFixture.input.lines.emplace();
         s.mFixture.input.onRead = [&s] { s.mFixture.pacer.RequestStop(); };
       }},
      {"stops-after",
       [](Session& s, const std::string& text) {
         s.mFixture.pacer.After(std::chrono::milliseconds(std::stoi(text)), [&s] { s.mFixture.pacer.RequestStop(); });
       }},
      {"cable",  // from any port or modem to a controller of its own
       [](Session& s, const std::string& model) {
         sim::SimulatorOptions options = s.mFixture.options;
         options.model = model;
         const std::shared_ptr<sim::SimulatedController> controller = sim::SimulatedController::Create(options).value();
         s.mFixture.makePort = [controller](const LinkSettings& link, Pacer& pacer, ListeningSocket*) {
           return PortTo(controller->NewLine(), link, pacer);
         };
       }},
      {"port",
       [](Session& s, const std::string& text) {
         const auto [path, plugged] = Halves(text);
         s.mFixture.serialPorts.push_back({path, path, plugged, ""});
       }},
      {"file",
       [](Session& s, const std::string& text) {
         const auto [name, content] = Halves(text);
         PutFile(s.File(name), Replaced(Unescaped(content), "HOME", s.mFixture.home.Path().string()));
       }},
      {"copy",
       [](Session& s, const std::string& text) {
         const auto [from, to] = Halves(text);
         std::filesystem::copy_file(s.File(from), s.File(to), std::filesystem::copy_options::overwrite_existing);
       }},
      {"remove", [](Session& s, const std::string& text) { std::filesystem::remove_all(s.File(text)); }},
      {"folder", [](Session& s, const std::string& text) { std::filesystem::create_directories(s.File(text)); }},
      {"damage",  // one byte of a file
       [](Session& s, const std::string& text) {
         const auto [name, place] = Halves(text);
         std::string content = TemporaryFolder::Content(s.File(name));
         content.at(std::stoul(place)) ^= 1;
         PutFile(s.File(name), content);
       }},
      {"cut",  // the end of a file
       [](Session& s, const std::string& text) {
         std::filesystem::resize_file(s.File(text), std::filesystem::file_size(s.File(text)) - 10);
       }},
      {"drop",  // the lines of a file that begin so
       [](Session& s, const std::string& text) {
         const auto [name, begin] = Halves(text);
         std::string content = TemporaryFolder::Content(s.File(name));
         for (std::size_t at = 0; (at = content.find(begin)) != std::string::npos;)
           content.erase(at, content.find('\n', at) + 1 - at);
         PutFile(s.File(name), content);
       }},
      {"pages",  // a Telepanel file of a project and a model
       [](Session& s, const std::string& text) {
         const auto [project, model] = Halves(text);
         s.mFixture.home.Put("mill.kta", PrintPagesFile({project, model}));
       }},
      {"owners",  // nobody else may read a file
       [](Session& s, const std::string& text) { GiveRights(s.File(text), Rights::Owners); }},
      {"open",  // to others
       [](Session& s, const std::string& text) { GiveRights(s.File(text), Rights::GroupReads); }},
      {"locked",  // as the mark of a window that works in this session
       [](Session& s, const std::string& text) {
         std::filesystem::permissions(s.File(text), std::filesystem::perms::owner_read);
       }},
      {"downloads", [](Session& s, const std::string&) { PutDownloadFiles(s.mFixture.home.Path()); }},
  };
  return all;
}

void Session::Prepare(const std::string& word, const std::string& text) {
  const auto found = Preparations().find(word);
  ASSERT_NE(found, Preparations().end()) << "nothing is called " << word;
  found->second(*this, text);
}

// A line as it is on every machine.
std::string General(std::string line) {
  static const std::pair<std::regex, const char*> kParts[] = {
      {std::regex("[0-9a-f]{64}"), "HASH"},
      {std::regex("20(?!24)[0-9]{2}-[0-9]{2}-[0-9]{2}[ \t][0-9]{2}:[0-9]{2}:[0-9]{2}"), "NOW"},
      {std::regex("[0-9]{8} [0-9]{6}[.]kdf"), "NOW.kdf"},
      {std::regex("[.][0-9]+[.]part"), ".N.part"},
      {std::regex("(made by +|\"madeBy\": \")[^\n@]+@[^\n\"]+"), "$1SOMEBODY"},
      {std::regex("this computer has .*[.]"), "this computer has PORTS."},
      {std::regex("(chmod 600 the file|take everybody .* settings), and"), "SHUT IT, and"},
      {std::regex("Changes[.]lock: it cannot be written [(][^)]*"), "Changes.lock: it cannot be written (WHY"},
  };
  for (const auto& [what, instead] : kParts) line = std::regex_replace(line, what, instead);
  return line;
}

// As they are on every machine.
std::string Session::Lines(const std::string& text, const char* mark) const {
  std::istringstream rest(Replaced(WithoutHome(text, mFixture.home.Path()), "\r", "\\r"));
  std::string lines;
  for (std::string line; std::getline(rest, line);) lines += mark + General(std::move(line)) + "\n";
  return lines;
}

std::string Session::Run(const std::string& line) {
  if (line.starts_with("cat ")) return Lines(TemporaryFolder::Content(File(line.substr(4))), "");
  if (line.starts_with("ls ")) return NamesIn(File(line.substr(3)));
  if (line.starts_with("trace")) return TrafficText(mTrace, line.substr(std::min<std::size_t>(6, line.size())));
  const Result result = mFixture.Run(Replaced(line, "HEAD", mHead));
  mTrace = result.trace;
  if (const std::size_t at = result.err.find("Head: 3 "); at != std::string::npos)
    mHead = result.err.substr(at + 8, 64);
  const bool isTheParsers = result.err.contains("see kvtele --help, or kvtele VERB --help");
  std::string shown = Lines(result.out.contains("\"cure\": \"see kvtele --help, or") ? "" : result.out, "");
  shown += isTheParsers ? "! (in the parser's words)\n" : Lines(result.err, "! ");
  if (result.exit == 0) return shown;
  const bool isSilent = !result.trace.contains("-->");
  return shown + "= " + std::to_string(result.exit) + (isSilent ? ", nothing was sent\n" : "\n");
}

// The same session again, with what comes of it now.
std::string RunAgain(const std::string& transcript) {
  std::istringstream lines(transcript);
  std::string again;
  std::unique_ptr<Session> session;
  for (std::string line; std::getline(lines, line);) {
    const bool isMark = line.starts_with("## ") || line.starts_with("% ") || line.starts_with("$ ");
    if (!isMark) continue;
    if (line.starts_with("## ")) {
      again += (again.empty() ? "" : "\n") + line + "\n";
      session = std::make_unique<Session>();
      continue;
    }
    again += line + "\n";
    const std::size_t end = std::min(line.find(' ', 2), line.size());
    if (line.starts_with("%")) session->Prepare(line.substr(2, end - 2), line.substr(std::min(end + 1, line.size())));
    if (line.starts_with("$")) again += session->Run(line.substr(2));
  }
  return again;
}

class Transcript : public testing::TestWithParam<const char*> {};

TEST_P(Transcript, IsTheSameAgain) {
  const std::filesystem::path file =
      std::filesystem::path(KV_TEST_DATA) / "kvtele" / "transcripts" / (std::string(GetParam()) + ".txt");
  const std::string written = TemporaryFolder::Content(file);
  ASSERT_NE(written, "");
  const std::string again = RunAgain(written);
  if (std::getenv("KV_RENEW_TRANSCRIPTS")) std::ofstream(file, std::ios::binary) << again;
  ExpectSameLines(again, written, "$ ");
}

INSTANTIATE_TEST_SUITE_P(Kvtele, Transcript,
                         testing::Values("cache", "clone", "download", "journal", "link", "operands", "panel",
                                         "regions", "sessions", "traffic"),
                         [](const auto& made) { return std::string(made.param); });

#ifdef KVTELE_TEXTS
// The completions of the shells and the manual page name every verb, option and value: as they were looked at.
TEST(CommandLineTexts, AreTheSameAgain) {
  const TemporaryFolder folder;
  const auto write = [](std::vector<std::string> arguments) {
    return kvtest::ProgramProcess(KVTELE_TEXTS, std::move(arguments)).End();
  };
  EXPECT_EQ(write({}), 2);
  EXPECT_EQ(write({Utf8FromPath(folder.Path() / "nowhere")}), 1);
  ASSERT_EQ(write({Utf8FromPath(folder.Path())}), 0);
  for (const char* name : {"kvtele.bash", "_kvtele", "kvtele.fish", "kvtele.1"}) {
    const auto file = std::filesystem::path(KV_TEST_DATA) / "kvtele" / "texts" / name;
    const std::string text =
        Replaced(TemporaryFolder::Content(folder.Path() / name), std::string(ProgramVersion()), "VERSION");
    if (std::getenv("KV_RENEW_TRANSCRIPTS")) std::ofstream(file, std::ios::binary) << text;
    ExpectSameLines(text, TemporaryFolder::Content(file), "");
  }
}
#endif

}  // namespace
}  // namespace kv::test
