#include <utility>

#include "download/DownloadOutcome.h"

namespace kv {

std::string_view LeftBehindText(ControllerLeft left) {
  switch (left) {
    case ControllerLeft::Untouched:
      return "Nothing was changed in the controller.";
    case ControllerLeft::Stopped:
      return "The controller's program was told to stop, and its project is the one that it had. Start it "
             "(\"Start Program\" in the Downloader, or \"kvtele run\"), or download again.";
    case ControllerLeft::ProjectBegun:
      return "The controller's program is stopped for a download that has not come to its end, and what it held before "
             "is still there. Download again; or switch it off and on, or start it (\"Start Program\" in the "
             "Downloader, "
             "or \"kvtele run\"), to go back to that.";
    case ControllerLeft::ProjectErased:
      return "The controller's old project is erased, and the new one is not whole; once it has restarted, it runs on "
             "that. Download a project again.";
    case ControllerLeft::ProjectUnproven:
      return "All of the new project was sent in place of the old one and not all of it was read back: whether the "
             "controller holds it as it was sent is not known; once it has restarted, it runs on that. Download the "
             "project again.";
    case ControllerLeft::Programming:
      return "The controller may still be programming its flash: if it loses its power now, it has no project any "
             "more. Wait a minute, then download again.";
    case ControllerLeft::FlashFailed:
      return "The controller's flash has failed while it programmed the new project; what is in it is not known, and "
             "once it has restarted, it runs on that. Download a project again; when it fails again, have the "
             "controller repaired.";
    case ControllerLeft::ProjectWaits:
      return "All of the new project is in the controller, and it runs once the controller has restarted. Switch the "
             "controller off and on, or download again.";
    case ControllerLeft::ProjectPerhaps:
      return "All of the new project was sent, and the controller was told to restart or did; what it runs now is not "
             "known. "
             "Identify it, and download again if it does not name the new project.";
    case ControllerLeft::BootLoader:
      return "The controller's boot loader runs, and its old O/S is still there. Download an O/S again, or switch the "
             "controller off and on to go back to the old one.";
    case ControllerLeft::BootLoaderAsFound:
      return "The controller's boot loader ran before the download, too, and nothing has been programmed. Download an "
             "O/S "
             "again; if there is still one in it, that starts when the controller is switched off and on.";
    case ControllerLeft::BootLoaderErased:
      return "The controller's boot loader runs, and there is no whole O/S in it. Download an O/S again: it cannot run "
             "before.";
    case ControllerLeft::BootLoaderUnsure:
      return "The controller's boot loader runs, and whether there is a whole O/S in it is not known. Switch the "
             "controller "
             "off and on, then identify it; if its boot loader runs again, download an O/S again.";
    case ControllerLeft::BootLoaderPerhaps:
      return "Whether the controller runs its boot loader now is not known. Identify it, then download an O/S again, "
             "or "
             "switch it off and on to go back to the old one.";
    case ControllerLeft::OsProgramming:
      return "The controller may still be programming the new O/S: if it loses its power now, there is no O/S in it "
             "any "
             "more. Do not switch it off; wait a few minutes, then identify it and download the O/S again.";
    case ControllerLeft::OsWaits:
      return "The new O/S is programmed and takes effect when the controller restarts. Switch it off and on, then "
             "identify it.";
    case ControllerLeft::OsPerhaps:
      return "The new O/S is programmed and the controller was told to restart; what it runs now is not known. "
             "Identify "
             "it; if it does not report the new O/S, switch it off and on.";
    case ControllerLeft::OldOs:
      return "The controller has the O/S that it had before. Download the new one again.";
    case ControllerLeft::SomeOs:
      return "An O/S runs in the controller, and nothing shows that it is the one of the file. Identify it, and "
             "download the new one again.";
    case ControllerLeft::NewOsLoading:
      return "The new O/S is in the controller, and its memory is not all written back. Its program is stopped, unless "
             "it has restarted since. Restore the clone that was made of it before.";
    case ControllerLeft::NewOs:
      return "The new O/S is in the controller.";
    case ControllerLeft::NewProject:
      return "The new project is in the controller.";
  }
  std::unreachable();
}

std::string OutcomeText(const DownloadOutcome& outcome) {
  if (outcome.end == DownloadEnd::Done) return outcome.done;
  if (outcome.end == DownloadEnd::WouldGoOn) return outcome.reason;
  return outcome.reason + (outcome.reason.empty() ? "" : "\n") + std::string(LeftBehindText(outcome.left));
}

}  // namespace kv
