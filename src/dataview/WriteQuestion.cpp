#include "dataview/WriteQuestion.h"

#include "base/Texts.h"

namespace kv::mdlDataTypesView {

MessageBox WriteQuestion(std::size_t values, const std::string& target) {
  return {.text = "Write " + Counted(values, "value") + " to " + target + "?",
          .icon = PromptIcon::Question,
          .buttons = PromptButtons::YesNo,
          .canLose = true};
}

}  // namespace kv::mdlDataTypesView
