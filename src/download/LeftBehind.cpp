#include <utility>

#include "download/DownloadOutcome.h"

namespace kv {

std::string_view LeftBehindText(ControllerLeft left) {
  switch (left) {
    case ControllerLeft::Untouched:
      return "Nothing was changed in the controller.";
    case ControllerLeft::Stopped:
      return "The controller's program is stopped, and its project is the one it had. Start it with \"kvtele run\", or "
             "download again.";
    case ControllerLeft::ProjectBegun:
      return "A project download is under way in the controller and its program is stopped. Download a project again, "
             "or restore a clone.";
    case ControllerLeft::ProjectErased:
      return "The controller's old project is erased, and the new one is not whole. Download a project again, or "
             "restore a clone.";
    case ControllerLeft::Programming:
      return "The controller may still be programming its flash. Do not switch it off; wait a few minutes, then "
             "identify it, and download again.";
    case ControllerLeft::ProjectWaits:
      return "The new project is in the controller and takes effect when it restarts. Restart the controller, or "
             "download again.";
    case ControllerLeft::BootLoader:
      return "The controller's boot loader runs, and its old O/S is still there. Download an O/S again, or switch the "
             "controller off and on to go back to the old one.";
    case ControllerLeft::BootLoaderErased:
      return "The controller's boot loader runs, and there is no whole O/S in it. Download an O/S again: it cannot run "
             "before.";
    case ControllerLeft::BootLoaderPerhaps:
      return "Whether the controller runs its boot loader now is not known. Identify it, then download an O/S again, "
             "or "
             "switch it off and on to go back to the old one.";
    case ControllerLeft::OsWaits:
      return "The new O/S is programmed and takes effect when the controller restarts. Switch it off and on, then "
             "identify it.";
    case ControllerLeft::NewOs:
      return "The new O/S is in the controller.";
    case ControllerLeft::NewProject:
      return "The new project is in the controller.";
  }
  std::unreachable();
}

}  // namespace kv
