#include "apps/kvsim/Make.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <optional>

#include "apps/kvsim/Options.h"
#include "apps/kvsim/SampleSet.h"
#include "base/AnsiText.h"
#include "base/PathText.h"
#include "simulator/ModelTable.h"
#include "simulator/files/SampleFiles.h"

namespace kvsim {

namespace fs = std::filesystem;

namespace {

constexpr const char* kExamples = R"(Examples:
  kvsim make project Pump.d50 --model Q50 --name "Pump 2"         a project
  kvsim make os . --model K220-22-R1 --version 4.75 --build 3     an O/S, under the name that it needs
  kvsim make fonts . --model K330 --version 1.30                  system fonts
  kvsim make set DIR                                              what a fresh installation has

Writes download files that simulated controllers take.
)";

struct Wanted {
  std::string place = {};
  std::string model = "K220-22-R1";
  std::string version = {};
  int build = 0;
  std::string name = "Sample";
  std::string remark = {};
  std::size_t size = 0;
  std::uint32_t seed = 1;
};

struct MadeFile {
  std::string name;  // that it has in a folder
  sim::FileOrFault content;
};

sim::SampleOs SampleOf(const Wanted& wanted) {
  return {.os = {wanted.version, wanted.build},
          .remark = kv::Utf8ToAnsi(wanted.remark),
          .size = wanted.size,
          .seed = wanted.seed};
}

MadeFile MakeProjectFile(const sim::Model& model, const Wanted& wanted) {
  const sim::SampleProject project{.name = kv::Utf8ToAnsi(wanted.name),
                                   .os = {wanted.version, wanted.build},
                                   .size = wanted.size,
                                   .seed = wanted.seed};
  return {wanted.name + std::string(sim::ProjectExtension(model)), sim::MakeProject(model, project)};
}

MadeFile MakeOsFile(const sim::Model& model, const Wanted& wanted) {
  const sim::SampleOs sample = SampleOf(wanted);
  return {sim::OsFileName(model, sample.os), sim::MakeOs(model, sample)};
}

MadeFile MakeFontsFile(const sim::Model& model, const Wanted& wanted) {
  const sim::SampleOs sample = SampleOf(wanted);
  return {sim::FontsFileName(sample.os), sim::MakeFonts(model, sample)};
}

int Fail(int exitCode, const std::string& text) {
  std::cerr << "kvsim: " << text << '\n';
  return exitCode;
}

int Write(MadeFile (*make)(const sim::Model&, const Wanted&), const Wanted& wanted) {
  const sim::Model* model = sim::FindModel(wanted.model);
  if (model == nullptr) return Fail(kUsage, UnknownModelText(wanted.model));
  if (!sim::IsOsNumber(*model, wanted.version)) return Fail(kUsage, "no version: " + wanted.version);
  const MadeFile made = make(*model, wanted);
  if (!made.content) return Fail(kUsage, made.content.error());
  fs::path file = kv::PathFromUtf8(wanted.place);
  std::error_code error;
  if (fs::is_directory(file, error)) file /= kv::PathFromUtf8(made.name);
  const auto written = WriteSample(file, *made.content);
  if (!written) return Fail(kFailed, written.error());
  std::cout << kv::Utf8FromPath(file) << '\n';
  return kDone;
}

// The size is what is made up; the head comes to it.
CLI::App* AddVerb(CLI::App& app, const char* name, const char* text, Wanted& wanted, std::size_t size) {
  CLI::App* verb = app.add_subcommand(name, text);
  verb->add_option("PLACE", wanted.place, "The file, or the folder that it is written to")->required();
  verb->add_option("--model", wanted.model, "Model that it is for (see kvsim --list-models)")
      ->type_name("MODEL")
      ->capture_default_str();
  verb->add_option("--build", wanted.build, "Build of the O/S")
      ->type_name("N")
      ->check(CLI::Range(0, 99).description(""));
  verb->add_option("--size", wanted.size, "Bytes of made-up contents. Default: " + std::to_string(size))
      ->type_name("N");
  verb->add_option("--seed", wanted.seed, "Of the made-up contents: the same seed, the same file")->type_name("N");
  return verb;
}

}  // namespace

int Make(int argc, const char* const* argv) {
  CLI::App app(kExamples, "kvsim make");
  app.allow_windows_style_options(false);  // a slash begins a path, on every system
  app.require_subcommand(1);
  Wanted project{.version = "4.60", .build = 19, .size = 12'000};
  Wanted os{.version = "4.75", .build = 3, .size = 24'000};
  Wanted fonts{.version = "1.30", .size = 12'000};
  std::string folder;

  CLI::App* makeProject = AddVerb(app, "project", "Write a project (.dai, .d50)", project, project.size);
  makeProject->add_option("--name", project.name, "Name of the project, at most 20 characters")->type_name("NAME");
  makeProject->add_option("--os", project.version, "O/S that it needs. Default: 4.60")->type_name("VERSION");
  CLI::App* makeOs = AddVerb(app, "os", "Write an O/S (.kos, .OSI)", os, os.size);
  makeOs->add_option("--version", os.version, "Its version. Default: 4.75")->type_name("VERSION");
  makeOs->add_option("--remark", os.remark, "A remark that lists show")->type_name("TEXT");
  CLI::App* makeFonts = AddVerb(app, "fonts", "Write system fonts (.kft)", fonts, fonts.size);
  makeFonts->add_option("--version", fonts.version, "Their version. Default: 1.30")->type_name("VERSION");
  CLI::App* makeSet = app.add_subcommand("set", "Write the files of a fresh installation");
  makeSet->add_option("FOLDER", folder, "The folder of the programs")->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kUsage;
  }
  if (*makeProject) return Write(MakeProjectFile, project);
  if (*makeOs) return Write(MakeOsFile, os);
  if (*makeFonts) return Write(MakeFontsFile, fonts);
  const auto written = WriteSampleSet(kv::PathFromUtf8(folder));
  return written ? kDone : Fail(kFailed, written.error());
}

}  // namespace kvsim
