#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/RegionValues.h"
#include "apps/kvtele/TerminalProgress.h"
#include "apps/kvtele/Verb.h"
#include "base/Texts.h"
#include "dataview/WriteQuestion.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RegionTransfer.h"
#include "dataview/operands/RowDisplay.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

// Reads or writes all regions of a region file.
class VerbRegions : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "regions"; }
  [[nodiscard]] const char* Summary() const override { return "Read or write the regions of a file"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<void> CheckArguments() const;
  [[nodiscard]] VerbResult Read(Environment& environment, const CommonOptions& common, const RegionsFile& file) const;
  [[nodiscard]] VerbResult Write(Environment& environment, const CommonOptions& common, const RegionsFile& file) const;
  void SayLeftOut(Environment& environment, const CommonOptions& common, const ValuesToWrite& values) const;

  std::string mAction;
  std::string mFile;
  std::string mValuesFile;
  bool mAsCsv = false;
};

using RowTexts = std::vector<std::vector<std::string>>;  // of each row, one an operand

// ---- reading ----

OrFailure<RowTexts> ReadRows(Environment& environment, ConnectedController& controller,
                             const std::vector<RegionRow>& rows) {
  TerminalProgress progress(environment, "reading regions", rows.size());
  RowTexts all;
  std::vector<Region> unreadable;
  for (const RegionRow& row : rows) {
    if (!IsReadableFrom(controller.Model(), row.region.type)) {
      unreadable.push_back(row.region);
      all.emplace_back();
      continue;
    }
    auto texts = ReadOperands(environment, controller, row.region);
    if (!texts) return std::unexpected(texts.error());
    all.push_back(*std::move(texts));
    progress.Show(all.size());
  }
  SayUnreadable(environment, controller, unreadable);
  return all;
}

// Characters of a controller's memory can be line ends and tabs; a region is one line.
std::string OneLine(std::string text) {
  std::ranges::replace_if(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text;
}

VerbOutput MakeOutput(const std::string& model, const std::vector<RegionRow>& rows, const RowTexts& texts, bool asCsv) {
  VerbOutput output;
  output.document = {{"model", model}, {"regions", nlohmann::ordered_json::array()}};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const RegionRow& row = rows[i];
    const std::string shown = DisplayRow(row.region.type, texts[i], row.size, row.format);
    output.document["regions"].push_back({{"type", TypeName(row.region.type)},
                                          {"from", row.region.from},
                                          {"to", row.region.to},
                                          {"description", row.description},
                                          {"size", SizeName(row.size)},
                                          {"format", FormatName(row.format)},
                                          {"values", texts[i]},
                                          {"text", shown}});
    output.text += std::string(TypeName(row.region.type)) + "\t" + std::to_string(row.region.from) + "\t" +
                   std::to_string(row.region.to) + "\t" + OneLine(row.description) + "\t" + OneLine(shown) + "\n";
  }
  if (asCsv) output.text = PrintValues(rows, texts);
  return output;
}

// ---- writing ----

std::size_t CountOf(const std::vector<ValueRun>& runs) {
  std::size_t count = 0;
  for (const ValueRun& run : runs) count += run.texts.size();
  return count;
}

std::string WrittenBefore(std::size_t values, std::size_t total) {
  if (values == 0) return {};
  return std::to_string(values) + " of " + std::to_string(total) + " values had been written before";
}

OrFailure<void> WriteRuns(Environment& environment, ConnectedController& controller,
                          const std::vector<ValueRun>& runs) {
  const std::size_t total = CountOf(runs);
  TerminalProgress progress(environment, "writing regions", total);
  std::size_t done = 0;
  for (const ValueRun& run : runs) {
    const std::string before = WrittenBefore(done, total);
    if (environment.pacer.StopRequested()) {
      return std::unexpected(
          InterruptedFailure("writing regions (" + (before.empty() ? "nothing was written" : before) + ")"));
    }
    const auto written = WriteRegion(controller.Link(), controller.Model(), run.region, run.texts);
    if (!written) return std::unexpected(WriteFailure(written.error(), run.region, before));
    done += run.texts.size();
    progress.Show(done);
  }
  return {};
}

OrFailure<void> ConfirmWrite(Environment& environment, const CommonOptions& common, ConnectedController& controller,
                             std::size_t count) {
  const MessageBox box = WriteQuestion(count, controller.Description());
  if (PromptsFor(environment, common).Show(box) == PromptAnswer::Yes) return {};
  if (environment.pacer.StopRequested()) {
    return std::unexpected(InterruptedFailure("writing regions (nothing was written)"));
  }
  return std::unexpected(Failure{ExitCode::Failed, "declined", "writing regions", "nothing was written",
                                 "the question was not answered with yes", "give --yes to write without a question"});
}

MessageBox ReadOnlyBox() {
  MessageBox box;
  box.text = kReadOnlyRegionsMessage;
  box.icon = PromptIcon::Exclamation;
  return box;
}

// Reads back what can be read and compares; how many values were compared.
OrFailure<std::size_t> Compare(Environment& environment, ConnectedController& controller,
                               const std::vector<ValueRun>& runs) {
  std::size_t compared = 0;
  for (const ValueRun& run : runs) {
    if (!IsReadableFrom(controller.Model(), run.region.type)) continue;
    const auto readBack = ReadOperandsBack(environment, controller, run.region, run.texts);
    if (!readBack) return std::unexpected(readBack.error());
    compared += run.texts.size();
  }
  return compared;
}

VerbOutput WriteOutput(Environment& environment, const ValuesToWrite& values, std::size_t compared) {
  const std::size_t count = CountOf(values.runs);
  if (compared == count) {
    environment.err << "Written and read back: " << Counted(count, "value") << ".\n";
  } else {
    environment.err << "Written: " << Counted(count, "value") << ". Not compared: " << count - compared
                    << ", because operands of their types cannot be read back on this model.\n";
  }
  VerbOutput output;
  output.document = {{"written", count}, {"compared", compared}, {"missing", values.missing}};
  return output;
}

VerbResult WriteValues(Environment& environment, const CommonOptions& common, ConnectedController& controller,
                       const ValuesToWrite& values) {
  const auto confirmed = ConfirmWrite(environment, common, controller, CountOf(values.runs));
  if (!confirmed) return std::unexpected(confirmed.error());
  Operation operation{.tool = "kvtele regions", .what = "write " + Counted(values.runs.size(), "run") + " of operands"};
  for (const ValueRun& run : values.runs) {
    operation.operands.push_back(ChangeOf(controller, run.region, run.texts));
  }
  OperationScope writing(controller.Link().Changes(), operation);
  const auto written = WriteRuns(environment, controller, values.runs);
  if (!written) return std::unexpected(written.error());
  const auto compared = Compare(environment, controller, values.runs);
  writing.End(compared ? ChangeEnd{} : ChangeEnd{ChangeResult::Failed, compared.error().happened});
  if (!compared) return std::unexpected(compared.error());
  return WriteOutput(environment, values, *compared);
}

const char* VerbRegions::Examples() const {
  return "  kvtele --link sim:K220-22-R1 regions read plant.axt               a line each: type, from, to,\n"
         "                                                                    description, values as shown\n"
         "  kvtele --link sim:K220-22-R1 regions read plant.axt --csv > v.csv  one line an operand\n"
         "  kvtele --link sim:K220-22-R1 regions write plant.axt v.csv         after asking; --yes does not\n"
         "The values in a region file itself are texts to be looked at, so what is written comes from a file\n"
         "as read --csv prints it. Operands that it leaves out stay as they are.\n";
}

void VerbRegions::Declare(CLI::App& app) {
  app.add_option("ACTION", mAction, "read or write")->required()->check(CLI::IsMember({"read", "write"}));
  app.add_option("FILE", mFile, "Region file (.axt) that the operand view has saved")->required()->type_name("");
  app.add_option("VALUES", mValuesFile, "With write: the values, as read --csv prints them")->type_name("");
  app.add_flag("--csv", mAsCsv, "With read: one line an operand, type, address and value");
}

VerbResult VerbRegions::Run(Environment& environment, const CommonOptions& common) {
  if (const auto checked = CheckArguments(); !checked) return std::unexpected(checked.error());
  const auto file = RegionsFile::Read(mFile);
  if (!file) return std::unexpected(file.error());
  return mAction == "read" ? Read(environment, common, *file) : Write(environment, common, *file);
}

OrFailure<void> VerbRegions::CheckArguments() const {
  const bool isWrite = mAction == "write";
  if (isWrite && mValuesFile.empty()) {
    return std::unexpected(UsageFailure("write needs the file with the values", "see kvtele regions --help"));
  }
  if (!isWrite && !mValuesFile.empty()) {
    return std::unexpected(UsageFailure("read takes one file", "see kvtele regions --help"));
  }
  if (isWrite && mAsCsv) {
    return std::unexpected(UsageFailure("--csv goes with read", "see kvtele regions --help"));
  }
  return {};
}

VerbResult VerbRegions::Read(Environment& environment, const CommonOptions& common, const RegionsFile& file) const {
  const auto connected =
      ConnectFor(environment, common, [&](const std::string& model) { return file.RegionsFor(model); });
  if (!connected) return std::unexpected(connected.error());
  const auto rows = file.RowsFor((*connected)->Model());
  if (!rows) return std::unexpected(rows.error());
  const auto texts = ReadRows(environment, **connected, *rows);
  if (!texts) return std::unexpected(texts.error());
  return MakeOutput((*connected)->Model(), *rows, *texts, mAsCsv);
}

VerbResult VerbRegions::Write(Environment& environment, const CommonOptions& common, const RegionsFile& file) const {
  const auto bytes = ReadFileFor(mValuesFile, kLargestValuesFile);
  if (!bytes) return std::unexpected(bytes.error());
  const auto valuesFor = [&](const std::string& model) -> OrFailure<ValuesToWrite> {
    const auto rows = file.RowsFor(model);
    if (!rows) return std::unexpected(rows.error());
    return ParseValues(*bytes, mValuesFile, *rows, model);
  };
  const auto connected = ConnectFor(environment, common, [&](const std::string& model) {
    const auto values = valuesFor(model);
    return values ? file.RegionsFor(model) : std::unexpected(values.error());
  });
  if (!connected) return std::unexpected(connected.error());
  const auto values = valuesFor((*connected)->Model());
  if (!values) return std::unexpected(values.error());
  SayLeftOut(environment, common, *values);
  if (values->runs.empty()) return WriteOutput(environment, *values, 0);
  return WriteValues(environment, common, **connected, *values);
}

// What of the regions is not written.
void VerbRegions::SayLeftOut(Environment& environment, const CommonOptions& common, const ValuesToWrite& values) const {
  if (values.readOnly > 0) PromptsFor(environment, common).Show(ReadOnlyBox());
  if (!values.leftOut.empty()) environment.err << values.leftOut << "\n";
  if (values.missing == 0) return;
  environment.err << Counted(values.missing, "operand") << " without a value in " << mValuesFile
                  << (values.missing == 1 ? " stays as it is.\n" : " stay as they are.\n");
}

}  // namespace

std::unique_ptr<Verb> MakeVerbRegions() {
  return std::make_unique<VerbRegions>();
}

}  // namespace kv::cli
