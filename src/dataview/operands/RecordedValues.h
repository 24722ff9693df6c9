#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// Values as the journal of changes has them: what the controller holds or gets, in one form however it was typed or
// told. Whole numbers in plain digits ("007" is 7), floats with as many digits as tell them from all others, times of
// all models as hh:mm:ss.cc. What is no value of the type stays as it is.
[[nodiscard]] std::vector<std::string> RecordedValues(OperandTypeCode type, std::string_view model,
                                                      std::vector<std::string> texts);

// The same of values as they were shown: a float with all 7 digits may have had more, and is "about 0.3333333".
[[nodiscard]] std::vector<std::string> RecordedAsShown(OperandTypeCode type, std::string_view model,
                                                       std::vector<std::string> texts);

}  // namespace kv::mdlDataTypesView
