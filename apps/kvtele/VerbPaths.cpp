#include "apps/kvtele/Verb.h"
#include "base/PathText.h"

namespace kv::cli {

namespace {

// Tells where everything lies that the programs read and write, and why it lies there.
class VerbPaths : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "paths"; }
  [[nodiscard]] const char* Summary() const override { return "Tell where the programs keep their files"; }
  [[nodiscard]] const char* Examples() const override;
  [[nodiscard]] bool NeedsFolders() const override { return false; }  // it asks for them by itself
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;
};

const char* VerbPaths::Examples() const {
  return "  kvtele paths                                where do the sessions lie, and why there?\n"
         "  kvtele --session Mill --json paths          for a script: the folder of this session\n";
}

// clang-format off
constexpr std::array kLines = {
    DocumentLine{"programs         ", "programs"},
    DocumentLine{"home             ", "home"},
    DocumentLine{"  because it is  ", "because"},
    DocumentLine{"sessions         ", "sessions"},
    DocumentLine{"session          ", "session"},
    DocumentLine{"saved memory     ", "temporary"},
    DocumentLine{"compact O/S      ", "compactOs"},
    DocumentLine{"Aurex O/S        ", "aurexOs"},
    DocumentLine{"help             ", "help"},
    DocumentLine{"templates        ", "templates"},
    DocumentLine{"journal heads    ", "journalHeads"},
};
// clang-format on

VerbResult VerbPaths::Run(Environment& environment, const CommonOptions& common) {
  CommonOptions options = common;
  const auto reason = FindFolders(options, environment.places);
  if (!reason) return std::unexpected(reason.error());
  const ProgramPaths& paths = options.paths;
  VerbOutput output;
  output.document = {{"programs", Utf8FromPath(environment.places.program)},
                     {"home", Utf8FromPath(paths.Home())},
                     {"because", HomeReasonText(*reason)},
                     {"sessions", Utf8FromPath(paths.Sessions())},
                     {"session", Utf8FromPath(paths.Session(options.session))},
                     {"temporary", Utf8FromPath(paths.Temporary())},
                     {"compactOs", Utf8FromPath(paths.CompactOs())},
                     {"aurexOs", Utf8FromPath(paths.AurexOs())},
                     {"help", Utf8FromPath(paths.Help())},
                     {"templates", Utf8FromPath(paths.Templates())},
                     {"journalHeads", Utf8FromPath(environment.stateFolder)}};
  output.text = DocumentText(output.document, kLines);
  return output;
}

}  // namespace

std::unique_ptr<Verb> MakeVerbPaths() {
  return std::make_unique<VerbPaths>();
}

}  // namespace kv::cli
