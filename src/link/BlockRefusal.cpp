#include "link/BlockRefusal.h"

#include "link/ControllerErrorText.h"
#include "link/DownloadEngine.h"

namespace kv {

std::optional<LinkError> RefusalOf(int status) {
  if (status == kBlockDone || status == kBlockDoneProgramming || status == kBlockTakesEffectWithReset) return {};
  LinkError error;
  if (status != kBlockBusy && status <= kBlockRefused) {
    error.code = LinkErrorCode::Damaged;
    error.happened = "the controller's answer means nothing here (status " + std::to_string(status) + ")";
    error.cure = "keep the trace for an error report";
    return error;
  }
  const int code = status == kBlockBusy ? kBusyCode : status - kBlockRefused;
  const ControllerErrorMeaning meaning = ControllerErrorText(code);
  error.code = status == kBlockBusy ? LinkErrorCode::Busy : LinkErrorCode::Refused;
  error.controllerCode = code;
  error.happened = RefusedText(meaning, code);
  error.cure = meaning.cure;
  return error;
}

}  // namespace kv
