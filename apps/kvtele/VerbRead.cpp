#include <string>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/OperandArguments.h"
#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/Verb.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RowDisplay.h"

namespace kv::cli {

namespace {

// Reads operands and prints one a line, or the one text in which a grid row would show them.
class VerbRead : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "read"; }
  [[nodiscard]] const char* Summary() const override { return "Read operands"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mType;
  std::string mFrom;
  std::string mTo;
  std::string mSize;
  std::string mFormat;
};

VerbOutput MakeOutput(const Region& region, const std::optional<DisplayForm>& form,
                      const std::vector<std::string>& texts) {
  VerbOutput output;
  output.document = {
      {"type", mdlDataTypesView::TypeName(region.type)}, {"from", region.from}, {"to", region.to}, {"values", texts}};
  if (form) {
    const std::string row = mdlDataTypesView::DisplayRow(region.type, texts, form->size, form->format);
    output.document["text"] = row;
    output.text = row + "\n";
    return output;
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    output.text += std::to_string(region.from + static_cast<std::int32_t>(i)) + "\t" + texts[i] + "\n";
  }
  return output;
}

const char* VerbRead::Examples() const {
  return "  kvtele --link sim:K220-22-R1 read MI 0 9                       one line each: address, tab, value\n"
         "  kvtele --link sim:K220-22-R1 read MI 0 1 --size 8 --format hex one line for all: 12 34 56 78\n"
         "  kvtele --link sim:K670 read timer-preset 0                     a minus stands for the blank\n"
         "  kvtele --link sim:Q50 read DBI 0 1023 --json                   long ranges take several requests\n";
}

void VerbRead::Declare(CLI::App& app) {
  app.add_option("TYPE", mType, "Operand type: MB, MI, MF, \"TIMER PRESET\" ...")->required()->type_name("");
  app.add_option("FROM", mFrom, "First address")->required()->type_name("");
  app.add_option("TO", mTo, "Last address. Default: FROM")->type_name("");
  app.add_option("--size", mSize, "Show all as one text, in pieces of 1, 8, 16 or 32 bits; with --format")
      ->type_name("BITS");
  app.add_option("--format", mFormat, "ascii, binary, unsigned, hex, decimal or float; with --size")
      ->type_name("FORMAT");
}

VerbResult VerbRead::Run(Environment& environment, const CommonOptions& common) {
  const auto type = ParseType(mType);
  if (!type) return std::unexpected(type.error());
  const auto region = ParseRegion(*type, mFrom, mTo.empty() ? mFrom : mTo);
  if (!region) return std::unexpected(region.error());
  const auto form = ParseDisplayForm(*type, mSize, mFormat);
  if (!form) return std::unexpected(form.error());
  const auto connected = ConnectFor(environment, common, *region);
  if (!connected) return std::unexpected(connected.error());
  const auto texts = ReadOperands(environment, **connected, *region);
  if (!texts) return std::unexpected(texts.error());
  return MakeOutput(*region, *form, *texts);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbRead() {
  return std::make_unique<VerbRead>();
}

}  // namespace kv::cli
