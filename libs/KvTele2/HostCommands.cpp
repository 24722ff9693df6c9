#include "KvTele2/HostCommands.h"

#include <array>

namespace kv {
namespace {

using namespace command;

constexpr HostCommand kSeparator{};

// clang-format off
constexpr std::array kFile{
    // id                        text                              icon        shortcut        what it does
    HostCommand{"ID_PagesFile",            "&Open Telepanel File...",        "open",     "Ctrl+O",       "Opens the pages file of a project", true},
    HostCommand{kRecentPages,              "&Recent Telepanel Files",        "pages",    "",             "Opens a pages file that was open before"},
    HostCommand{kSavePages,                "&Save Telepanel File...",        "save",     "Ctrl+S",       "Saves a pages file for the project of the controller that is on line"},
    HostCommand{kClosePages,               "&Close Telepanel File",          "delete",   "Ctrl+W",       "Closes the pages file, so that a controller with any project can go on line"},
    kSeparator,
    HostCommand{"ID_ImportFontsAndImages", "Import &Fonts and Images...",    "images",   "",             "Opens a colour cache file with the fonts and images of a controller"},
    HostCommand{"ID_ImportCacheFromPLC",   "Import Cache from Co&ntroller...", "cache",  "",             "Reads the fonts and images of a colour controller into a cache file"},
    kSeparator,
    HostCommand{"ID_Session",              "S&essions...",                   "session",  "Ctrl+E",       "Creates, activates and deletes sessions", true},
    kSeparator,
    HostCommand{kExit,                     "E&xit",                          "exit",     "Ctrl+Q",       "Leaves the program"},
};
constexpr std::array kController{
    HostCommand{kOnLine,                   "&On Line",                       "online",   "F5",           "Connects to the controller and identifies it", true},
    HostCommand{kOffLine,                  "O&ff Line",                      "offline",  "Shift+F5",     "Lets go of the controller", true},
    kSeparator,
    HostCommand{kModel,                    "&Model",                         "model",    "",             "Selects the model of the controller"},
    kSeparator,
    HostCommand{kComParams,                "&Communication Settings...",     "link",     "Ctrl+K",       "Chooses the link to the controller: port, address, unit id, time-outs", true},
    HostCommand{"ID_Modem",                "Mo&dem Settings...",             "modem",    "",             "Number and dialling of the modem"},
};
constexpr std::array kTools{
    HostCommand{"ID_DataTypes",            "&Operand View...",               "datatypes", "Ctrl+D",      "Shows and writes the operands of the controller", true},
    HostCommand{"ID_Downloader",           "&Downloader...",                 "download", "Ctrl+L",       "Loads projects and operating systems into the controller", true},
    HostCommand{"ID_DumpPLC",              "&Cloner...",                     "clone",    "Ctrl+B",       "Creates a clone file of the whole controller, or restores one", true},
    HostCommand{"ID_PLC_DB",               "&Panel Design...",               "panel",    "",             "Opens the editor for panel designs"},
    kSeparator,
    HostCommand{"ID_PID_Srv",              "P&ID Server",                    "pid",      "",             "Starts the PID Server"},
    HostCommand{"ID_DownloadDesigner",     "Download Desi&gner",             "designer", "",             "Starts the Download Designer for the selected model"},
};
constexpr std::array kUser{
    HostCommand{"ID_LogIn",                "Log &In...",                     "login",    "",             "Tells the tools who works with them"},
    HostCommand{kLogOff,                   "Log &Off",                       "logoff",   "",             "Forgets the user and the password"},
};
constexpr std::array kLog{
    HostCommand{kCopyLog,                  "&Copy",                          "copy",     "Ctrl+Shift+C", "Copies the selected entries of the log, or all of them"},
    HostCommand{kClearLog,                 "C&lear",                         "delete",   "",             "Empties the log"},
};
constexpr std::array kHelp{
    HostCommand{"ID_Help",                 "&Help",                          "help",     "F1",           "Opens the help", true},
    HostCommand{"ID_About",                "&About Telepanel...",            "about",    "",             "Version and addresses"},
};
// clang-format on

constexpr std::array<HostMenu, 6> kMenus{{
    {"&File", kFile},
    {"&Controller", kController},
    {"&Tools", kTools},
    {"&User", kUser},
    {"&Log", kLog},
    {"&Help", kHelp},
}};

}  // namespace

std::span<const HostMenu> HostMenus() {
  return kMenus;
}

}  // namespace kv
