#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

#include "desktop/Pacer.h"
#include "download/DownloadFamily.h"
#include "download/OsNumber.h"
#include "link/Channel.h"
#include "link/LinkError.h"

namespace kv {

// What a controller answers when it is asked who it is.
struct FoundController {
  VersionInfo version;
  Channel::ControllerInfo info;

  // "4.60 (B19)", UTF-8, whichever way the controller reports it.
  [[nodiscard]] std::string OsText() const;
  // The same as a number; nothing when it is none, or what is reported is that of the boot loader.
  [[nodiscard]] std::optional<OsNumber> Os() const;
  // " in place of 4.60", for records; empty in the boot loader, which tells of no O/S.
  [[nodiscard]] std::string ReplacedText() const;
  // Name of the project that it holds, UTF-8; empty when there is none.
  [[nodiscard]] std::string ProjectText() const;
};

// Version and build as they are reported, whatever reports them.
[[nodiscard]] std::optional<OsNumber> OsNumberOf(const VersionInfo& version);

// By its state: the boot loaders' own names differ, and some are models' names.
[[nodiscard]] inline bool IsBootLoader(const FoundController& controller) {
  return controller.info.state == 'B';
}

// Only reads.
[[nodiscard]] std::expected<FoundController, LinkError> FindController(Channel& link);

// The same for a controller that was told to reset: asks until it answers, for half a minute at most, opening the link
// again where it was lost. Fails with code OtherController when the serial number is not `serialNumber`, with Stopped
// when the user asked the pacer for it, else with the error of the last try.
[[nodiscard]] std::expected<FoundController, LinkError> FindAfterReset(Channel& link, Pacer& pacer,
                                                                       std::uint32_t serialNumber);

// ControllerText (clone/RestoreCheck.h) of it, for questions and headings. Of a boot loader, which says little more
// than "BOOT", also the model in which it runs, as far as that can be told.
[[nodiscard]] std::string ControllerNameOf(const FoundController& controller, DownloadFamily family,
                                           const std::string& link);
// The same without serial number and link: "BOOT (boot loader of a K220-22)". Windows-1252, as a model is reported.
[[nodiscard]] std::string ControllerModelOf(const FoundController& controller, DownloadFamily family);

// That it is of another model than the selected one, a sentence, UTF-8; empty when it is not, or none is known to be
// selected.
[[nodiscard]] std::string OtherModelWarning(const FoundController& controller, const std::string& selected);

// What to do with a controller that is found in its boot loader or half loaded, a sentence or two, UTF-8; empty in
// every other state.
[[nodiscard]] std::string StateAdvice(const FoundController& controller);

}  // namespace kv
