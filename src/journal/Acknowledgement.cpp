#include "journal/Acknowledgement.h"

#include "journal/ChangeJournal.h"
#include "journal/JournalCheck.h"

namespace kv {

std::expected<std::uint64_t, std::string> AcknowledgeFindings(const JournalPlaces& places, JournalDisk& disk,
                                                              Pacer& pacer, const WallClock& clock,
                                                              const Acknowledgement& by) {
  if (by.reason.empty()) return std::unexpected("Nothing was acknowledged: say why it is so.");
  // What the head shows is written into the journal first: it is found there from now on.
  ChangeJournal journal(places, disk, pacer, clock);
  if (const auto settled = journal.Settle(); !settled) return std::unexpected(settled.error().Text() + ".");
  const JournalCheck check = CheckJournal({places.folder, {}}, disk, pacer);
  if (check.findings.empty()) return std::unexpected("There is nothing to acknowledge: the check finds nothing.");
  if (check.moreFindings > 0) {
    return std::unexpected(
        "So many findings cannot be acknowledged: begin another session, and keep this one's folder.");
  }
  std::vector<JournalCheck::Finding> found = check.acknowledged;
  found.insert(found.end(), check.findings.begin(), check.findings.end());
  JournalRecord record{.kind = RecordKind::Acknowledged, .user = by.user, .reason = by.reason};
  record.count = found.size();
  record.hash = DigestOf(found);
  const auto number = journal.Append(std::move(record));
  if (!number) return std::unexpected(number.error().Text() + ".");
  return *number;
}

}  // namespace kv
