#include "dataview/ui/ViewMenus.h"

#include <array>

namespace kv::mdlDataTypesView {
namespace {

using namespace command;

constexpr ViewCommand kSeparator{};

// clang-format off
constexpr std::array kFile{
    //       id                     text                                shortcut        what it does                                                          icon         band
    ViewCommand{"ID_NewRegions",       "&New Regions",                     "Ctrl+N",       "Empties the regions table and clears all values",                    "new",       "New"},
    ViewCommand{"ID_LoadRegions",      "&Load Regions...",                 "Ctrl+O",       "Loads a region file",                                                "open",      "Load"},
    ViewCommand{"ID_SaveRegions",      "&Save Regions...",                 "Ctrl+S",       "Saves the regions to a region file",                                 "save",      "Save"},
    kSeparator,
    ViewCommand{"ID_Export",           "&Export All values to Excel...",   "Ctrl+E",       "Writes the values of the operand grid to a spreadsheet",             "export",    ""},
    ViewCommand{"ID_Import",           "&Import All values from Excel...", "Ctrl+I",       "Takes values for the operand grid from a spreadsheet",               "import",    ""},
    ViewCommand{"ID_ExportToCSV",      "Export to &CSV...",                "Ctrl+Shift+E", "Writes the values of the operand grid to a text file",               "table",     ""},
    ViewCommand{"ID_ImportFromCSV",    "Import from CS&V...",              "Ctrl+Shift+I", "Takes values for the operand grid from a text file",                 "table",     ""},
    kSeparator,
    ViewCommand{kClose,                "Cl&ose",                           "Ctrl+W",       "Ends watching, keeps both grids in the session and closes",           "exit",      ""},
};
constexpr std::array kEdit{
    ViewCommand{kUndo,                 "&Undo",                            "Ctrl+Z",       "Takes the last change of the grids back",                            "undo",      "Undo"},
    ViewCommand{kRedo,                 "&Redo",                            "Ctrl+Y",       "Makes the change again that was taken back",                         "redo",      "Redo"},
    kSeparator,
    ViewCommand{kCut,                  "Cu&t",                             "Ctrl+X",       "Copies the selected values and clears those that can be written",    "cut",       "Cut"},
    ViewCommand{kCopy,                 "&Copy",                            "Ctrl+C",       "Copies the selected values to the clipboard",                        "copy",      "Copy"},
    ViewCommand{kPaste,                "&Paste",                           "Ctrl+V",       "Puts values from the clipboard into the selected cells",             "paste",     "Paste"},
    ViewCommand{kClear,                "Cl&ear",                           "",             "Clears the selected values that can be written (Del)",               "delete",    ""},
    kSeparator,
    ViewCommand{kGoTo,                 "&Go To...",                        "Ctrl+G",       "Moves the cursor to an operand: a type and an address, or either",   "search",    ""},
};
constexpr std::array kRegions{
    ViewCommand{kAddRegion,            "&Add",                             "Ctrl+R",       "Makes regions of the cells that are selected in the operand grid",   "add",       "Add"},
    ViewCommand{kRemoveRegion,         "&Remove",                          "Ctrl+Shift+R", "Removes the regions that are selected in the regions table",         "remove",    "Remove"},
};
constexpr std::array kController{
    ViewCommand{kOnLine,               "&Watch",                           "F9",           "Reads all regions again and again, and marks what changes",          "online",    "Watch"},
    kSeparator,
    ViewCommand{"ID_ReadRegions",      "&Read Regions",                    "F5",           "Reads all regions from the controller",                              "read",      "Read"},
    ViewCommand{"ID_WriteRegions",     "&Write Regions",                   "F8",           "Writes the values of all regions to the controller",                 "write",     "Write"},
    kSeparator,
    ViewCommand{"ID_ReadAll",          "Read &All",                        "Ctrl+F5",      "Reads every operand of the controller; the grids stay as they are",  "readall",   "Read All"},
    ViewCommand{"ID_WriteAll",         "Write A&ll",                       "Ctrl+F8",      "Writes every value in the operand grid to the controller",           "writeall",  "Write All"},
    ViewCommand{"ID_TakeAllValues",    "&Show All Read Values",            "Ctrl+Shift+A", "Puts the values of the last Read All into the operand grid",         "table",     "Show All"},
};
constexpr std::array kViewMenu{
    ViewCommand{kHideRows,             "&Hide Rows",                       "Ctrl+H",       "Hides the selected rows of the operand grid",                        "hide",      ""},
    ViewCommand{kShowRows,             "&Show Hidden Rows",                "Ctrl+Shift+H", "Shows all rows of the operand grid again",                           "table",     ""},
    kSeparator,
    ViewCommand{kWider,                "&Wider Columns",                   "Ctrl++",       "Makes the columns of the operand grid wider",                        "add",       ""},
    ViewCommand{kNarrower,             "&Narrower Columns",                "Ctrl+-",       "Makes the columns of the operand grid narrower",                     "remove",    ""},
};
constexpr std::array kHelpMenu{
    ViewCommand{kHelp,                 "&Help",                            "F1",           "Opens the help at this view",                                        "help",      ""},
};
// clang-format on

constexpr std::array<ViewMenu, 6> kMenus{{
    {"&File", kFile},
    {"&Edit", kEdit},
    {"&Regions", kRegions},
    {"&Controller", kController},
    {"&View", kViewMenu},
    {"&Help", kHelpMenu},
}};

constexpr std::array<std::string_view, 9> kRegionBand{kAddRegion, kRemoveRegion,    "ID_NewRegions",
                                                      "",         "ID_ReadRegions", "ID_WriteRegions",
                                                      "",         "ID_LoadRegions", "ID_SaveRegions"};
constexpr std::array<std::string_view, 10> kOperandBand{
    "ID_ReadAll", "ID_WriteAll", "ID_TakeAllValues", "", kUndo, kRedo, "", kCut, kCopy, kPaste};
constexpr std::array<std::string_view, 9> kPopup{kAddRegion, "", kCut, kCopy, kPaste, kClear, "", kHideRows, kShowRows};

constexpr std::array<std::string_view, 8> kRegionPopup{kOnLine, "ID_ReadRegions", "ID_WriteRegions", "", kRemoveRegion,
                                                       "",      "ID_LoadRegions", "ID_SaveRegions"};

}  // namespace

std::span<const ViewMenu> ViewMenus() {
  return kMenus;
}

std::span<const std::string_view> RegionBandTools() {
  return kRegionBand;
}

std::span<const std::string_view> OperandBandTools() {
  return kOperandBand;
}

std::span<const std::string_view> PopupTools() {
  return kPopup;
}

std::span<const std::string_view> RegionPopupTools() {
  return kRegionPopup;
}

}  // namespace kv::mdlDataTypesView
