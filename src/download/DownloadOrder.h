#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "desktop/Prompts.h"
#include "download/BackupBefore.h"
#include "download/DownloadPreview.h"

namespace kv {

// The questions of a download that each want a consent of their own: a terminal has a flag for each.
enum class DownloadQuestion : std::uint8_t {
  Begin,       // what the controller holds is replaced
  OtherModel,  // a compact project that is made for another model
  NoReset,     // a compact project that may have been cut
  SameOs,      // an O/S that is installed already
  OlderOs,     // one that is older than the installed one
  LoseValues,  // a new O/S to which the values of the operands mean nothing
  Retry,       // a message of an O/S was not answered, or refused: send it again
  EndLoad,     // a load is under way in the controller, or was cut
  Stop,        // the user has asked for a stop, which would leave something half done
};

// What each of the downloads is told beside its file.
struct DownloadOrder {
  std::string link = {};  // description of the link, for questions and headings
  // What the link's settings say, when the controller was found at another speed before the download; 0: not known.
  int usualBaudRate = 0;
  std::string selectedModel = {};  // that the user believes to be connected, UTF-8; empty: not known
  bool isDryRun = false;           // everything up to the first command that changes the controller
  BackupBefore* backup = nullptr;  // taken when all questions are answered; null: none
  // Who is asked one of these; the engine's own prompts when it is empty.
  std::function<Prompts&(DownloadQuestion question)> promptsOf = {};
  // False: a stop is not asked about, because nobody can be asked.
  bool asksBeforeStop = true;
  // Called once, when both sides are known and before the first question; may be empty.
  std::function<void(const DownloadPreview& preview)> onPreview = {};
  // Called when the controller has told what it is afterwards, before any box says how the download ended; may be
  // empty.
  std::function<void(const DownloadReview& review)> onReview = {};
};

}  // namespace kv
