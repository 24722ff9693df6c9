// Any bytes as system fonts: what is taken is all of the file behind its header, and fits the controller.

#include <cstdint>
#include <string>

#include "download/AurexPlaces.h"
#include "download/FontsFile.h"
#include "fuzz/MendedCheck.h"
#include "fuzz/Require.h"

namespace {

void Check(const std::string& bytes) {
  const auto fonts = kv::ParseFontsFile(bytes, "fuzz");
  if (!fonts) {
    Require(!fonts.error().where.what.empty(), "a refused file is refused with the reason");
    return;
  }
  const kv::AurexPlaces* places = kv::PlacesOf(fonts->model);
  Require(places != nullptr, "the model is known");
  Require(fonts->data.size() + 16 == bytes.size(), "the fonts fill the file");
  Require(!fonts->data.empty() && fonts->data.size() <= places->fontsEnd - places->fontsStart, "the fonts fit");
  Require(fonts->number.version <= 999 && fonts->number.build <= 9, "the number has its digits");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Check(bytes);
  Check(Mended(bytes, 8, 16, 12));
  return 0;
}
