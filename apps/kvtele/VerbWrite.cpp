#include "apps/kvtele/VerbWrite.h"

#include "apps/kvtele/LinkChoice.h"
#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/Prompting.h"
#include "apps/kvtele/Values.h"
#include "dataview/OperandCatalogue.h"
#include "dataview/RegionTransfer.h"

namespace kv::cli {

namespace {

Failure DiffersFailure(const Region& region, std::size_t index, const std::string& written,
                       const std::string& readBack) {
  const std::int32_t address = region.from + static_cast<std::int32_t>(index);
  return {ExitCode::Differs,
          "differs",
          "comparing what was written to " + RegionText(region),
          RegionText({address, address, region.type}) + " reads " + readBack + ", written was " + written,
          "the operand moves by itself (a running timer or the controller's program), or the write did not take",
          "read it again; see what the program does with this operand"};
}

Failure NotReadBack(Failure failure, const Region& region) {
  failure.doing.clear();
  failure.happened = RegionText(region) + " was written, but could not be read back: " + failure.happened;
  return failure;
}

Answer MakeAnswer(const Region& region, const nlohmann::ordered_json& valuesReadBack) {
  Answer answer;
  answer.document = {{"type", mdlDataTypesView::TypeName(region.type)},
                     {"from", region.from},
                     {"to", region.to},
                     {"values", valuesReadBack}};
  return answer;
}

InputBox PasswordBox() {
  InputBox box;
  box.text = "The controller's password:";
  box.secret = true;
  return box;
}

}  // namespace

const char* VerbWrite::Examples() const {
  return "  kvtele --link sim:K220-22-R1 write MI 0 4660 22136        MI 0 and MI 1\n"
         "  kvtele --link sim:K220-22-R1 write MF 3 -1.5e3            a float\n"
         "  kvtele --link sim:K220-22-R1 write timer-preset 0 0:01:30 a minute and a half\n"
         "  kvtele --link tcp:192.168.1.20 --password 1234 write MB 7 1\n";
}

void VerbWrite::Declare(CLI::App& app) {
  app.add_option("TYPE", mType, "Operand type: MB, MI, MF, \"TIMER PRESET\" ...")->required()->type_name("");
  app.add_option("FROM", mFrom, "Address of the first value")->required()->type_name("");
  app.add_option("VALUE", mValues, "One value for each operand from FROM on")->required()->type_name("");
}

Outcome VerbWrite::Run(Environment& environment, const CommonOptions& common) {
  const auto region = CheckOrder(environment, common);
  if (!region) return std::unexpected(region.error());
  const auto connection = ConnectFor(environment, common, *region);
  if (!connection) return std::unexpected(connection.error());
  Connection& controller = **connection;
  if (const auto legal = CheckValues(region->type, controller.Model(), mValues); !legal) {
    return std::unexpected(legal.error());
  }
  if (const auto written = Write(environment, common, controller, *region); !written) {
    return std::unexpected(written.error());
  }
  return Compare(environment, controller, *region);
}

// Everything that can be said without a controller.
std::expected<Region, Failure> VerbWrite::CheckOrder(const Environment& environment,
                                                     const CommonOptions& common) const {
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
  if (const auto legal = CheckValues(*type, ModelKnownBeforehand(environment, common), mValues); !legal) {
    return std::unexpected(legal.error());
  }
  return region;
}

// With the password that was given; where none was, a user at a terminal is asked when the controller wants one.
std::expected<void, Failure> VerbWrite::Write(Environment& environment, const CommonOptions& common,
                                              Connection& connection, const Region& region) const {
  std::optional<std::string> password = common.password;
  if (!password) {
    auto written = WriteOperands(environment, connection, region, mValues);
    if (written || written.error().code != kPasswordNeeded || !environment.input.IsInteractive()) return written;
    password = PromptsFor(environment, common).Ask(PasswordBox());
    if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure("asking for the password"));
    if (!password) return written;
  }
  if (!connection.Link().GiveAccess(*password, connection.Unit())) return std::unexpected(connection.LastFailure());
  return WriteOperands(environment, connection, region, mValues);
}

Outcome VerbWrite::Compare(Environment& environment, Connection& connection, const Region& region) const {
  if (!mdlDataTypesView::IsReadableFrom(connection.Model(), region.type)) {
    environment.err << "Written: " << RegionText(region)
                    << ". It was not compared: operands of this type cannot be read "
                    << "back on " << connection.Model() << ".\n";
    return MakeAnswer(region, nullptr);
  }
  const auto readBack = ReadOperands(environment, connection, region);
  if (!readBack) return std::unexpected(NotReadBack(readBack.error(), region));
  for (std::size_t i = 0; i < mValues.size(); ++i) {
    if (IsSameValue(region.type, connection.Model(), mValues[i], (*readBack)[i])) continue;
    return std::unexpected(DiffersFailure(region, i, mValues[i], (*readBack)[i]));
  }
  environment.err << "Written and read back: " << RegionText(region) << "\n";
  return MakeAnswer(region, *readBack);
}

}  // namespace kv::cli
