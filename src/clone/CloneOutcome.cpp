#include "clone/CloneOutcome.h"

namespace kv {

CloneOutcome CloneOutcome::OfLink(const LinkError& error) {
  CloneOutcome outcome = Failed(CloneCause::Link, error.Text());
  outcome.link = error;
  if (error.code == LinkErrorCode::Stopped) {
    outcome.end = CloneEnd::Stopped;
    outcome.cause = CloneCause::Stop;
  }
  return outcome;
}

CloneOutcome CloneOutcome::OfStop() {
  return {CloneEnd::Stopped, CloneCause::Stop, "Stopped by the user.", {}};
}

}  // namespace kv
