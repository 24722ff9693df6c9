#pragma once

#include "desktop/Clipboard.h"
#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "desktop/WallClock.h"
#include "host/shared/SharedState.h"

namespace kv {
class clsHexSelector;
}

namespace kv::mdlDataTypesView {

// What the operand data view works with; all of it outlives the view.
struct DataTypesViewParts {
  SharedState& shared;
  Prompts& prompts;
  Pacer& pacer;
  Clipboard& clipboard;
  clsHexSelector& hexSelector;  // asks for the separator of CSV files
  const WallClock& clock;       // for the time of an error
};

}  // namespace kv::mdlDataTypesView
