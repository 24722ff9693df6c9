#include "KvTele2/HostCommands.h"

#include <array>

namespace kv {
namespace {

using namespace command;

constexpr HostCommand kSeparator{};

// clang-format off
constexpr std::array kFile{
    //          id                         text                                shortcut        what it does                                                               icon         tool bar
    HostCommand{"ID_PagesFile",            "&Open Telepanel File...",          "Ctrl+O",       "Opens the pages file of a project",                                       "open",      "Open"},
    HostCommand{kRecentPages,              "&Recent Telepanel Files",          "",             "Opens a pages file that was open before",                                 "pages",     ""},
    HostCommand{kSavePages,                "&Save Telepanel File...",          "Ctrl+S",       "Saves a pages file for the project of the controller that is on line",    "save",      ""},
    HostCommand{kClosePages,               "&Close Telepanel File",            "Ctrl+W",       "Closes the pages file, so that any project can go on line",                "delete",    ""},
    kSeparator,
    HostCommand{kOpenCache,                "Import &Fonts and Images...",      "",             "Opens a colour cache file with the fonts and images of a controller",     "images",    ""},
    HostCommand{kRecentCaches,             "Recent Cac&he Files",              "",             "Opens a colour cache file that was opened or made before",                "recent",    ""},
    HostCommand{"ID_ImportCacheFromPLC",   "Import Cache from Co&ntroller...", "",             "Reads the fonts and images of a colour controller into a cache file",     "cache",     ""},
    kSeparator,
    HostCommand{"ID_Session",              "S&essions...",                     "Ctrl+E",       "Creates, activates and deletes sessions",                                 "session",   "Sessions"},
    kSeparator,
    HostCommand{kExit,                     "E&xit",                            "Ctrl+Q",       "Leaves the program",                                                      "exit",      ""},
};
constexpr std::array kController{
    HostCommand{kOnLine,                   "&On Line",                         "F5",           "Connects to the controller and identifies it",                            "online",    "On Line"},
    HostCommand{kOffLine,                  "O&ff Line",                        "Shift+F5",     "Lets go of the controller",                                               "offline",   "Off Line"},
    HostCommand{kTakeModel,                "Ta&ke Over the Model",             "",             "Selects the model of the controller that answered, goes on line anew",     "take",      ""},
    HostCommand{kSimulate,                 "Try a &Simulated K670",            "",             "Goes on line with a simulated controller, in a session of its own",       "simulate",  ""},
    kSeparator,
    HostCommand{kModel,                    "&Model",                           "",             "Selects the model of the controller",                                     "model",     ""},
    kSeparator,
    HostCommand{kComParams,                "&Communication Settings...",       "Ctrl+K",       "Chooses the link to the controller: port, address, unit id, time-outs",   "link",      "Link"},
    HostCommand{"ID_Modem",                "Mo&dem Settings...",               "",             "Number and dialling of the modem",                                        "modem",     ""},
    HostCommand{kTrace,                    "&Trace of the Link...",            "Ctrl+T",       "Shows everything that passes on the link, with its time",                 "trace",     ""},
};
constexpr std::array kPanel{
    HostCommand{kOperate,                  "&Operate...",                      "F9",           "Lets you press what is on the controller's screen, after a question",     "hand",      "Operate"},
    HostCommand{kViewOnly,                 "&View Only",                       "Shift+F9",     "Ends operating: nothing that is pressed leaves the program any more",     "eye",       ""},
    kSeparator,
    HostCommand{kScale,                    "&Scale",                           "",             "How large the dots of the screen are shown",                              "scale",     ""},
    HostCommand{kFullScreen,               "&Full Screen",                     "F11",          "Shows the panel alone on the whole screen; Esc leads back",               "fullscreen", ""},
    kSeparator,
    HostCommand{kCopyPicture,              "&Copy Picture",                    "Ctrl+Shift+P", "Puts the picture of the screen onto the clipboard",                       "copy",      ""},
    HostCommand{kSavePicture,              "Save &Picture...",                 "Ctrl+Shift+S", "Saves the picture of the screen as a PNG file",                           "save",      ""},
    HostCommand{kCopyTexts,                "Copy &Texts",                      "Ctrl+Shift+T", "Puts the texts on the screen onto the clipboard, or those selected",      "copy",      ""},
    HostCommand{kFindText,                 "F&ind Text...",                    "Ctrl+F",       "Looks for a text on the screen",                                          "search",    ""},
};
constexpr std::array kView{
    HostCommand{kTheme,                    "&Theme",                           "",             "Light or dark colours, or those of the system",                           "theme",     ""},
};
constexpr std::array kTools{
    HostCommand{kOperandView,              "&Operand View...",                 "Ctrl+D",       "Shows and writes the operands of the controller",                         "datatypes", "Operand View"},
    HostCommand{"ID_Downloader",           "&Downloader...",                   "Ctrl+L",       "Loads projects and operating systems into the controller",                "download",  "Downloader"},
    HostCommand{"ID_DumpPLC",              "&Cloner...",                       "Ctrl+B",       "Creates a clone file of the whole controller, or restores one",           "clone",     "Cloner"},
    HostCommand{"ID_Journal",              "Change &Journal...",               "Ctrl+J",       "Shows who changed what in which controller, and whether it is all there", "journal",   ""},
    HostCommand{"ID_PLC_DB",               "&Panel Design...",                 "",             "Opens the editor for panel designs",                                      "panel",     ""},
    kSeparator,
    HostCommand{"ID_PID_Srv",              "P&ID Server",                      "",             "Starts the PID Server",                                                   "pid",       ""},
    HostCommand{"ID_DownloadDesigner",     "Download Desi&gner",               "",             "Starts the Download Designer for the selected model",                     "designer",  ""},
};
constexpr std::array kUser{
    HostCommand{"ID_LogIn",                "Log &In...",                       "Ctrl+U",       "Tells the tools who works with them",                                     "login",     "Log In"},
    HostCommand{kLogOff,                   "Log &Off",                         "Ctrl+Shift+U", "Forgets the user and the password",                                       "logoff",    "Log Off"},
};
constexpr std::array kLog{
    HostCommand{kCopyLog,                  "&Copy",                            "Ctrl+Shift+C", "Copies the selected entries of the log, or all of them",                  "copy",      ""},
    HostCommand{kClearLog,                 "C&lear",                           "",             "Empties the log",                                                         "delete",    ""},
};
constexpr std::array kHelp{
    HostCommand{"ID_Help",                 "&Help",                            "F1",           "Opens the help",                                                          "help",      "Help"},
    HostCommand{"ID_About",                "&About Telepanel...",              "Ctrl+F1",      "Version, addresses, and a report for the support",                        "about",     "About"},
};
// clang-format on

constexpr std::array<HostMenu, 8> kMenus{{
    {"&File", kFile},
    {"&Controller", kController},
    {"&Panel", kPanel},
    {"&View", kView},
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
