#pragma once

#include <QIcon>

namespace kv {

// The program's pictures: line drawings of our own, one per file in icons/.
enum class Picture {
  About,
  Add,
  App,
  Cache,
  Clone,
  Copy,
  Cut,
  DataTypes,
  Delete,
  Designer,
  Download,
  Exit,
  Export,
  Help,
  Hide,
  Images,
  Import,
  Link,
  LogIn,
  LogOff,
  Model,
  Modem,
  New,
  Offline,
  Online,
  Open,
  Pages,
  Panel,
  Paste,
  Pause,
  Pid,
  Read,
  ReadAll,
  Redo,
  Refresh,
  Remove,
  Run,
  Save,
  Search,
  Session,
  Stop,
  Table,
  Test,
  Trace,
  Undo,
  Warning,
  Write,
  WriteAll,
};

inline constexpr int kPictureCount = static_cast<int>(Picture::WriteAll) + 1;

// Drawn at every size and scale in the colour that the palette has for text on buttons, so it is seen on light and dark
// and follows a change.
[[nodiscard]] QIcon IconOf(Picture picture);

}  // namespace kv
