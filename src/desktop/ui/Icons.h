#pragma once

#include <QIcon>

namespace kv {

// The program's pictures: line drawings of our own, one per file in icons/.
enum class Picture {
  About,
  App,
  Cache,
  Clone,
  Copy,
  DataTypes,
  Delete,
  Designer,
  Download,
  Exit,
  Help,
  Images,
  Link,
  LogIn,
  LogOff,
  Model,
  Modem,
  Offline,
  Online,
  Open,
  Pages,
  Panel,
  Paste,
  Pause,
  Pid,
  Refresh,
  Run,
  Save,
  Search,
  Session,
  Stop,
  Test,
  Trace,
  Warning,
};

inline constexpr int kPictureCount = static_cast<int>(Picture::Warning) + 1;

// Drawn at every size and scale in the colour that the palette has for text on buttons, so it is seen on light and dark
// and follows a change.
[[nodiscard]] QIcon IconOf(Picture picture);

}  // namespace kv
