// Any bytes as an O/S of the compact family, and any as a controller's identification: what is taken is whole blocks
// for a model that there is.

#include <cstdint>
#include <string>

#include "download/CompactController.h"
#include "download/CompactOsFile.h"
#include "download/OsFileName.h"
#include "fuzz/MendedCheck.h"
#include "fuzz/Require.h"

namespace {

void Check(const std::string& bytes) {
  const auto os = kv::ParseCompactOsFile(bytes, "fuzz");
  if (!os) {
    Require(!os.error().where.what.empty(), "a refused file is refused with the reason");
    return;
  }
  Require(os->image.size() == bytes.size() && os->image.size() % kv::kCompactOsBlock == 0, "whole blocks are sent");
  Require(os->image.size() <= (os->head.model == "Q50" ? 1u << 20 : 1u << 16), "every block has an address");
  const std::string name = kv::CompactOsFileName(os->head.model, os->head.number);
  Require(kv::CompactOsNameIn(name) == kv::CompactOsName{os->head.model, os->head.number}, "it has a name");
}

void CheckIdentification(const std::string& bytes) {
  const auto controller = kv::ParseCompactIdentification(bytes);
  Require(!controller || (!controller->OsModel().empty() && controller->osVersion >= 0), "a controller has a model");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Check(bytes);
  Check(Mended(bytes, 12, 0, 16));
  CheckIdentification(bytes);
  return 0;
}
