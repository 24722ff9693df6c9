#include "KvCmDrv1/ports/PortLibrary.h"

#include <asio/version.hpp>

namespace kv {

LibraryNotice PortLibrary() {
  const std::string version = std::to_string(ASIO_VERSION / 100000) + "." + std::to_string(ASIO_VERSION / 100 % 1000) +
                              "." + std::to_string(ASIO_VERSION % 100);
  return {"Asio", version, "BSL-1.0"};
}

}  // namespace kv
