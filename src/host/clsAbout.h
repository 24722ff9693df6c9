#pragma once

#include <string>
#include <string_view>

#include "desktop/Shell.h"

namespace kv {

// The edition of a distributor, as the tools' argument names it.
inline constexpr std::string_view kDistributorEdition = "USER_RBK";

// How the about screen looks.
struct AboutScreen {
  std::string caption;
  std::string version;  // "Version 1.0.0"
  int width = 0;        // in twips, 1440 to the inch
  int height = 0;
  bool showsDistributor = false;  // its two controls
};

// The about screen's rules: which form it takes, and what its addresses open. A place that cannot be opened is not
// reported: the user sees that nothing opens, and the address can be read.
class clsAbout {
 public:
  // `shell` outlives it; `edition` is the argument of the tool.
  clsAbout(Shell& shell, std::string_view edition) : mShell(shell), mIsDistributor(edition == kDistributorEdition) {}

  // The version to show, "1.0.0".
  std::string VersionSettings;

  // Prepares the screen; to be called when the version is set.
  void InitAboutScreen();
  [[nodiscard]] const AboutScreen& Screen() const { return mScreen; }

  void OpenKorvantisWebSite() { Open(kWebSite); }
  void OpenWebSiteRBK() { Open(kDistributorSite); }
  void OpenAurexWebSite() { Open(kProductPage); }
  void WriteToSupport() { Write(kSupport); }
  void WriteToExport() { Write(kExport); }

  static constexpr std::string_view kSupport = "support@korvantis.example";
  static constexpr std::string_view kExport = "export@korvantis.example";
  static constexpr std::string_view kWebSite = "https://www.korvantis.example/";
  static constexpr std::string_view kProductPage = "https://www.korvantis.example/aurex/colour";
  static constexpr std::string_view kDistributorSite = "https://www.rbk.example/";

 private:
  void Open(std::string_view address) { (void)mShell.Open("open", address, ""); }
  void Write(std::string_view address) { Open("mailto:" + std::string(address)); }

  Shell& mShell;
  bool mIsDistributor;
  AboutScreen mScreen;
};

}  // namespace kv
