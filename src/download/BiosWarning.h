#pragma once

#include <string_view>

namespace kv {

// The warning that an O/S may erase the project, in the words of window and terminal. UTF-8.
inline constexpr std::string_view kBiosWarningTitle = "Warning";
inline constexpr std::string_view kBiosMightErase =
    "Note that completing this action might erase the project currently installed in the PLC.";
inline constexpr std::string_view kBiosSaveFirst =
    "If you have not backed up this project, you may wish to stop, upload and save this project before completing this "
    "action.";
inline constexpr std::string_view kBiosContinue = "Continue without saving project ?";

}  // namespace kv
