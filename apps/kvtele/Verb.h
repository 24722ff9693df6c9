#pragma once

#include <CLI/App.hpp>
#include <array>
#include <memory>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/VerbOutput.h"

namespace kv::cli {

// One command of the program. An object serves one run: Declare tells the parser its arguments and keeps what the user
// gave, then Run does the work.
class Verb {
 public:
  virtual ~Verb() = default;

  [[nodiscard]] virtual const char* Name() const = 0;
  // One line for the list of commands.
  [[nodiscard]] virtual const char* Summary() const = 0;
  // What --help of the command begins with: lines with an example each.
  [[nodiscard]] virtual const char* Examples() const = 0;

  // False: it can do its work without the program's folders, too.
  [[nodiscard]] virtual bool NeedsFolders() const { return true; }

  virtual void Declare(CLI::App& app) = 0;
  [[nodiscard]] virtual VerbResult Run(Environment& environment, const CommonOptions& common) = 0;
};

// Each stands in the file of its name.
[[nodiscard]] std::unique_ptr<Verb> MakeVerbIdentify();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbOnline();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbRead();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbWrite();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbRegions();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbWatch();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbClone();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbDownload();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbRun();   // in VerbRunStop.cpp
[[nodiscard]] std::unique_ptr<Verb> MakeVerbStop();  // in VerbRunStop.cpp
[[nodiscard]] std::unique_ptr<Verb> MakeVerbScreen();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbPress();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbCache();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbJournal();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbSessions();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbPorts();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbPaths();
[[nodiscard]] std::unique_ptr<Verb> MakeVerbReport();

// All of them, in the order in which --help lists them.
inline constexpr std::array kVerbMakers = {
    MakeVerbIdentify, MakeVerbOnline,   MakeVerbRead,     MakeVerbWrite, MakeVerbRegions, MakeVerbWatch,
    MakeVerbClone,    MakeVerbDownload, MakeVerbRun,      MakeVerbStop,  MakeVerbScreen,  MakeVerbPress,
    MakeVerbCache,    MakeVerbJournal,  MakeVerbSessions, MakeVerbPorts, MakeVerbPaths,   MakeVerbReport};

}  // namespace kv::cli
