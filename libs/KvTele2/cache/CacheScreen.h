#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/panel/ScreenResources.h"
#include "link/LinkError.h"
#include "link/PanelLink.h"

namespace kv::cache {

// Why a font or image of the controller is not drawn from the cache.
enum class CacheGapReason {
  Lacks,     // the cache does not have it
  Outdated,  // the cache has another one of its id: it has changed in the controller since
  Unusable,  // the bytes are the controller's own, but no font or image
};

struct CacheGap {
  PanelResourceKind kind = PanelResourceKind::Font;
  std::uint16_t id = 0;
  std::string name{};  // UTF-8; "Image 7" where it has no other
  CacheGapReason reason = CacheGapReason::Lacks;
  std::string detail{};  // why it is unusable

  bool operator==(const CacheGap&) const = default;
};

// What of a cache a screen is drawn with.
struct CacheFit {
  bool isOtherModel = false;  // nothing is taken from it then, and there are no gaps
  std::size_t taken = 0;
  std::vector<CacheGap> gaps{};

  [[nodiscard]] bool IsWhole() const { return !isOtherModel && gaps.empty(); }
};

// A sentence for people; empty when all of it fits. `file` names the cache.
[[nodiscard]] std::string FitText(const CacheFit& fit, const std::string& file);

// The controller's directories as far as they have to be known: nothing where the whole part fits already.
struct ControllerDirectories {
  std::optional<PanelDirectory> fonts{};
  std::optional<PanelDirectory> images{};
};

// Nothing of it is drawn for that model then. One without an owner is nobody's, and fits.
[[nodiscard]] bool IsOfOtherModel(const CacheContent& content, const std::string& model);

// Which cache of several, the best first and at least one, the screen of a controller is drawn with.
struct CacheChoice {
  std::size_t index = 0;  // the first that is whole and of its model; where none is, the first of all
  bool fits = false;
  std::expected<CacheContent, CacheError> content{};  // of that file
  std::vector<std::string> passedOver{};  // for one that fits: why those before it cannot be read, a sentence each
};
[[nodiscard]] CacheChoice ChooseCache(const std::vector<std::string>& files, const std::string& model);

// Whether the cache has this part exactly as the controller has it: then its directory need not be asked for.
[[nodiscard]] bool IsCurrent(const CacheContent& content, PanelResourceKind kind, const PanelDescription& panel);

// Fills `resources` with what the controller has and the cache holds with the same length and CRC-32; names all that
// the directories name. What was in `resources` before goes. Pure: `directories` was asked for before.
[[nodiscard]] CacheFit TakeFromCache(const CacheContent& content, const std::string& model,
                                     const ControllerDirectories& directories, panel::ScreenResources& resources);

// The same over a link: asks for the directory of a part that has changed, for no other. `model` is what the controller
// reports itself as.
[[nodiscard]] std::expected<CacheFit, LinkError> TakeFromCache(const CacheContent& content, const std::string& model,
                                                               const PanelDescription& panel, PanelLink& link,
                                                               std::uint8_t unit, panel::ScreenResources& resources);

}  // namespace kv::cache
