#include "apps/kvtele/VerbRead.h"

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/Operands.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RowDisplay.h"

namespace kv::cli {

namespace {

// What the command line asks for, as far as that can be judged without a controller.
struct Order {
  Region region;
  std::optional<View> view;
};

VerbOutput MakeOutput(const Order& order, const std::vector<std::string>& texts) {
  VerbOutput output;
  output.document = {{"type", mdlDataTypesView::TypeName(order.region.type)},
                     {"from", order.region.from},
                     {"to", order.region.to},
                     {"values", texts}};
  if (order.view) {
    const std::string row =
        mdlDataTypesView::DisplayRow(order.region.type, texts, order.view->size, order.view->format);
    output.document["text"] = row;
    output.text = row + "\n";
    return output;
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    output.text += std::to_string(order.region.from + static_cast<std::int32_t>(i)) + "\t" + texts[i] + "\n";
  }
  return output;
}

}  // namespace

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
  const auto view = ParseView(*type, mSize, mFormat);
  if (!view) return std::unexpected(view.error());
  const auto connected = ConnectFor(environment, common, *region);
  if (!connected) return std::unexpected(connected.error());
  const auto texts = ReadOperands(environment, **connected, *region);
  if (!texts) return std::unexpected(texts.error());
  return MakeOutput({*region, *view}, *texts);
}

}  // namespace kv::cli
