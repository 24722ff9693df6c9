#include "download/CompactBootLoader.h"

#include <chrono>
#include <span>
#include <utility>

#include "base/Hex.h"
#include "base/ScopeGuard.h"
#include "desktop/StopScope.h"
#include "download/CompactOsFile.h"
#include "download/OtherSpeeds.h"
#include "link/ErrorMeaning.h"

namespace kv {
namespace {

using std::chrono::milliseconds;
using enum ControllerLeft;

constexpr Duration kAfterStop = milliseconds(500);    // until the outputs are off
constexpr Duration kComingUp = milliseconds(4000);    // so long a PR1 may be deaf between O/S and boot loader
constexpr Duration kAfterErase = milliseconds(5000);  // the same behind the command to erase
constexpr int kPolls = 31;                            // 0 to 15 in steps of a half
constexpr Duration kTestPause = milliseconds(500);
constexpr Duration kErasePause = milliseconds(1000);
constexpr int kEraseTimeOut = 10000;  // milliseconds
constexpr int kAgain = 3;             // for losses of the link within one block, and for a busy controller

constexpr bool IsPxOrPr(CompactKind kind) {
  return kind == CompactKind::PX1 || kind == CompactKind::PR1;
}

constexpr std::string_view kErase = "OSE0";            // of a Q50, Q51 and Q58
constexpr std::string_view kEraseOfPxAndPr = "OSC7F";  // and BRIO

bool IsErase(std::string_view command) {
  return command == kErase || command == kEraseOfPxAndPr;
}

// A command that nobody answered may have been executed all the same.
bool IsInDoubt(const DownloadOutcome& outcome) {
  const LinkError& error = outcome.link;
  return outcome.end != DownloadEnd::Stopped && error.code != LinkErrorCode::None && !IsRefusal(error.code) &&
         !error.isNotExecuted;
}

// One that is busy is asked again.
bool IsAnswering(Channel& link) {
  for (int i = 0; i < kAgain; ++i) {
    if (link.GetControllerInfo(link.UnitID())) return true;
    if (link.LastError().code != LinkErrorCode::Busy) return false;
  }
  return false;
}

// The place and the bytes.
std::string BlockCommand(CompactKind kind, const Bytes& image, std::size_t place) {
  const bool isQ50 = kind == CompactKind::Q50;
  std::string command = (isQ50 ? "FW" : "OSP0") + ToHex(static_cast<std::uint32_t>(place), isQ50 ? 8 : 4);
  AppendHexBytes(command, std::span(image).subspan(place, kCompactOsBlock));
  return command;
}

}  // namespace

CompactBootLoader::CompactBootLoader(DownloadWork& work, CompactKind kind, int usualBaud)
    : mWork(work), mKind(kind), mNow(work.link.GetComParams()), mUsual(mNow), mPort(work.link.CommPort()) {
  if (usualBaud > 0 && mNow.baudRate > 0) mUsual.baudRate = usualBaud;
}

CompactBootLoader::Step CompactBootLoader::Enter() {
  for (int i = 0; i < 2; ++i) {
    if (Step stopped = TellAnswered("CCS", Stopped); !stopped) return stopped;
    mWork.pacer.Sleep(kAfterStop);
  }
  if (Step entered = TellAnswered("CCB", BootLoaderPerhaps); !entered && !HasEntered(entered.error())) return entered;
  mWork.left = BootLoader;
  if (mKind == CompactKind::PR1 && !ReopenLater()) return LinkFailure();
  return {};
}

// Where only the answer was lost, the controller tells it.
bool CompactBootLoader::HasEntered(const DownloadOutcome& failure) {
  if (!IsInDoubt(failure)) return false;
  const auto info = mWork.link.GetControllerInfo(mWork.link.UnitID());
  return info && info->state == 'B';
}

CompactBootLoader::Step CompactBootLoader::AgreeOnSpeed() {
  // Their boot loaders keep the speed at which they are spoken to, so a link that stands needs no other one.
  if (IsPxOrPr(mKind) && mWork.link.SetComParams(mNow)) return {};
  if (mKind == CompactKind::Q50) return TellSpeed("CB0A", kFastBootBaud);
  ComParams agreeing = mNow;
  agreeing.mode = 1;
  if (!mWork.link.SetComParams(agreeing) || !mWork.link.OpenLink(mPort, mNow.baudRate)) return LinkFailure();
  return IsPxOrPr(mKind) ? TellSpeed("CPSR0007", kSlowBootBaud) : TellSpeed("CPSR010A", kFastBootBaud);
}

// Who changes the speed and is not heard any more may be at the new one already.
CompactBootLoader::Step CompactBootLoader::TellSpeed(const std::string& command, int baudRate) {
  const Step told = Tell(command);
  if (!told && !IsInDoubt(told.error())) return told;
  if (!UseSpeed(baudRate)) return LinkFailure();
  if (told || Ask("ID")) return {};
  static_cast<void>(mWork.link.SetComParams(mNow));  // it has never left its old speed, or is gone
  return told;
}

bool CompactBootLoader::UseSpeed(int baudRate) {
  ComParams fields = mNow;
  fields.baudRate = baudRate;
  return mWork.link.SetComParams(fields) && mWork.link.OpenLink(mPort, baudRate);
}

bool CompactBootLoader::ReopenLater() {
  mWork.link.SetLinkBusy(true);
  mWork.pacer.Sleep(kComingUp);
  return mWork.link.SetComParams(mUsual) || mWork.link.OpenLink(mPort, mUsual.baudRate);
}

CompactBootLoader::Step CompactBootLoader::EraseFlash() {
  if (Step begun = Tell("FS05"); !begun) return begun;
  if (Step ready = Poll("FI", "20", "50", kTestPause); !ready) return ready;
  if (Step erasing = StartErase(); !erasing) return erasing;
  if (mKind == CompactKind::PR1) mWork.pacer.Sleep(kAfterErase);
  Step erased = Poll("OSS", "00", "20", kErasePause);
  if (!erased && erased.error().link.code == LinkErrorCode::None) mWork.left = BootLoaderUnsure;
  return erased;
}

CompactBootLoader::Step CompactBootLoader::StartErase() {
  if (!IsPxOrPr(mKind)) return Tell(std::string(kErase), BootLoaderErased);
  const ComParams fields = mWork.link.GetComParams();
  if (!mWork.link.SetComParams(fields)) return LinkFailure();
  const int timeOut = mWork.link.TimeOut();
  const ScopeGuard restored([this, timeOut] { mWork.link.SetTimeOut(timeOut); });
  mWork.link.SetTimeOut(kEraseTimeOut);
  Step erasing = Tell(std::string(kEraseOfPxAndPr), BootLoaderErased);
  if (erasing && !mWork.link.SetComParams(fields)) return LinkFailure();
  return erasing;
}

CompactBootLoader::Step CompactBootLoader::Poll(const std::string& question, std::string_view ready,
                                                std::string_view failed, Duration pause) {
  std::string last;
  for (int i = 0; i < kPolls; ++i) {
    Reply data = Ask(question);
    if (!data) return std::unexpected(std::move(data.error()));
    last = question + " was answered with " + *data + ".";
    if (data->starts_with(ready)) return {};
    if (data->starts_with(failed)) {
      return mWork.Fail(DownloadCause::Reply, "The controller says that its flash memory has failed: " + last);
    }
    mWork.pacer.Sleep(pause);
  }
  return mWork.Fail(DownloadCause::Reply, "The controller's flash memory was not ready after " +
                                              std::to_string(kPolls) + " questions. At last, " + last);
}

CompactBootLoader::Step CompactBootLoader::Write(const Bytes& image, const OnBlock& onBlock) {
  const auto count = static_cast<std::int64_t>(image.size() / kCompactOsBlock);
  for (std::int64_t block = 0; block < count; ++block) {
    const std::size_t place = static_cast<std::size_t>(block) * kCompactOsBlock;
    if (Step written = WriteBlock(BlockCommand(mKind, image, place)); !written) return written;
    onBlock(block + 1, count);
  }
  if (mKind == CompactKind::Q50) {
    if (Step closed = Tell("FW00000000"); !closed) return closed;
  }
  mWork.left = OsWaits;
  return {};
}

// The driver sends no write again over another connection. A block may be: the same bytes at the same place, to the
// same controller, change nothing when they are there already.
CompactBootLoader::Step CompactBootLoader::WriteBlock(const std::string& command) {
  Step written = Tell(command);
  for (int again = 0; again < kAgain && !written && written.error().link.code == LinkErrorCode::Unsure; ++again) {
    written = Tell(command);
  }
  return written;
}

CompactBootLoader::Step CompactBootLoader::Reset() {
  if (Step reset = Tell("CCE", OsPerhaps); !reset && !IsInDoubt(reset.error())) return reset;
  // A link that is lost now comes back when the controller is looked for.
  static_cast<void>(mKind == CompactKind::PR1 ? ReopenLater() : mWork.link.SetComParams(mUsual));
  return {};
}

void CompactBootLoader::FindOutWhatIsLeft(const std::string& oldOs, const std::string& newOs) {
  if (mWork.left == Untouched) return;
  const StopScope asking(mWork.pacer);  // a stop ended the download, not this question
  const ControllerLeft before = mWork.left;
  const auto found = FindAnywhere();
  // A boot loader and its O/S have different names. Who was found in the one and has lost its power is another one, to
  // the driver.
  const bool isOther = !found && mWork.link.LastError().code == LinkErrorCode::OtherController;
  const bool isErased = before == BootLoaderErased || before == BootLoaderUnsure;  // or was told to be
  if (isOther)
    mWork.left = before == OsWaits || before == OsPerhaps ? OsPerhaps : isErased ? SomeOs : BootLoaderPerhaps;
  if (!found) return;
  // An O/S with the number of the old one is the new one only when all of it is known to have been programmed.
  const bool isProgrammed = before == OsWaits || before == OsPerhaps;
  const bool mayBeNew = isProgrammed || (before == BootLoaderErased && oldOs != newOs);
  switch (found->info.state) {
    case 'R':
      mWork.left = mayBeNew && found->OsText() == newOs ? NewOs : before == Stopped ? Untouched : OldOs;
      break;
    case 'S':
      mWork.left = Stopped;
      break;
    case 'B':
      if (before == Stopped || before == BootLoaderPerhaps) mWork.left = BootLoader;
      break;
    default:
      break;
  }
}

std::string CompactBootLoader::SpeedText() const {
  const int now = mWork.link.GetComParams().baudRate;
  if (now == mUsual.baudRate) return "";
  return "The link stays at " + std::to_string(now) + " baud, which the controller was told to use; once it has been " +
         "switched off and on, it listens at its usual speed again.";
}

// A controller that has restarted by itself has its usual speed again.
std::optional<FoundController> CompactBootLoader::FindAnywhere() {
  Channel& link = mWork.link;
  const ComParams now = link.GetComParams();
  bool isThere = IsAnswering(link);
  if (!isThere && now != mUsual && link.SetComParams(mUsual)) {
    isThere = IsAnswering(link);
    if (!isThere && link.LastError().code != LinkErrorCode::OtherController) static_cast<void>(link.SetComParams(now));
  }
  auto found = isThere ? FindController(link) : std::unexpected(link.LastError());
  return found ? std::optional(*std::move(found)) : std::nullopt;
}

CompactBootLoader::Reply CompactBootLoader::Ask(const std::string& command, ControllerLeft then) {
  for (bool isRepeated = false;; isRepeated = true) {
    if (Step goesOn = mWork.StopPoint(); !goesOn) return std::unexpected(std::move(goesOn.error()));
    std::string data;
    const auto exchange = [&] {
      return mWork.Do(then, [&]() -> Step {
        const auto reply = mWork.Send(command);
        if (!reply) return std::unexpected(reply.error());
        data = reply->Data();
        return {};
      });
    };
    // Then busy means that the first one was executed, and is at work.
    const bool mayErase = isRepeated && IsErase(command);
    const Step done = mayErase ? exchange() : mWork.WhileBusy(exchange);
    if (done) return data;
    if (mayErase && done.error().link.code == LinkErrorCode::Busy) return "OK";
    if (!mWork.GoesOnAfter(done.error())) return std::unexpected(done.error());
  }
}

CompactBootLoader::Step CompactBootLoader::TellAnswered(const std::string& command, ControllerLeft then) {
  const Reply data = Ask(command, then);
  return data ? Step() : std::unexpected(data.error());
}

CompactBootLoader::Step CompactBootLoader::Tell(const std::string& command, ControllerLeft then) {
  const Reply data = Ask(command, then);
  if (!data) return std::unexpected(data.error());
  if (*data == "OK") return {};
  return mWork.Fail(DownloadCause::Reply,
                    command.substr(0, 4) + " was answered with \"" + *data + "\", which is no OK.");
}

}  // namespace kv
