#pragma once

#include <sys/types.h>

#include <array>
#include <optional>
#include <string>

#include "bench/exchange/Measure.h"

namespace bench {

// What a client of a serial line has to do at least when nothing may hang: one write, then one select and one read a
// wake-up, with a deadline. It looks at no byte of the replies.
class PlainClient {
 public:
  // Two requests, sent in turn: a controller that sees one block message twice answers it without reading anew.
  using Requests = std::array<std::string, 2>;

  PlainClient(const std::string& port, Requests requests, std::size_t replyBytes);
  ~PlainClient();
  PlainClient(const PlainClient&) = delete;
  PlainClient& operator=(const PlainClient&) = delete;

  // Nothing when a reply has not come.
  [[nodiscard]] std::optional<Cost> Exchange(int times, pid_t partner) const;

 private:
  [[nodiscard]] bool ExchangeOne(const std::string& request) const;

  int mHandle;
  Requests mRequests;
  std::size_t mReplyBytes;
};

}  // namespace bench
