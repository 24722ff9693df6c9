// The tools' catalogues and the simulated controllers were written apart. Here they have to agree, by what really
// passes between them.

#include <gtest/gtest.h>

#include <algorithm>

#include "KvCmDrv1/UnitState.h"
#include "MatrixBench.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/OsSupport.h"
#include "dataview/operands/RegionTransfer.h"
#include "models/ModelCatalogue.h"
#include "simulator/ModelTable.h"
#include "simulator/OsVersion.h"

namespace kv::matrix {
namespace {

using namespace mdlDataTypesView;

// A value that every type can hold, and how a read shows it.
struct Value {
  std::string written;
  std::string read;
};

Value ValueFor(OperandTypeCode type, std::string_view model) {
  const bool isTime = type == OperandTypeCode::TimerPreset || type == OperandTypeCode::TimerCurrent;
  if (!isTime) return {"1", "1"};
  return IsCompactDriverModel(model) ? Value{"1000", "1000"} : Value{"00:00:01.00", "00:00:01.00"};
}

// The last operand of a type is there, the one behind it is not; what the tools call writable can be written.
void CheckType(Channel& link, std::string_view model, OperandTypeCode type, std::int32_t count) {
  const Region behind{count, count, type};
  const auto refused = ReadRegion(link, model, behind);
  const bool isEmpty = refused && refused->empty();  // such a controller has no operation for the type
  EXPECT_TRUE(isEmpty || (!refused && refused.error().code != LinkErrorCode::Damaged)) << "behind the last one";
  if (count == 0 || isEmpty) return;

  const Region last{count - 1, count - 1, type};
  const Value value = ValueFor(type, model);
  const auto written = WriteRegion(link, model, last, std::vector{value.written});
  EXPECT_TRUE(written) << written.error().Text();
  const auto read = ReadRegion(link, model, last);
  ASSERT_TRUE(read) << read.error().Text();
  EXPECT_TRUE(!IsWritableType(type) || read->front() == value.read) << read->front();
}

TEST(Agreement, CountsOfOperandsAndWhichCanBeWritten) {
  for (const sim::Model& model : sim::AllModels()) {
    const std::string older = model.versionStyle == sim::VersionStyle::Fields ? "1.0" : "2.99";
    for (const std::string& os : {std::string(), older}) {
      Bench bench(std::string(model.name), 1, os);
      Channel* link = bench.Link();
      ASSERT_NE(link, nullptr);
      ASSERT_TRUE(link->StopController(1));  // nothing moves by itself
      for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
        const auto type = static_cast<OperandTypeCode>(code);
        SCOPED_TRACE(std::string(model.name) + " O/S " + os + ", " + std::string(TypeName(type)));
        const bool hasList = type != OperandTypeCode::DBI || IsCompactDriverModel(model.name);
        const std::int32_t count = os.empty() ? OperandCount(type, model.name) : LegacyOsOperandCount(type, model.name);
        CheckType(*link, model.name, type, hasList ? count : 0);
      }
    }
  }
}

TEST(Agreement, WhichOsIsAnOlderOne) {
  for (const sim::Model& model : sim::AllModels()) {
    const bool isFields = model.versionStyle == sim::VersionStyle::Fields;
    for (const char* number :
         isFields ? std::vector{"0.9", "1.0", "1.1", "1.10", "2.0"} : std::vector{"1.60", "2.99", "3.00", "4.60"}) {
      SCOPED_TRACE(std::string(model.name) + " " + number);
      Bench bench(std::string(model.name), 1, number);
      const auto version = bench.Link()->GetVersionInfo(1);
      ASSERT_TRUE(version);
      EXPECT_EQ(IsOsCurrent(model.name, version->osVersion), !sim::HasOlderOperandCounts(model, number));
    }
  }
}

TEST(Agreement, WhatAModelReportsAndWhatItIs) {
  for (const sim::Model& model : sim::AllModels()) {
    SCOPED_TRACE(model.name);
    const bool isCompact = model.family == sim::Family::Compact;
    // The two Q50 report the same text.
    EXPECT_EQ(ModelOfIdentification(model.reported), model.name == "Q50Net" ? "Q50" : model.name);
    EXPECT_EQ(IsColourModel(model.name), model.HasColour());
    EXPECT_EQ(IsExtendedColourModel(model.name), model.operands == sim::OperandGroup::LargeMemory);
    EXPECT_EQ(IsCompactModel(model.name), model.operands == sim::OperandGroup::Compact);
    EXPECT_EQ(UnderstandsAsciiOnly(model.reported), isCompact);
    EXPECT_EQ(UnderstandsAsciiOnly(model.bootText), isCompact);
    EXPECT_EQ(IsBrioCode(model.bootText), model.name == "BRIO");
  }
}

TEST(Agreement, EveryModelHasATwin) {
  for (const std::string_view name : SelectableModels()) {
    const sim::Model* twin = sim::FindModel(name);
    EXPECT_TRUE(twin != nullptr && twin->name == name) << name;
  }
  for (const sim::Model& model : sim::AllModels()) {
    EXPECT_EQ(std::ranges::count(SelectableModels(), model.name), 1) << model.name;
  }
}

}  // namespace
}  // namespace kv::matrix
