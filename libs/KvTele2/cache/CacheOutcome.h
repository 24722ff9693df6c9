#pragma once

#include <string>
#include <string_view>

#include "base/AtomicFile.h"
#include "link/LinkError.h"

namespace kv::cache {

enum class CacheEnd { Done, Stopped, Failed };

// What kind of thing was in the way.
enum class CacheCause {
  None,
  Stop,          // the user
  NoConnection,  // there is no link, or the controller does not answer who it is
  NotColour,     // it is of another family, or has no display in colours
  OldOs,
  NothingWanted,    // neither fonts nor images
  File,             // the working file, the empty cache or the chosen file
  Link,             // an exchange failed; `link` says how
  OtherController,  // another one answers than the one that was prepared
  Changed,          // the controller's fonts and images change faster than they can be read
};

// How an import ended, in words for people, UTF-8.
struct CacheOutcome {
  CacheEnd end = CacheEnd::Done;
  CacheCause cause = CacheCause::None;
  std::string text{};    // the short one, for every end; its lines end with CR LF
  std::string reason{};  // what happened, the likely cause and what to do, a sentence a line; empty: `text` says it all
  LinkError link{};      // of the exchange that failed; code None for other causes
};

}  // namespace kv::cache
