#include <string>
#include <vector>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/LinkChoice.h"
#include "apps/kvtele/OperandArguments.h"
#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/Verb.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RegionTransfer.h"

namespace kv::cli {

namespace {

// Writes operands, reads them back and compares.
class VerbWrite : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "write"; }
  [[nodiscard]] const char* Summary() const override { return "Write operands, read them back and compare"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<Region> CheckOrder(const CommonOptions& common) const;
  [[nodiscard]] VerbResult Compare(Environment& environment, ConnectedController& controller, const Region& region,
                                   OperationScope& writing) const;

  std::string mType;
  std::string mFrom;
  std::vector<std::string> mValues;
};

VerbOutput MakeOutput(const Region& region, const nlohmann::ordered_json& valuesReadBack) {
  VerbOutput output;
  output.document = {{"type", mdlDataTypesView::TypeName(region.type)},
                     {"from", region.from},
                     {"to", region.to},
                     {"values", valuesReadBack}};
  return output;
}

const char* VerbWrite::Examples() const {
  return "  kvtele --link sim:K220-22-R1 write MI 0 4660 22136        MI 0 and MI 1\n"
         "  kvtele --link sim:K220-22-R1 write MF 3 -1.5e3            a float\n"
         "  kvtele --link sim:K220-22-R1 write timer-preset 0 0:01:30 a minute and a half\n"
         "  kvtele --link tcp:192.168.1.20 --password-file pw.txt write MB 7 1\n";
}

void VerbWrite::Declare(CLI::App& app) {
  app.add_option("TYPE", mType, "Operand type: MB, MI, MF, \"TIMER PRESET\" ...")->required()->type_name("");
  app.add_option("FROM", mFrom, "Address of the first value")->required()->type_name("");
  app.add_option("VALUE", mValues, "One value for each operand from FROM on")->required()->type_name("");
}

VerbResult VerbWrite::Run(Environment& environment, const CommonOptions& common) {
  const auto region = CheckOrder(common);
  if (!region) return std::unexpected(region.error());
  const auto connected = ConnectFor(environment, common, *region);
  if (!connected) return std::unexpected(connected.error());
  ConnectedController& controller = **connected;
  if (const auto legal = CheckValues(region->type, controller.Model(), mValues); !legal) {
    return std::unexpected(legal.error());
  }
  OperationScope writing(
      controller.Link().Changes(),
      {.tool = "kvtele write", .what = "write operands", .operands = {ChangeOf(controller, *region, mValues)}});
  const auto written = WriteOperands(environment, controller, *region, mValues);
  if (!written) return std::unexpected(written.error());
  return Compare(environment, controller, *region, writing);
}

// Everything that can be said without a controller.
OrFailure<Region> VerbWrite::CheckOrder(const CommonOptions& common) const {
  const auto type = ParseType(mType);
  if (!type) return std::unexpected(type.error());
  auto region = ParseRegion(*type, mFrom, mFrom);
  if (!region) return region;
  region = ParseRegion(*type, mFrom, std::to_string(std::int64_t{region->from} + std::ssize(mValues) - 1));
  if (!region) return region;
  if (!mdlDataTypesView::IsWritableType(*type)) {
    return std::unexpected(NotFitFailure("writing " + RegionText(*region), "operands of this type can only be read", {},
                                         "choose a type that can be written"));
  }
  if (const auto legal = CheckValues(*type, ModelKnownBeforehand(common), mValues); !legal) {
    return std::unexpected(legal.error());
  }
  return region;
}

// What is told stands in the journal before.
VerbResult VerbWrite::Compare(Environment& environment, ConnectedController& controller, const Region& region,
                              OperationScope& writing) const {
  if (!mdlDataTypesView::IsReadableFrom(controller.Model(), region.type)) {
    writing.End({ChangeResult::Done, "not compared"});
    environment.err << "Written: " << RegionText(region)
                    << ". It was not compared: operands of this type cannot be read "
                    << "back on " << controller.Model() << ".\n";
    return MakeOutput(region, nullptr);
  }
  const auto readBack = ReadOperandsBack(environment, controller, region, mValues);
  writing.End(readBack ? ChangeEnd{} : ChangeEnd{ChangeResult::Failed, readBack.error().happened});
  if (!readBack) return std::unexpected(readBack.error());
  environment.err << "Written and read back: " << RegionText(region) << "\n";
  return MakeOutput(region, *readBack);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbWrite() {
  return std::make_unique<VerbWrite>();
}

}  // namespace kv::cli
