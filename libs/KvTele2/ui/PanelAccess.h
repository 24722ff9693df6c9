#pragma once

#include <vector>

#include "KvTele2/panel/ScreenText.h"

namespace kv {

class PanelView;

// What is on the controller's screen, for screen readers: each text and each thing that can be pressed is a part of the
// view, with its words, what it is, its state and its place. What can be pressed can be pressed from there, under the
// same conditions as by the mouse.

// Makes it known to the toolkit, once.
void LetScreenReadersIn();
// Tells what is other than it was in `before`.
void TellScreenReaders(PanelView& view, const std::vector<panel::ScreenText>& before);

}  // namespace kv
