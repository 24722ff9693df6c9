#pragma once

#include <QPalette>
#include <QString>
#include <array>
#include <filesystem>

namespace kv {

enum class Theme { System, Light, Dark };
inline constexpr std::array kThemes{Theme::System, Theme::Light, Theme::Dark};

// "System", "Light", "Dark": in menus and in the file.
[[nodiscard]] QString NameOf(Theme theme);
[[nodiscard]] Theme ThemeNamed(const QString& name);  // the system's for any other text

// The colours of a theme; those of the system are the toolkit's business.
[[nodiscard]] QPalette PaletteOf(Theme theme);

// Which colours the windows have: those of the system, or light or dark ones whatever the system has. A choice is kept
// beside the places of windows (WindowsFile), and used from the start on. Needs the QApplication.
class ThemeChoice {
 public:
  explicit ThemeChoice(std::filesystem::path file);

  [[nodiscard]] Theme Chosen() const { return mChosen; }
  void Choose(Theme theme);

 private:
  void Use(Theme theme);

  std::filesystem::path mFile;
  QString mSystemStyle;
  QPalette mSystemPalette;
  Theme mChosen = Theme::System;
};

}  // namespace kv
