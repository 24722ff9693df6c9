#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Time.h"
#include "secret/Secret.h"

namespace kv {

// Keeps passwords out of the trace: the passwords themselves, and every check over one, since a short password can be
// found from a check by trying all. Requests that carry a password, their echoes and their replies keep what does not
// depend on it. For a while after such a request, whatever is no whole message may be a part of its echo, in whatever
// form, and is withheld.
class TraceSecrets {
 public:
  enum class Passage {
    Sent,
    Answer,   // a message that was taken for the answer, or raw traffic
    Garbage,  // anything else that arrived
  };

  // What may be seen of these bytes: as many of them, with "*" in the place of those that tell something. Nothing when
  // none may be seen. Good until the next call.
  [[nodiscard]] std::optional<std::string_view> Harmless(Instant when, Passage passage, std::string_view bytes);

 private:
  std::string mMasked;
  Secret mSecret;  // the last request with a password, while its echo may come
  Instant mWithholdsUntil = Instant::min();
};

}  // namespace kv
