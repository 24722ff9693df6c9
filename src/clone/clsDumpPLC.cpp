#include "clone/clsDumpPLC.h"

#include <algorithm>
#include <iterator>

#include "base/AnsiText.h"
#include "base/DateText.h"
#include "base/ScopeGuard.h"
#include "clone/CloneFrame.h"
#include "clone/CloneLines.h"
#include "clone/ProgramState.h"
#include "link/BlockOperations.h"
#include "link/LinkLimits.h"
#include "link/OsVersion.h"
#include "models/ModelCatalogue.h"
#include "secret/Secret.h"

// Creating a clone. Restoring is in clsDumpPLCRestore.cpp.
namespace kv {
namespace {

// Short date, TAB, short time.
std::string DateAndTime(std::chrono::local_seconds now) {
  return DateText(now) + "\t" + TimeOfDayText(now);
}

std::unexpected<CloneOutcome> Failure(CloneCause cause, std::string reason) {
  return std::unexpected(CloneOutcome::Failed(cause, std::move(reason)));
}

std::unexpected<CloneOutcome> LinkFailure(const Channel& link) {
  return std::unexpected(CloneOutcome::OfLink(link.LastError()));
}

std::unexpected<CloneOutcome> FileFailure(const FileError& error) {
  return std::unexpected(CloneOutcome::OfFile(error));
}

std::string SegmentLine(const std::vector<CloneSegment>& segments, const SegmentBoxes& boxes) {
  std::string line;
  for (const CloneSegment& segment : segments) {
    if (!IsIncluded(segment.code, boxes)) continue;
    line += segment.code + "," + std::to_string(segment.start) + "," + std::to_string(segment.length) + "\t";
  }
  return line;
}

// Frames carry whole words, so a last single byte would be lost.
std::expected<void, CloneOutcome> CheckLengths(const std::vector<CloneSegment>& segments, const SegmentBoxes& boxes) {
  for (const CloneSegment& segment : segments) {
    if (segment.length % 2 == 0 || !IsIncluded(segment.code, boxes)) continue;
    return Failure(CloneCause::Segments, "Segment " + segment.code + " has an odd length (" +
                                             std::to_string(segment.length) +
                                             " bytes), which a clone file cannot hold. Nothing was read; take its "
                                             "segment out of the clone, if there is a box for it.");
  }
  return {};
}

// Colour controllers report their version in fields, the newest O/S too.
std::string OldOsCure(const VersionInfo& version) {
  const bool isInFields = IsColourModel(version.model) || ParseColourOsVersion(version.osVersion).has_value();
  return isInFields
             ? "Controllers of this model report their version in another form, with every O/S: no update helps, "
               "and their memory cannot be kept in a clone file."
             : "Update its O/S first.";
}

}  // namespace

void clsDumpPLC::CreateGhost(Channel& link, const std::filesystem::path& file, const Finish& finish) {
  mHasStoppedProgram = false;
  const Step created = Create(link, file, finish);
  mOutcome = created ? CloneOutcome() : created.error();
  if (created) return Show("Clone File Created Successfully.", PromptIcon::Information);
  if (mOutcome.cause == CloneCause::OldOs) {
    Show("The PLC does not supports clones.", PromptIcon::None);
    static_cast<void>(mFile.Keep());  // the empty file stays, safe or not
    return;
  }
  if (mHasStoppedProgram) {
    mOutcome.reason += "\n";
    mOutcome.reason += kLeftStopped;
  }
  Show(kOperationFailed, PromptIcon::None);
  mFile.Delete();
}

clsDumpPLC::Step clsDumpPLC::Create(Channel& link, const std::filesystem::path& file, const Finish& finish) {
  if (auto made = mFile.Create(file); !made) return FileFailure(made.error());
  const auto version = SupportsCloning(link);
  if (!version) return std::unexpected(version.error());
  const auto segments = ReadSegmentTable(link);
  if (!segments) return std::unexpected(segments.error());
  mWindow.FillSegments(*segments);
  std::ranges::copy_if(*segments, std::back_inserter(mNeverTaken),
                       [](const CloneSegment& each) { return !IsIncluded(each.code, SegmentBoxes()); });
  const SegmentBoxes boxes = mWindow.CheckedSegments();
  mManifest = {.version = *version, .unit = link.UnitID()};
  if (auto fit = CheckLengths(*segments, boxes); !fit) return fit;

  const OperationScope creating(link.Changes(), {.tool = "Cloner", .what = "stop and start the program for a clone"});
  if (auto stopped = StopProgram(link); !stopped) return stopped;
  if (auto written = WriteHead(*version, *segments, boxes); !written) return written;
  if (auto dumped = DumpSegments(link, *segments, boxes); !dumped) return dumped;
  if (auto written = WriteLine(BuildEndFrame(link.UnitID())); !written) return written;
  if (auto running = LeaveRunning(link); !running) return running;
  if (const ChangeObserver* changes = link.Changes()) mManifest.journal = changes->Head();
  if (auto kept = mFile.Keep(); !kept) return FileFailure(kept.error());
  mManifest.length = mFile.Size();
  mManifest.sha256 = mFile.Digest();
  return finish ? finish() : Step();
}

std::expected<VersionInfo, CloneOutcome> clsDumpPLC::SupportsCloning(Channel& link) {
  const auto version = link.GetVersionInfo(link.UnitID());
  if (!version) return LinkFailure(link);
  if (!mTakesAnyOs && ParsePlainOsVersion(version->osVersion).value_or(0) < kFirstOsWithClones) {
    return Failure(CloneCause::OldOs, "The controller's O/S version is \"" + AnsiToUtf8(version->osVersion) +
                                          "\"; clones need 4.60 or newer, in plain digits. " + OldOsCure(*version));
  }
  return *version;
}

std::expected<clsDumpPLC::Segments, CloneOutcome> clsDumpPLC::ReadSegmentTable(Channel& link) {
  auto entered = mPrompts.Ask(PasswordQuestion(mControllerName));
  if (!entered && IsStopRequested()) return std::unexpected(CloneOutcome::OfStop());
  if (!entered) {
    return Failure(CloneCause::NoPassword,
                   "No password was given: its box was cancelled. Nothing was changed in the controller.");
  }
  std::string password = Utf8ToAnsi(*entered);
  Wipe(*entered);
  const ScopeGuard wipe([&] { Wipe(password); });
  if (password.empty()) return Failure(CloneCause::Password, "No password was given. " + std::string(kAnyPassword));
  if (password.size() > kLongestPassword) {
    return Failure(CloneCause::Password,
                   "The password that was given has more than " + std::to_string(kLongestPassword) + " characters.");
  }
  password.resize(kLongestPassword, ' ');
  password.insert(0, "GI");
  const auto reply = link.SendCommand(password);
  if (!reply) return LinkFailure(link);
  if (auto refusal = RefusalIn(reply->text)) {
    refusal->doing = "reading the segment table";
    CloneOutcome outcome = CloneOutcome::Failed(CloneCause::Segments, refusal->Text());
    outcome.link = *std::move(refusal);
    return std::unexpected(std::move(outcome));
  }
  auto segments = ParseSegmentTable(reply->text);
  if (segments) return *std::move(segments);
  const bool isPassword = reply->text.starts_with("GI0");
  return Failure(isPassword ? CloneCause::Password : CloneCause::Segments,
                 "Reading the segment table failed: " + segments.error() + ".");
}

std::expected<bool, CloneOutcome> clsDumpPLC::IsRunning(Channel& link) {
  DownloadEngine* engine = link.GetDownloadEngine();
  if (engine == nullptr) return LinkFailure(link);
  engine->SetMessage({.opCode = BlockOperation::kRunState, .param1 = 7, .dataLength = 2, .param3 = 0, .param4 = 0});
  if (!engine->Send()) return LinkFailure(link);
  if (engine->ReplyStatus() >= kBlockRefused || engine->ReplyBytes().empty()) {
    return Failure(CloneCause::Link, "The controller did not tell whether its program runs (status " +
                                         std::to_string(engine->ReplyStatus()) + "). Try again.");
  }
  return IsRunningState(static_cast<char>(engine->ReplyBytes().front()));
}

clsDumpPLC::Step clsDumpPLC::StopProgram(Channel& link) {
  const auto isRunning = IsRunning(link);
  if (!isRunning) return std::unexpected(isRunning.error());
  mManifest.wasRunning = *isRunning;
  if (!*isRunning) return {};
  if (mPrompts.Show(StopQuestion()) != PromptAnswer::Yes) {
    if (mEndsUnlessStopped) return std::unexpected(CloneOutcome::OfStop());
    return {};  // the clone is then made of the running controller
  }
  if (!link.StopController(link.UnitID())) return LinkFailure(link);
  mHasStoppedProgram = true;
  mManifest.wasRunning = false;
  return {};
}

clsDumpPLC::Step clsDumpPLC::WriteHead(const VersionInfo& version, const Segments& segments,
                                       const SegmentBoxes& boxes) {
  const std::string now = DateAndTime(mClock.LocalTime());
  mManifest.madeOn = now;
  std::ranges::replace(mManifest.madeOn, '\t', ' ');
  const std::string lines[] = {
      "Korvantis Clone File:\tV100\t" + now,
      version.model + "\t" + version.hardwareCode + "\t" + version.osVersion + "\t" + version.osBuild,
      SegmentLine(segments, boxes),
      "",
  };
  for (const std::string& line : lines) {
    if (auto written = WriteLine(line); !written) return written;
  }
  return {};
}

clsDumpPLC::Step clsDumpPLC::DumpSegments(Channel& link, const Segments& segments, const SegmentBoxes& boxes) {
  for (std::size_t i = 0; i < segments.size(); ++i) {
    if (!IsIncluded(segments[i].code, boxes)) continue;
    mWindow.Event_SegmentIndex(static_cast<int>(i + 1));
    mSegmentDigest = Sha256();
    if (auto dumped = DumpSegment(link, segments[i]); !dumped) return dumped;
    mManifest.segments.push_back({segments[i], mSegmentDigest.Hex()});
    mPacer.DoEvents();
    if (IsStopRequested()) return std::unexpected(CloneOutcome::OfStop());
  }
  return {};
}

clsDumpPLC::Step clsDumpPLC::DumpSegment(Channel& link, const CloneSegment& segment) {
  const std::uint32_t blocks = segment.length / kDumpBlock;
  const std::uint32_t rest = segment.length % kDumpBlock;
  mWindow.Event_ProgressBarInit(0, blocks);
  for (std::uint32_t block = 1; block <= blocks; ++block) {
    if (auto dumped = DumpBlock(link, segment, (block - 1) * kDumpBlock, kDumpBlock); !dumped) return dumped;
    mWindow.Event_ProgressBarValue(block);
    mPacer.DoEvents();  // lets the stop button be pressed
    if (IsStopRequested()) return std::unexpected(CloneOutcome::OfStop());
  }
  if (rest == 0) return {};
  return DumpBlock(link, segment, blocks * kDumpBlock, rest);
}

clsDumpPLC::Step clsDumpPLC::DumpBlock(Channel& link, const CloneSegment& segment, std::uint32_t offset,
                                       std::uint32_t count) {
  const std::uint32_t address = segment.start + offset;
  const auto block = link.ReadMemoryBlock(address, count, link.UnitID());
  if (!block) return LinkFailure(link);
  if (block->size() != count) {
    return Failure(CloneCause::Link, "The controller handed over " + std::to_string(block->size()) +
                                         " bytes of segment " + segment.code + " instead of " + std::to_string(count) +
                                         ".");
  }
  mSegmentDigest.Add(*block);
  const auto write = [this](std::string_view frame) -> std::expected<void, FileError> {
    return mFile.Append(std::string(frame) + "\r\n");
  };
  if (auto written = WriteDataLines(*block, address, segment.kind, link.UnitID(), write); !written) {
    return FileFailure(written.error());
  }
  return {};
}

clsDumpPLC::Step clsDumpPLC::LeaveRunning(Channel& link) {
  const auto isRunning = IsRunning(link);
  if (!isRunning) return std::unexpected(isRunning.error());
  mWasStartedMeanwhile = *isRunning && mHasStoppedProgram;
  mManifest.wasRunning |= *isRunning;  // whoever started it: its memory was read while it ran
  if (!*isRunning && !link.RunController(link.UnitID())) return LinkFailure(link);
  mHasStoppedProgram = false;
  return {};
}

clsDumpPLC::Step clsDumpPLC::WriteLine(std::string_view line) {
  if (auto written = mFile.Append(std::string(line) + "\r\n"); !written) return FileFailure(written.error());
  return {};
}

void clsDumpPLC::Show(std::string_view text, PromptIcon icon) {
  mPrompts.Show({.text = std::string(text), .title = std::string(kClonerCaption), .icon = icon});
}

}  // namespace kv
