#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "KvTele2/panel/Drawing.h"
#include "KvTele2/panel/ScreenResources.h"
#include "desktop/Pacer.h"
#include "link/PanelLink.h"

namespace kv::panel {

// Reads the fonts and images that a screen lacks from the controller itself, in pieces that leave the link to others
// in between: where it is fast they are there before anybody has looked for a cache.
//
// What the controller does not have, does not tell or tells wrong stays missing, and is not asked for again.
class ResourceFetch {
 public:
  static constexpr Duration kLongestPiece = std::chrono::milliseconds(50);  // an input waits behind one

  enum class Wanted {
    All,
    Names,  // the line is for the screen: what is missing is drawn with its name
  };
  // All outlive it.
  ResourceFetch(Pacer& pacer, PanelLink& link, ScreenResources& resources, std::uint8_t unit,
                Wanted wanted = Wanted::All);

  [[nodiscard]] Wanted What() const { return mWanted; }
  // What is missing now. True: there is something to read.
  [[nodiscard]] bool Has(const std::vector<Drawing::Missing>& missing);
  // The next piece of it, or the directory. True: a resource has come, or a name. The error of the link leaves what was
  // begun to be read anew.
  [[nodiscard]] std::expected<bool, LinkError> Step();

 private:
  using Key = std::pair<PanelResourceKind, std::uint16_t>;

  [[nodiscard]] std::expected<bool, LinkError> ReadDirectory(PanelResourceKind kind);
  [[nodiscard]] std::expected<bool, LinkError> ReadPiece(const PanelResource& entry);
  [[nodiscard]] std::expected<bool, LinkError> GiveUpOrFail();
  void FitPiece(Duration took);

  Pacer& mPacer;
  PanelLink& mLink;
  ScreenResources& mResources;
  std::uint8_t mUnit;
  Wanted mWanted;
  std::uint32_t mPiece;
  std::map<PanelResourceKind, std::vector<PanelResource>> mDirectories;
  std::set<Key> mDone;       // came, or will not
  std::optional<Key> mNow;   // that is being read
  std::string mBytes;        // of it
  unsigned mConnection = 0;  // that they came over
};

}  // namespace kv::panel
