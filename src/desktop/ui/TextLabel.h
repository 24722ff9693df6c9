#pragma once

#include <QLabel>

namespace kv {

// A label for what the program tells: plain text, whatever it contains, in as many lines as it needs, to be marked and
// copied with the mouse. `what` is its name for screen readers.
[[nodiscard]] QLabel* MakeTextLabel(const char* name, const char* what, QWidget* parent);

}  // namespace kv
