#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "base/AtomicFile.h"
#include "link/LinkError.h"

namespace kv::cache {

// The short texts of an import; `name` is the file's, without its folder. Lines end with CR LF.
inline constexpr std::string_view kNoConnectionText = "Could Not Connect To PLC.\r\nPlease Check Cables and Try Again!";
inline constexpr std::string_view kNotColourText =
    "The connected Hardware is not a Aurex Color model\r\nThis operation can not be completed!";
inline constexpr std::string_view kOldOsText =
    "The O/S currently installed in this controller is too old.\r\n"
    "Minimum required Operating Systems (O/S) version is 1.1";
[[nodiscard]] std::string WaitText(const std::string& name);
[[nodiscard]] std::string CreatedText(const std::string& name);
[[nodiscard]] std::string ErrorsText(const std::string& name);
[[nodiscard]] std::string StoppedText(const std::string& name);

enum class CacheEnd { Done, Stopped, Failed };

// What kind of thing was in the way.
enum class CacheCause {
  None,
  Stop,          // the user
  NoConnection,  // there is no link, or the controller does not answer who it is
  NotColour,     // it is of another family, or has no display in colours
  OldOs,
  NothingWanted,    // neither fonts nor images
  TooMuch,          // more than a cache file holds, or a directory that cannot be right
  File,             // the working file, the empty cache or the chosen file
  Link,             // an exchange failed; `link` says how
  OtherController,  // another one answers than the one that was prepared
  Changed,          // the controller's fonts and images change faster than they can be read
};

// How an import ended, in words for people, UTF-8.
struct CacheOutcome {
  CacheEnd end = CacheEnd::Done;
  CacheCause cause = CacheCause::None;
  std::string text{};    // the short one, for every end
  std::string reason{};  // what happened, the likely cause and what to do, a sentence a line; empty: `text` says it all
  std::string kept{};    // of one that had begun and is not done: what stands at the chosen place now, a sentence
  LinkError link{};      // of the exchange that failed; code None for other causes

  [[nodiscard]] static CacheOutcome Failed(CacheCause cause, std::string text, std::string reason);
  // An exchange that failed because it was stopped is a stop.
  [[nodiscard]] static CacheOutcome OfLink(const LinkError& error);
  [[nodiscard]] static CacheOutcome OfStop();
  [[nodiscard]] static CacheOutcome OfFile(const FileError& error);
};

}  // namespace kv::cache
