#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/cache/CacheImportOrder.h"
#include "KvTele2/cache/CacheOutcome.h"
#include "KvTele2/cache/ImportTarget.h"
#include "KvTele2/cache/ResourceReader.h"
#include "desktop/Pacer.h"
#include "desktop/RemainingTime.h"
#include "desktop/WallClock.h"
#include "link/Channel.h"

namespace kv::cache {

// What the user is told before an import begins, and consents to by beginning it. Lines end with CR LF.
inline constexpr std::string_view kSystemModeWarning =
    "Warning: During file creation the PLC display enters 'SYSTEM mode'.\r\n"
    "The PLC continues running, although the HMI application is not visible.";

// The two steps of an import.
using CacheStep = PanelResourceKind;
[[nodiscard]] std::string_view ProgressText(CacheStep step);  // "Importing Fonts"

enum class CacheStepState {
  Running,
  Done,
  Failed,  // stopped, too
};

// What one step has to do.
struct CacheStepPlan {
  std::size_t count = 0;  // in the controller
  std::size_t kept = 0;   // of these in the file already, with the same length and CRC-32: not read again
  std::uint64_t bytesKept = 0;
  std::uint64_t bytesToRead = 0;
};

// What is known before anything is done to the controller or to a file.
struct CacheImportPlan {
  CacheOwner controller{};
  CacheStepPlan fonts{};  // all 0 when the step is not wanted
  CacheStepPlan images{};
  // About what stands at the chosen place and would be lost, or is damaged and would be repaired: to be asked with No
  // as its default before Run. Empty: nothing would be lost.
  std::string question{};
  bool isNew = false;       // nothing stands at the chosen place
  std::uint32_t piece = 1;  // bytes that one request reads,
  Duration perPiece{};      // and how long that takes on this link

  [[nodiscard]] std::uint64_t BytesToRead() const { return fonts.bytesToRead + images.bytesToRead; }
};
// "263 KiB of fonts and images, about 4 min 54 s on this link"; the display shows SYSTEM mode for as long.
[[nodiscard]] std::string ReadingText(const CacheImportPlan& plan, std::uint64_t bytes);

// How far a step is. Bytes are those that are read in this step.
struct CacheProgress {
  CacheStep step = CacheStep::Font;
  std::string resource{};  // its name, UTF-8
  std::uint64_t done = 0;
  std::uint64_t total = 0;
  std::string left{};  // of the whole import: "about 12 s left"; empty while that is not known
};

// One font or image in the new file.
struct CacheResult {
  CacheStep step = CacheStep::Font;
  PanelResource entry{};
  bool wasRead = false;  // else it was in the file already
  std::string fault{};   // why no screen can be drawn with it; empty: it is good
};

// What an import asks of whoever shows it: the wizard, a terminal or a test.
class CacheImportWindow {
 public:
  virtual ~CacheImportWindow() = default;

  virtual void Event_Step(CacheStep step, CacheStepState state) = 0;
  // After each piece, so the window lets its events in here; Stop is the pacer's.
  virtual void Event_Progress(const CacheProgress& progress) = 0;
};

// Reads the fonts and images of a colour controller into a cache file.
//
//   made -> Prepare -> prepared -> Run -> over       Prepare may be called again after it has failed
//
// Prepare sends nothing but reads and writes no file. Run shows SYSTEM mode on the controller's display for as long as
// it reads (not at all where the plan has nothing to read); however it ends, the display is out of it again, or a
// warning says why it may not be. The chosen file is replaced in one step at the very end, when all of it is known to
// be one controller's; until then, and after every failure and a stop, it is as it was. Only the working file is
// written before.
//
// Made at the moment in which the user has chosen the name, and so consented to renew what stood there then.
class CacheImport {
 public:
  CacheImport(CacheImportOrder order, Pacer& pacer, const WallClock& clock, CacheImportWindow& window);
  CacheImport(const CacheImport&) = delete;
  CacheImport& operator=(const CacheImport&) = delete;

  // Null: there is no link. Refuses a controller of another family or with an older O/S.
  [[nodiscard]] std::expected<CacheImportPlan, CacheOutcome> Prepare(Channel* link);

  // Once, with the link that was prepared. Stopped by the pacer's stop request.
  CacheOutcome Run(Channel& link);

  // What is in the new file, fonts first, in the controller's order; empty before it is made.
  [[nodiscard]] const std::vector<CacheResult>& Results() const { return mResults; }
  // The same with its bytes, for who shows it.
  [[nodiscard]] const CacheContent& Content() const { return mContent; }
  // What is worth knowing beside how it ended, a sentence each.
  [[nodiscard]] const std::vector<std::string>& Warnings() const { return mWarnings; }
  // The file's name for people, without its folder.
  [[nodiscard]] std::string Name() const { return mTarget.Name(); }

 private:
  using Step = std::expected<void, CacheOutcome>;
  using Key = std::pair<PanelResourceKind, std::uint16_t>;

  [[nodiscard]] std::expected<CacheImportPlan, CacheOutcome> MakePlan(Channel* link);
  [[nodiscard]] std::expected<CacheStepPlan, CacheOutcome> PlanStep(ResourceReader& reader, CacheStep step) const;
  void Keep(ImportTarget::Before before);
  [[nodiscard]] const CachedResource* Known(CacheStep step, const PanelResource& entry) const;
  [[nodiscard]] CacheOutcome WithText(CacheOutcome outcome) const;

  [[nodiscard]] Step Import(Channel& link);
  [[nodiscard]] Step ReadInSystemMode(Channel& link);
  [[nodiscard]] Step ReadAll(ResourceReader& reader);
  // False: what was read is not what the directory names.
  [[nodiscard]] std::expected<bool, CacheOutcome> ReadStep(ResourceReader& reader, CacheStep step);
  [[nodiscard]] std::expected<bool, CacheOutcome> ReadPart(ResourceReader& reader, CacheStep step);
  [[nodiscard]] std::expected<bool, CacheOutcome> ReadOne(ResourceReader& reader, CacheProgress& progress,
                                                          const PanelResource& entry);
  [[nodiscard]] std::expected<bool, CacheOutcome> IsStillSo(ResourceReader& reader);
  void NoteResults();
  [[nodiscard]] std::string Moment() const;

  CacheImportOrder mOrder;
  Pacer& mPacer;
  const WallClock& mClock;
  CacheImportWindow& mWindow;
  ImportTarget mTarget;

  CacheOwner mController;
  std::map<Key, CachedResource> mKnown;  // that need not be read: of the file before, or read already
  CacheContent mContent;
  std::map<CacheStep, std::uint32_t> mChecks;  // of the directories that the content was read by
  std::set<Key> mRead;
  std::string mMisfit;  // what was not as its directory said, last

  RemainingTime mRemaining;
  std::uint64_t mDone = 0;  // bytes of both steps
  std::uint64_t mTotal = 0;

  std::vector<CacheResult> mResults;
  std::vector<std::string> mWarnings;
};

}  // namespace kv::cache
