#include "dataview/WriteQuestion.h"

namespace kv::mdlDataTypesView {

MessageBox WriteQuestion(std::size_t values, const std::string& target) {
  return {.text = "Write " + std::to_string(values) + (values == 1 ? " value" : " values") + " to " + target + "?",
          .icon = PromptIcon::Question,
          .buttons = PromptButtons::YesNo,
          .canLose = true};
}

}  // namespace kv::mdlDataTypesView
