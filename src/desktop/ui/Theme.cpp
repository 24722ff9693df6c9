#include "desktop/ui/Theme.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

#include "base/ProfileStrings.h"

namespace kv {
namespace {

constexpr const char* kSection = "Look";
constexpr const char* kKey = "Theme";
// The one style that takes any colours on every platform; the systems' own have light ones painted in.
constexpr const char* kFreeStyle = "Fusion";

struct Colours {
  QColor window, base, text, grey, highlight, link;
};
const Colours kLight{QColor(0xf3, 0xf4, 0xf6), Qt::white,
                     QColor(0x1b, 0x1d, 0x21), QColor(0x85, 0x8a, 0x93),
                     QColor(0x2e, 0x6f, 0xb5), QColor(0x0b, 0x57, 0xd0)};
const Colours kDark{QColor(0x2b, 0x2d, 0x30), QColor(0x1e, 0x1f, 0x22), QColor(0xdf, 0xe1, 0xe5),
                    QColor(0x7a, 0x7d, 0x82), QColor(0x2e, 0x6f, 0xb5), QColor(0x6c, 0xb2, 0xff)};

// The same colours, none of them left to the system.
QPalette AllChosen(QPalette palette) {
  for (int group = 0; group < QPalette::NColorGroups; ++group) {
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
      const auto of = static_cast<QPalette::ColorGroup>(group);
      const auto at = static_cast<QPalette::ColorRole>(role);
      palette.setBrush(of, at, palette.brush(of, at));
    }
  }
  return palette;
}

}  // namespace

QString NameOf(Theme theme) {
  switch (theme) {
    case Theme::Light:
      return "Light";
    case Theme::Dark:
      return "Dark";
    case Theme::System:
      break;
  }
  return "System";
}

Theme ThemeNamed(const QString& name) {
  for (const Theme theme : kThemes) {
    if (NameOf(theme) == name) return theme;
  }
  return Theme::System;
}

QPalette PaletteOf(Theme theme) {
  const Colours& colours = theme == Theme::Dark ? kDark : kLight;
  QPalette palette(colours.window, colours.window);
  palette.setColor(QPalette::WindowText, colours.text);
  palette.setColor(QPalette::Base, colours.base);
  palette.setColor(QPalette::AlternateBase, colours.window);
  palette.setColor(QPalette::Text, colours.text);
  palette.setColor(QPalette::ButtonText, colours.text);
  palette.setColor(QPalette::ToolTipBase, colours.base);
  palette.setColor(QPalette::ToolTipText, colours.text);
  palette.setColor(QPalette::PlaceholderText, colours.grey);
  palette.setColor(QPalette::Link, colours.link);
  palette.setColor(QPalette::Highlight, colours.highlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, colours.grey);
  }
  return palette;
}

ThemeChoice::ThemeChoice(std::filesystem::path file)
    : mFile(std::move(file)),
      mSystemStyle(QApplication::style()->objectName()),
      mSystemPalette(AllChosen(QApplication::palette())) {
  Use(ThemeNamed(QString::fromStdString(ReadProfileString(mFile, kSection, kKey, ""))));
}

void ThemeChoice::Choose(Theme theme) {
  Use(theme);
  // A choice that cannot be kept holds until the program ends.
  (void)WriteProfileString(mFile, kSection, kKey, NameOf(theme).toStdString());
}

void ThemeChoice::Use(Theme theme) {
  if (theme == mChosen) return;
  mChosen = theme;
  const QString style = theme == Theme::System ? mSystemStyle : kFreeStyle;
  if (QApplication::style()->objectName().compare(style, Qt::CaseInsensitive) != 0) {
    QApplication::setStyle(QStyleFactory::create(style));
  }
  QApplication::setPalette(theme == Theme::System ? mSystemPalette : PaletteOf(theme));
  // Back to following the system. What the system names no colour for stays as it is, so that had to be put back
  // before.
  if (theme == Theme::System) QApplication::setPalette(QPalette());
}

}  // namespace kv
