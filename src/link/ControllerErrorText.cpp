#include "link/ControllerErrorText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/Hex.h"

namespace kv {
namespace {

// In the order of the codes, 01 first.
constexpr auto kMeanings = std::to_array<ControllerErrorMeaning>({
    {"it does not know the command",
     "check that the selected model is the connected one; an older controller may need a newer O/S"},
    {"the request is malformed",
     "check that the selected model is the connected one; if it happens again, keep the trace for an error report"},
    {"it has no operands of this type", "select the model that is connected, or remove the regions of this type"},
    {"the operand address or count is past the end of this type",
     "choose addresses below the number of operands that this model has"},
    {"the operand is read-only", "leave operands of this type out of what is written"},
    {"the value does not fit the operand", "enter a value within the range of the operand's type"},
    {"its password is needed first", "enter the controller's password and try again"},
    {"the password is wrong", "enter the password that was set in the controller; upper and lower case differ"},
    {"this is not possible in its present state",
     "bring the controller to the state that is needed (run, stop or boot loader), or restart it, and try again"},
    {"it is busy", "wait a few seconds and try again"},
    {"the memory address is outside the controller's memory",
     "use a file that was made from a controller of this model and with this O/S"},
    {"the kind of memory does not fit the address",
     "use a file that was made from a controller of this model and with this O/S"},
    {"its flash memory could not be erased or written",
     "try again; if it happens again, the controller's flash is worn out and it has to be repaired"},
    {"this model does not have this function", "select the model that is connected, or do without this function"},
    {"the data do not belong together or are for another model",
     "check that the file is made for this model, and start the whole operation again"},
});

constexpr ControllerErrorMeaning kUnknown = {
    "it gave a code that this program does not know",
    "a newer version of this program may know it; keep the trace for an error report"};

constexpr ControllerErrorMeaning kNotOfPanel = {
    "it did not take the input at its panel",
    "look at the screen, and press once more; if it happens again, keep the trace for an error report"};

}  // namespace

ControllerErrorMeaning ControllerErrorText(int code) {
  if (code < 1 || code > static_cast<int>(kMeanings.size())) return kUnknown;
  return kMeanings[static_cast<std::size_t>(code - 1)];
}

ControllerErrorMeaning PanelErrorText(int code) {
  constexpr auto kOfOthers = std::to_array({0x03, kPastEndCode, 0x05, 0x06, 0x0B, 0x0C, 0x0D, 0x0F});
  return std::ranges::find(kOfOthers, code) != kOfOthers.end() ? kNotOfPanel : ControllerErrorText(code);
}

std::string RefusedText(const ControllerErrorMeaning& meaning, int code) {
  return "the controller refused: " + std::string(meaning.meaning) + " (code " +
         ToHex(static_cast<std::uint32_t>(code), 2) + ")";
}

}  // namespace kv
