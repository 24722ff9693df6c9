#pragma once

#include <cstdint>

namespace kv {

// What shows the help on the screen.
class HelpViewer {
 public:
  virtual ~HelpViewer() = default;

  // The page with this map number; a number that no page has shows the first page. When there is no help to show, that
  // is told.
  virtual void ShowTopic(std::int32_t mapNumber) = 0;
};

}  // namespace kv
