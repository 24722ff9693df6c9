#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>

#include "bench/exchange/Measure.h"

namespace bench {

enum class Way { Tcp, Pty };

// The least that an exchange can cost on this machine: two processes that pass the same numbers of bytes back and forth
// with blocking calls, and do nothing with them.
class BarePartner {
 public:
  // Starts the other process. It answers every `requestBytes` with `replyBytes`.
  BarePartner(Way way, std::size_t requestBytes, std::size_t replyBytes);
  ~BarePartner();
  BarePartner(const BarePartner&) = delete;
  BarePartner& operator=(const BarePartner&) = delete;

  // Nothing when the partner has failed.
  [[nodiscard]] std::optional<Cost> Exchange(int times) const;

 private:
  std::size_t mRequestBytes;
  std::size_t mReplyBytes;
  int mHandle = -1;
  pid_t mProcess = -1;
};

}  // namespace bench
