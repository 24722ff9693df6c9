#include <algorithm>

#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/FrameMeaning.h"
#include "KvCmDrv1/LinkText.h"
#include "KvCmDrv1/wire/Seal.h"
#include "base/AnsiText.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "link/AsciiFrame.h"
#include "link/ControllerErrorText.h"

namespace kv {
namespace {

// How long opening may take, by what has to happen.
Duration OpenLimit(const LinkSettings& settings) {
  using namespace std::chrono_literals;
  switch (settings.transport) {
    case Transport::Simulated:
      return 1s;
    case Transport::Tcp:
      return 5s;
    case Transport::Serial:
      return 3s;
    case Transport::Modem:
      return settings.modem.dialTimeOut + 15s;  // reset and init before it
    case Transport::Listen:
      return 30s;  // a controller dials in every few seconds
  }
  return 1s;
}

// The name of serial port `number`, beside the one in the settings: COM3 -> COM5, /dev/ttyS3 -> /dev/ttyS5.
std::string WithPortNumber(std::string name, int number) {
  while (!name.empty() && name.back() >= '0' && name.back() <= '9') name.pop_back();
  return name + std::to_string(number);
}

std::string WithUnit(const std::string& what, std::uint8_t unit) {
  return what + " unit " + std::to_string(unit);
}

}  // namespace

ChannelImpl::ChannelImpl(Pacer& pacer, std::shared_ptr<Trace> trace, const LinkSettings& settings, MakePortOf makePort,
                         Say say)
    : mPacer(pacer),
      mTrace(std::move(trace)),
      mSettings(settings),
      mMakePort(std::move(makePort)),
      mSay(std::move(say)),
      mLine(pacer, *mTrace, mMakePort(settings)),
      mClient(pacer, mLine, {}, [this](const std::string& message) { Tell(message); }),
      mRawPort(pacer, mLine,
               [this](ExchangeOutcome outcome, const RawTraffic& traffic) { OnRawOutcome(outcome, traffic); }),
      mBlockEngine(*this),
      mPanel(*this) {
  ConfigureClient();
}

void ChannelImpl::ConfigureClient() {
  // A modem that lost its call is not dialled again in the middle of a request: that costs minutes, and money.
  const bool reconnects = mSettings.reconnects && mSettings.transport != Transport::Modem;
  mClient.Configure({.timeOut = mSettings.timeOut,
                     .tries = mSettings.tries,
                     .reconnects = reconnects,
                     .unit = mSettings.unit,
                     .serialNumber = mSettings.serialNumber});
}

bool ChannelImpl::Open() {
  if (mClient.IsOtherController() || mIsRetired) {
    Fail(mClient.Explain(mIsRetired ? ExchangeOutcome::Closed : ExchangeOutcome::OtherController), "opening the link");
    return false;
  }
  if (mLine.IsOpen()) return true;
  if (const auto opened = OpenLine(); !opened) {
    Fail(opened.error(), "opening the link");
    return false;
  }
  mClient.Reopened();
  Tell("Connected to " + DescribeLink(mSettings));
  Succeed();
  return true;
}

// A port that partners call is open when the controller that is meant is there: the handshake follows at once.
std::expected<void, LinkError> ChannelImpl::OpenLine() {
  const Duration limit = OpenLimit(mSettings);
  if (mLine.GetPort().IsCalled()) return mClient.AwaitCaller(mSettings.unit, limit);
  const auto opened = mLine.Open(limit);
  if (opened) return {};
  LinkError error;
  error.code = mLine.StopAsked() ? LinkErrorCode::Stopped : LinkErrorCode::CannotOpen;
  error.happened = opened.error().happened;
  error.cause = opened.error().cause;
  error.cure = opened.error().cure;
  return std::unexpected(std::move(error));
}

void ChannelImpl::Close() {
  const bool wasOpen = mLine.IsOpen();
  mLine.Close();
  mClient.Shut();
  mClient.ForgetUnits();
  if (wasOpen) Tell("Disconnected from " + DescribeLink(mSettings));
}

void ChannelImpl::Retire() {
  Close();
  mIsRetired = true;
  mSay = [](const std::string&) {};
}

std::optional<CommandReply> ChannelImpl::SendCommand(std::string_view command) {
  const std::uint8_t unit = mSettings.unit;
  const auto reply = mClient.SendText({unit, command, CommandFactsOf(command), std::nullopt});
  const bool isSecret = command.starts_with("GI") || command.starts_with("AC");
  if (isSecret) mClient.WipeRequest();
  if (!reply) {
    Fail(reply.error(), WithUnit("sending " + std::string(command.substr(0, isSecret ? 2 : 20)) + " to", unit));
    return std::nullopt;
  }
  Succeed();
  CommandReply result{std::string(*reply), ReadRefusal(*reply, command).value_or(0)};
  if (command.size() == 2 + kLongestPassword && command.starts_with("GI") && reply->starts_with("GI1")) {
    const std::string_view password = command.substr(2);
    mClient.Unit(unit).password = Secret(password.substr(0, password.find_last_not_of(' ') + 1));
  }
  result.text += ToHex(AsciiChecksum(result.text), 2);
  return result;
}

void ChannelImpl::SetRecordFile(const std::string& path, int purpose) {
  constexpr int kConnection = 1;
  if (purpose != kConnection) return;
  mRecord.close();
  mRecord.clear();
  mRecord.open(PathFromUtf8(path), std::ios::binary | std::ios::trunc);
  mRecord << "Link: " << DescribeLink(mSettings) << "\r\n" << std::flush;
}

int ChannelImpl::TimeOut() const {
  return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(mSettings.timeOut).count());
}

void ChannelImpl::SetTimeOut(int milliseconds) {
  mSettings.timeOut =
      std::chrono::milliseconds(std::clamp<std::int64_t>(milliseconds, kTimeOuts.lowest, kTimeOuts.highest));
  ConfigureClient();
}

ComParams ChannelImpl::GetComParams() const {
  return {.link = PrintLink(mSettings), .baudRate = HasRate(mSettings) ? mSettings.baudRate : 0, .mode = mMode};
}

bool ChannelImpl::SetComParams(const ComParams& params) {
  const auto parsed = ParseLink(params.link, mSettings);
  if (!parsed) {
    FailArgument(parsed.error(), "setting the link parameters");
    return false;
  }
  LinkSettings settings = *parsed;
  if (params.baudRate > 0 && HasRate(settings))
    settings.baudRate = std::clamp(params.baudRate, kLowestBaudRate, kHighestBaudRate);
  mMode = params.mode;
  return UseSettings(settings);
}

bool ChannelImpl::OpenLink(int commPort, int baudRate) {
  const bool isSerial = HasRate(mSettings);
  LinkSettings settings = mSettings;
  if (isSerial && commPort > 0 && commPort != CommPort()) {
    settings.serialPort = WithPortNumber(settings.serialPort, commPort);
  }
  if (isSerial && baudRate > 0) settings.baudRate = std::clamp(baudRate, kLowestBaudRate, kHighestBaudRate);
  return UseSettings(settings) && Open();
}

bool ChannelImpl::UseSettings(const LinkSettings& settings) {
  if (settings == mSettings) return true;
  if (mIsRetired) return Open();  // says why not
  LinkSettings speedAside = settings;
  speedAside.baudRate = mSettings.baudRate;
  const bool isSpeedOnly = speedAside == mSettings;
  const bool wasOpen = mLine.IsOpen();

  // A change of the speed alone keeps the connection, and with it the access that was given on it.
  if (isSpeedOnly && wasOpen && mLine.GetPort().SetBaudRate(settings.baudRate)) {
    mSettings = settings;
    mClient.LoseSynchronisation();
    return true;
  }
  if (!isSpeedOnly) Close();
  mSettings = settings;
  mLine.Replace(mMakePort(mSettings));
  ConfigureClient();
  return !wasOpen || Open();
}

bool ChannelImpl::StopController(std::uint8_t unit) {
  return Control("CCS", "stopping", unit);
}

bool ChannelImpl::RunController(std::uint8_t unit) {
  return Control("CCR", "starting the program of", unit);
}

bool ChannelImpl::ResetController(std::uint8_t unit) {
  return Control("CCE", "resetting", unit);
}

bool ChannelImpl::Control(std::string_view command, const char* verb, std::uint8_t unit) {
  const auto doing = [&] { return WithUnit(verb, unit); };
  const auto reply = Ask({unit, command, CommandFactsOf(command), std::nullopt}, doing);
  if (!reply) return false;
  if (*reply != "CCOK") {
    FailMalformed(doing());
    return false;
  }
  Succeed();
  return true;
}

std::optional<VersionInfo> ChannelImpl::GetVersionInfo(std::uint8_t unit) {
  const auto doing = [unit] { return WithUnit("identifying", unit); };
  const auto reply = Ask({unit, "ID", CommandFactsOf("ID"), std::nullopt}, doing);
  if (!reply) {
    Tell(mError.Text());  // going on line ends here without a word of its own
    return std::nullopt;
  }
  std::optional<VersionInfo> version = ReadIdentification(*reply);
  if (!version) {
    FailMalformed(doing());
    Tell(mError.Text());
    return std::nullopt;
  }
  if (!Knows(mClient.Recognise(unit, *version), doing())) {
    Tell(mError.Text());
    return std::nullopt;
  }
  Succeed();
  return version;
}

bool ChannelImpl::GiveAccess(std::string_view password, std::uint8_t unit) {
  const auto doing = [unit] { return WithUnit("giving the password to", unit); };
  if (password.size() > kLongestPassword) {
    FailArgument("the password has more than " + std::to_string(kLongestPassword) + " characters", doing());
    return false;
  }
  const std::uint16_t tag = mClient.NextTag();
  const auto reply =
      Ask({unit, mWriter.GiveAccess(unit, tag, password), TaggedRead(kAccessReply), std::nullopt}, doing);
  mWriter.WipeText();
  mClient.WipeRequest();
  if (!reply) return false;
  if (!ReadsAccessGiven(*reply, tag)) {
    FailMalformed(doing());
    return false;
  }
  mClient.Unit(unit).password = Secret(password);
  Succeed();
  return true;
}

bool ChannelImpl::EnsureAccess(std::uint8_t unit) {
  const auto doing = [unit] { return WithUnit("getting access to", unit); };
  const std::expected<int, LinkError> refusal = mClient.EnsureAccess(unit);
  if (!refusal) {
    Fail(refusal.error(), doing());
    return false;
  }
  if (*refusal != 0) {
    FailRefused(*refusal, doing());
    return false;
  }
  Succeed();
  return true;
}

void ChannelImpl::UsePasswords(PasswordSource* source) {
  mPasswords = source;
  if (!source) return mClient.SetPasswordAsker(nullptr);
  mClient.SetPasswordAsker([this](std::uint8_t unit, bool wasWrong) {
    const std::optional<Identity>& identity = mClient.Unit(unit).identity;
    LinkSettings link = mSettings;
    link.unit = unit;
    return mPasswords->Password({.controller = identity ? NameOf(*identity) : "The controller",
                                 .link = DescribeLink(link),
                                 .wasWrong = wasWrong});
  });
}

void ChannelImpl::ObserveChanges(ChangeObserver* observer) {
  mLine.Gate().SetObserver(observer, [this](std::string_view bytes) {
    LinkSettings link = mSettings;
    link.unit = UnitOfRequest(bytes);
    const UnitState& unit = mClient.Unit(link.unit);
    ChangeRequest request{.meaning = FrameMeaning(bytes), .controller = {}, .link = DescribeLink(link)};
    if (unit.identity) request.controller.model = AnsiToUtf8(unit.identity->version.model);
    if (unit.identity) request.controller.serialNumber = unit.identity->serialNumber;
    request.controller.project = AnsiToUtf8(unit.project);
    return request;
  });
}

std::optional<Channel::ControllerInfo> ChannelImpl::GetControllerInfo(std::uint8_t unit) {
  const auto doing = [unit] { return WithUnit("asking for serial number and state of", unit); };
  const std::uint16_t tag = mClient.NextTag();
  const auto reply = Ask({unit, mWriter.Information(unit, tag), TaggedRead(kInformationReply), std::nullopt}, doing);
  if (!reply) return std::nullopt;
  std::optional<ControllerInfo> info = ReadInformation(*reply, tag);
  if (!info) {
    FailMalformed(doing());
    return std::nullopt;
  }
  if (!Knows(mClient.Recognise(unit, info->serialNumber), doing())) return std::nullopt;
  mClient.Unit(unit).project = info->projectName;
  Succeed();
  return info;
}

void ChannelImpl::Succeed() {
  if (mError.code != LinkErrorCode::None) mError = {};
}

void ChannelImpl::Fail(LinkError error, const std::string& doing) {
  mError = std::move(error);
  mError.doing = doing + " on " + DescribeLine(mSettings);
}

void ChannelImpl::FailArgument(std::string happened, const std::string& doing) {
  LinkError error;
  error.code = LinkErrorCode::BadArgument;
  error.happened = std::move(happened);
  error.cause = "no controller can do this, so nothing was sent";
  error.cure = "change what is asked for";
  Fail(std::move(error), doing);
}

void ChannelImpl::FailRefused(int controllerCode, const std::string& doing) {
  if (controllerCode == kNeedsPasswordCode) controllerCode = mClient.AccessRefusal();
  const ControllerErrorMeaning meaning = ControllerErrorText(controllerCode);
  LinkError error;
  error.code = controllerCode == kBusyCode ? LinkErrorCode::Busy : LinkErrorCode::Refused;
  error.controllerCode = controllerCode;
  error.happened = RefusedText(meaning, controllerCode);
  const bool isPassword = controllerCode == kNeedsPasswordCode || controllerCode == kWrongPasswordCode;
  error.cure = isPassword && mPasswords ? mPasswords->Cure() : meaning.cure;
  Fail(std::move(error), doing);
}

void ChannelImpl::FailMalformed(const std::string& doing) {
  LinkError error;
  error.code = LinkErrorCode::Damaged;
  error.happened = "the controller's reply does not fit the request";
  error.cause = "the controller's O/S and this program do not agree about this request";
  error.cure = "keep the trace for an error report; a newer O/S may help";
  Fail(std::move(error), doing);
}

void ChannelImpl::Tell(const std::string& message) {
  mTrace->Add(mPacer.Now(), Trace::Direction::Note, message);
  if (mRecord.is_open()) mRecord << message << "\r\n" << std::flush;
  mSay(message);
}

bool ChannelImpl::Knows(const std::expected<void, LinkError>& recognised, const std::string& doing) {
  if (!recognised) Fail(recognised.error(), doing);
  return recognised.has_value();
}

void ChannelImpl::OnRawOutcome(ExchangeOutcome outcome, const RawTraffic& traffic) {
  if (outcome == ExchangeOutcome::NotRecorded) return Fail(mClient.Explain(outcome), "sending raw frames");
  if (!traffic.sent.empty()) {
    const bool isSent = outcome == ExchangeOutcome::Done;
    mLine.Gate().End({isSent ? ChangeResult::Sent : ChangeResult::Failed, mClient.Explain(outcome).happened});
  }
  mClient.DoubtUnits();
  if (!traffic.sent.empty()) NoteRawReset(traffic.sent);
  if (mRawReset && mRawReset->IsRefusedBy(traffic.received)) {
    mClient.RestorePatience(mRawReset->unit, mRawReset->before);
    mRawReset.reset();
  }
  if (mRawReset) mClient.NoteRestart(mRawReset->unit);  // it begins with the reply, whenever that comes
  if (outcome == ExchangeOutcome::Done) return;
  if (outcome == ExchangeOutcome::Lost) mClient.NoteLoss();
  Fail(mClient.Explain(outcome), "sending raw frames");
}

void ChannelImpl::NoteRawReset(std::string_view sent) {
  mRawReset.reset();
  const std::optional<AsciiFrame> frame = FindFrame(sent.substr(0, sent.find(kFrameEnd)));
  if (!frame || !CommandFactsOf(frame->text).resets) return;
  mRawReset = RawReset{frame->unit, std::string(frame->text), mClient.PatienceWith(frame->unit), {}};
}

bool ChannelImpl::RawReset::IsRefusedBy(std::string_view bytes) {
  received.append(bytes.substr(0, kMaxFrameLength - std::min(kMaxFrameLength, received.size())));
  const std::size_t end = received.find(kFrameEnd);
  const std::size_t start = received.find(kFrameStart);
  if (end == std::string::npos || start > end) return false;
  const auto frame = FindFrame(std::string_view(received).substr(start, end - start));
  const auto reply = frame && frame->unit == unit ? Seal(text).Open(*frame) : std::nullopt;
  return reply && ReadRefusal(reply->text, text).has_value();
}

}  // namespace kv
