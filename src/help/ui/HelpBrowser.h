#pragma once

#include <QTextBrowser>

#include "help/HelpBook.h"

namespace kv {

// Shows the pages of a help book with their pictures. What is not in the book is not loaded from anywhere else.
class HelpBrowser final : public QTextBrowser {
 public:
  // The book outlives the browser.
  HelpBrowser(const HelpBook& book, QWidget* parent);

  void ShowPage(const std::string& page);

 protected:
  QVariant loadResource(int type, const QUrl& name) override;
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

 private:
  [[nodiscard]] QVariant Picture(const std::string& content) const;

  const HelpBook& mBook;
};

// The name of the page or picture at an address of the browser.
[[nodiscard]] std::string HelpPageName(const QUrl& address);

}  // namespace kv
