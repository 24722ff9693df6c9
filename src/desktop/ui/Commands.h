#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QFont>
#include <QString>
#include <QWidget>

namespace kv {

// What every command of a window shows: a tooltip that names its shortcut, and why it cannot be used just now.

// Sets the tooltip: `tip`, with the action's shortcut behind it: "Identifies the controller (F5)". The same text goes
// to the status line and to screen readers. To be called after the shortcut has been set.
void Describe(QAction& action, const QString& tip);
// The same for a button; `keys` names the keys that do it, where there are any: "Alt+T".
void Describe(QAbstractButton& button, const QString& tip, const QString& keys = {});

// Enables the command when `whyNot` is empty; else greys it, and its tooltip says why.
void Allow(QAction& action, const QString& whyNot);
void Allow(QAbstractButton& button, const QString& whyNot);

// The desktop's fixed-width face, in the size of `like`.
[[nodiscard]] QFont FixedFont(const QFont& like);

// Numbers stand right-aligned and in the fixed-width face, so that their digits are below each other. For line edits,
// spin boxes and labels.
void ShowAsNumber(QWidget& field);

}  // namespace kv
