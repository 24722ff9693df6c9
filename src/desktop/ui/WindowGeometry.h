#pragma once

#include <QWidget>
#include <filesystem>

#include "base/ProgramPaths.h"

class QHeaderView;

namespace kv {

// Where windows remember their places: one file for all sessions, since a place belongs to the screen and not to
// the installation that is served. "Windows.ini" in the program folder, one section a window.
[[nodiscard]] std::filesystem::path WindowsFile(const ProgramPaths& paths);

// The room that the screen of `window` has for it inside its frame.
[[nodiscard]] QSize RoomFor(const QWidget& window);

// Makes a window smaller that is larger than the screen: a first size chosen for a large one would put the lower
// edge, with its buttons, out of sight on a small one. A window that has chosen none takes the size of its contents.
void FitToScreen(QWidget& window);

// Gives `window` the size and position that it had last, and the splitters and table headers inside theirs, then keeps
// them each time the window is hidden or closed. They are known by their object names. Places that are damaged or
// missing leave everything as it is, but that a window larger than the screen is made to fit; one outside of the
// screens of today is moved inside. Each scale of texts has its own place: a window that grew with the letters shrinks
// with them. To be called when the window is built and not shown; `file` may be write-protected.
void RememberPlace(QWidget& window, const std::filesystem::path& file);

// Leaves a table's header out of it: its widths belong to what the table shows, and are kept with that.
void LeaveOutOfPlace(QHeaderView& header);

}  // namespace kv
