#include "KvTele2/ui/HostLibrary.h"

#include "KvTele2/ui/frmMain.h"

namespace kv {
namespace {

// The window goes first: on its way out it still asks the host, which only keeps a reference to the window.
struct Host {
  explicit Host(const HostLibraryParts& parts)
      : host(window, {parts.pacer, parts.clock, parts.prompts, parts.installFolder}),
        window(parts.pacer, parts.windowsFile) {
    window.SetHost(host);
  }

  TelepanelHost host;
  frmMain window;
};

}  // namespace

std::shared_ptr<RemoteHost> MakeTelepanelHost(const HostLibraryParts& parts) {
  const auto made = std::make_shared<Host>(parts);
  return {made, &made->host};
}

}  // namespace kv
