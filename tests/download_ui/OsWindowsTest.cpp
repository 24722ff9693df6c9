#include <gtest/gtest.h>

#include <QAbstractButton>

#include "download/ui/frmBrioQ50OsInfo.h"
#include "download/ui/frmIncompatibleBios.h"
#include "download/ui/frmOsInfo.h"
#include "tests/desktop_ui/UsableWindow.h"

namespace kv::test {
namespace {

FileList ListOf(std::initializer_list<const char*> names, std::optional<std::size_t> preselected) {
  FileList list{.folder = "Os Aurex/K220", .files = {}, .preselected = preselected};
  for (const char* name : names) list.files.push_back({list.folder / name, name, {}});
  return list;
}

// Presses the buttons of the dialog in turn once it is open; "" closes it.
void PressIn(QDialog& dialog, const std::vector<const char*>& buttons) {
  QTimer::singleShot(0, &dialog, [&dialog, buttons] {
    ExpectControlsCanBeRead(dialog);
    for (const auto* button : dialog.findChildren<QPushButton*>()) {
      EXPECT_TRUE(button->isDefault() || !button->toolTip().contains("(Enter)")) << button->objectName().toStdString();
    }
    for (const char* name : buttons) {
      if (*name == 0) {
        dialog.close();
      } else {
        Find<QAbstractButton>(dialog, name).click();
      }
    }
  });
}

TEST(OsWindowsTest, GiveWhatWasChosenAndNothingToWhoeverClosesThem) {
  const FileList os = ListOf({"a.kos", "b.kos"}, 1);
  const FileList fonts = ListOf({"a.kft"}, 0);
  struct Case {
    const char* what;
    AurexOsLists lists;
    std::vector<const char*> pressed;
    AurexOsChoice chosen;
  };
  const Case cases[] = {
      {"preselected", {os, fonts}, {"cmdClose"}, {os.files[1].path, fonts.files[0].path}},
      {"no fonts", {os, ListOf({}, {})}, {"cmdClose", "cmdCancel"}, {}},
      {"none fits", {ListOf({"a.kos"}, {}), fonts}, {"cmdClose", "cmdCancel"}, {}},
      {"cancelled", {os, fonts}, {"cmdCancel"}, {}},
      {"closed", {os, fonts}, {""}, {}},
  };
  for (const Case& each : cases) {
    frmOsInfo window(each.lists, "K220", nullptr);
    PressIn(window, each.pressed);
    const AurexOsChoice chosen = window.ShowGUI();
    EXPECT_EQ(chosen.os, each.chosen.os) << each.what;
    EXPECT_EQ(chosen.fonts, each.chosen.fonts) << each.what;
  }
  for (const char* button : {"cmdOK", "cmdCancel", ""}) {
    frmBrioQ50OsInfo window(os, "Q51", nullptr);
    PressIn(window, {button});
    const auto place = window.ShowGUI();
    EXPECT_EQ(place.has_value(), button == std::string("cmdOK"));
    EXPECT_EQ(place.value_or(1), 1U);
    EXPECT_EQ(window.IsCanceled, !place);
  }
}

TEST(OsWindowsTest, NobodyContinuesPastTheBootLoaderWarningWithoutTickingTheBox) {
  const std::pair<std::vector<const char*>, BiosAnswer> cases[] = {
      {{"chkDelete", "cmdContinue"}, BiosAnswer::Continue},
      {{"cmdContinue", "cmdAbort"}, BiosAnswer::Abort},
      {{"chkDelete", "chkDelete", "cmdContinue", ""}, BiosAnswer::Abort},
      {{"chkDelete", "cmdAbort"}, BiosAnswer::Abort},
      {{"chkDelete", ""}, BiosAnswer::Abort},
  };
  for (const auto& [pressed, answer] : cases) {
    frmIncompatibleBios window(nullptr);
    PressIn(window, pressed);
    EXPECT_EQ(window.ShowMessage(), answer) << pressed.size();
  }
}

}  // namespace
}  // namespace kv::test
