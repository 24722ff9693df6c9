#pragma once

#include <string>

#include "link/AsciiFrame.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace kvtest {

// The reply's frame, or what came of it.
inline std::string Exchange(const Descriptor& client, const std::string& text) {
  client.Give(kv::BuildFrame(1, text));
  std::string reply;
  while (!reply.ends_with('\r')) {
    const auto byte = client.Take(1);
    if (byte.empty()) break;
    reply += byte;
  }
  return reply;
}

}  // namespace kvtest
