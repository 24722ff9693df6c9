#include "KvCmDrv1/ProtocolClient.h"

#include "base/Texts.h"

// Why an exchange ended without an answer, in words.

namespace kv {
namespace {

LinkError MakeError(LinkErrorCode code, std::string happened, std::string cause, std::string cure) {
  LinkError error;
  error.code = code;
  error.happened = std::move(happened);
  error.cause = std::move(cause);
  error.cure = std::move(cure);
  return error;
}

// "1.5 s", "0.05 s": to the hundredth.
std::string Seconds(Duration span) {
  const auto hundredths = (span.count() + 5000) / 10000;
  std::string text = std::to_string(hundredths / 100) + "." + std::to_string(hundredths % 100 / 10);
  if (hundredths % 10 != 0) text += std::to_string(hundredths % 10);
  return text + " s";
}

}  // namespace

std::optional<LinkError> ProtocolClient::Refuse() const {
  using enum LinkErrorCode;
  if (mIsUnderWay) {
    return MakeError(Busy, "another request is under way", "two tools work on the link at once",
                     "wait until the other operation has ended");
  }
  if (mIsOtherController) return Explain(ExchangeOutcome::OtherController);
  if (mIsShut) return Explain(ExchangeOutcome::Closed);
  if (mPacer.StopRequested()) return Explain(ExchangeOutcome::Stopped);
  return std::nullopt;
}

// What silence may come from, and what to look at: only where there is a line with a speed is it the speed.
LinkError ProtocolClient::ExplainSilence(const std::string& happened, const std::string& andWhence) const {
  const bool hasSpeed = mLine.GetPort().ByteTime() > Duration{};
  const std::string settings = hasSpeed ? "unit id or line speed" : "unit id";
  return MakeError(LinkErrorCode::NoReply, happened,
                   "the controller is switched off, is not connected, or has another " + settings + andWhence,
                   std::string("check cable and power, and ") + (hasSpeed ? "unit id and speed" : "the unit id") +
                       " in the communication settings");
}

LinkError ProtocolClient::Explain(ExchangeOutcome outcome, const Effort& spent) const {
  using enum LinkErrorCode;
  const int tries = spent.tries > 0 ? spent.tries : mSettings.tries;
  const std::string effort =
      Counted(static_cast<std::uint64_t>(tries), "try", "tries") + " (" + Seconds(mPacer.Now() - spent.start) + ")";
  switch (outcome) {
    case ExchangeOutcome::Done:
      return {};
    case ExchangeOutcome::Silence:
      return ExplainSilence("no reply after " + effort, "");
    case ExchangeOutcome::Stray:
      return ExplainSilence("no reply after " + effort + ", only a few stray bytes",
                            "; the bytes are those of a transmitter that switches on, or of another device");
    case ExchangeOutcome::Foreign:
      return MakeError(NoReply, "no reply after " + effort + ", only messages that answer something else",
                       "another device or program talks on this line, an adapter echoes, the unit id is another one, "
                       "or the controller takes longer than the time-out",
                       "end what else uses this line; check unit id and time-out in the communication settings");
    case ExchangeOutcome::Incomplete:
      return MakeError(Damaged, "no reply ended after " + effort + ", the last one stopped in the middle",
                       "a connection that pauses for longer than the time-out, or a line that loses bytes",
                       "set a longer time-out in the communication settings; check the cable of a serial line");
    case ExchangeOutcome::Damaged:
      return MakeError(
          Damaged, "no reply arrived whole after " + effort,
          "a disturbed line, a wrong line speed, or another device on the same line",
          "check the cable and its shield, and the speed in the communication settings; a lower speed may help");
    case ExchangeOutcome::Lost:
    case ExchangeOutcome::CannotReopen:
      return MakeError(LinkLost, "the connection was lost: " + mLoss.happened, mLoss.cause, mLoss.cure);
    case ExchangeOutcome::NotExecuted: {
      LinkError error = MakeError(LinkLost, "the connection was lost, and the controller has not executed the request",
                                  mLoss.cause, "do it again; the connection stands again");
      error.isNotExecuted = true;
      return error;
    }
    case ExchangeOutcome::Stopped:
      return MakeError(Stopped, "stopped on request", "", "");
    case ExchangeOutcome::Closed:
      return MakeError(Closed, "the link is closed", "the driver was closed, or the link settings were changed",
                       "start the operation again");
    case ExchangeOutcome::NotIdentified:
      return MakeError(Busy, "the controller does not say who it is", "it is starting, or too busy to answer",
                       "try again in a few seconds");
    case ExchangeOutcome::OtherController:
      return MakeError(
          OtherController, "another controller answered: " + mOtherName,
          "the cable was moved, or the address now belongs to another controller",
          mSettings.serialNumber
              ? "connect the right controller, or change the serial number that the link is set to, in the "
                "communication settings or with --serial-number"
              : "connect the right controller, or go on line again to work with this one");
    case ExchangeOutcome::Unsure:
      return MakeError(
          Unsure, "the request was sent, but whether it was executed could not be found out",
          "the connection broke, the controller restarted, or another program works on it at the same time",
          "look at what it should have changed before doing it again");
    case ExchangeOutcome::NotRecorded:
      return mLine.Gate().Refusal();
    case ExchangeOutcome::NotSupported:
      return MakeError(NotSupported, "this controller understands text commands only",
                       "a controller of the compact family does not have this operation",
                       "use the tool that is made for this model");
  }
  return {};
}

}  // namespace kv
