#pragma once

#include <QWidget>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "desktop/Prompts.h"
#include "help/HelpBook.h"
#include "help/HelpSearch.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QTabWidget;
class QToolBar;
class QTreeWidget;

namespace kv {

class HelpBrowser;

// The help: contents, index and search on the left, the page on the right. It stands beside all other windows.
class frmHelp final : public QWidget {
 public:
  // `windowsFile` keeps its place; `prompts` outlives it.
  frmHelp(HelpBook book, Prompts& prompts, const std::filesystem::path& windowsFile);

  // The page with this map number, or the first page.
  void ShowTopic(std::int32_t mapNumber);
  void ShowPage(const std::string& page);

 private:
  [[nodiscard]] QToolBar* BuildCommands();
  [[nodiscard]] QWidget* BuildContents();
  [[nodiscard]] QWidget* BuildIndex();
  [[nodiscard]] QWidget* BuildSearch();
  void MarkPage(const std::string& page);
  void GoToKeyword(const QString& beginning);
  void Search(const QString& question);
  void Print();

  HelpBook mBook;
  Prompts& mPrompts;
  std::optional<HelpSearch> mSearch;  // made for the first question: most who open the help ask none
  HelpBrowser* mBrowser = nullptr;
  QTabWidget* mTabs = nullptr;
  QTreeWidget* mContents = nullptr;
  QListWidget* mIndex = nullptr;
  QLineEdit* mQuestion = nullptr;
  QListWidget* mHits = nullptr;
  QLabel* mFound = nullptr;
};

}  // namespace kv
