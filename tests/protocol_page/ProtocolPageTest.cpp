// The page is what a stranger builds from. Each test reads one of its tables and holds both ends to it.

#include <gmock/gmock.h>

#include <array>
#include <map>

#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/RoundTrip.h"
#include "KvCmDrv1/UnitState.h"
#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockFacts.h"
#include "KvCmDrv1/wire/CommandFacts.h"
#include "KvCmDrv1/wire/OperandTypes.h"
#include "base/Hex.h"
#include "dataview/operands/OperandCatalogue.h"
#include "download/AurexPlaces.h"
#include "link/ControllerErrorText.h"
#include "models/ModelCatalogue.h"
#include "simulator/BlockCommands.h"
#include "simulator/CommandTable.h"
#include "simulator/FlashMap.h"
#include "simulator/FrameReader.h"
#include "simulator/OperandTypes.h"
#include "tests/support/MarkdownTables.h"

namespace kv::test {
namespace {

using sim::TextCommand;

RequestKind KindOf(const std::string& letter) {
  return letter == "R" ? RequestKind::Read : letter == "P" ? RequestKind::Idempotent : RequestKind::NonIdempotent;
}

std::string DisplayText(const sim::Display& display) {
  if (display.kind == sim::Display::Kind::None) return "-";
  return std::to_string(display.width) + " x " + std::to_string(display.height);
}

TEST(ProtocolPage, TextCommands) {
  using Home = TextCommand::Home;
  const std::map<std::string, Home> homes = {
      {"-", Home::Everywhere}, {"C", Home::Compact}, {"C'", Home::CompactButQ50}};
  const auto rows = RowsBelow({"Request", "Kind", "Needs", "States", "Models", "Reply"});
  constexpr std::size_t kOfThePanel = 3;
  EXPECT_EQ(rows.size() + kOfThePanel, sim::AllTextCommands().size() + 1);  // SY is the line's
  for (const Row& row : rows) {
    SCOPED_TRACE(row[0]);
    const std::string name = CodeIn(row[0]);
    const bool isTagged = row[0].ends_with(" check");
    EXPECT_TRUE(isTagged || CommandFactsOf(name).kind == KindOf(row[1]));
    EXPECT_EQ(ChangesSomething(name), row[1] != "R" && name != "PV000A" && name != "DI");
    if (name == "SY") continue;
    const TextCommand* command = sim::FindTextCommand(name);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->name, name);
    EXPECT_EQ(command->isRead, row[1] == "R");
    EXPECT_EQ(command->needsAccess, row[2].contains('A'));
    EXPECT_EQ(command->needsFlash, row[2].contains('F'));
    EXPECT_EQ(command->states, row[3]);
    EXPECT_EQ(command->home, homes.at(row[4]));
    EXPECT_TRUE(CodeIn(row[5]).starts_with(command->reply));
    const bool isWhole = row[0] == "`" + name + "`";
    EXPECT_EQ(command->form, isTagged  ? TextCommand::Form::Own
                             : isWhole ? TextCommand::Form::Whole
                                       : TextCommand::Form::Fields);
  }
}

TEST(ProtocolPage, BlockOperations) {
  const auto rows = RowsBelow({"OpCode", "Kind", "Needs", "Boot", "Colour", "Fields", "Payload"});
  const auto operations = sim::AllBlockOperations();
  constexpr std::size_t kOfThePanel = 3;
  ASSERT_EQ(rows.size() + kOfThePanel, operations.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows[i];
    SCOPED_TRACE(row[0]);
    EXPECT_EQ(std::to_string(operations[i].opCode), row[0]);
    EXPECT_EQ(operations[i].needsAccess, row[2].contains('A'));
    EXPECT_EQ(operations[i].needsFlash, row[2].contains('F'));
    EXPECT_EQ(operations[i].worksInBoot, row[3] == "yes");
    EXPECT_EQ(operations[i].models == sim::BlockOperation::Models::WithColour, row[4] == "yes");
    EXPECT_EQ(operations[i].takesPayload, !row[6].starts_with("none"));
    EXPECT_NE(BlockFactsOf(operations[i].opCode).name, "unknown operation");
    EXPECT_EQ(BlockFactsOf(operations[i].opCode).isRead, row[1] == "R");
  }
}

// The same operations in both envelopes.
TEST(ProtocolPage, ThePanel) {
  const auto operations = sim::AllBlockOperations();
  for (const Row& row : RowsBelow({"Request", "Operation", "Kind", "Needs", "States", "Models"})) {
    SCOPED_TRACE(row[0]);
    const TextCommand* command = sim::FindTextCommand(CodeIn(row[0]));
    const auto operation = std::ranges::find(operations, std::stoi(row[1]), &sim::BlockOperation::opCode);
    ASSERT_TRUE(command != nullptr && operation != operations.end());
    EXPECT_EQ(command->isRead, row[2] == "R");
    EXPECT_EQ(command->needsAccess, row[3].contains('A'));
    EXPECT_EQ(operation->needsAccess, row[3].contains('A'));
    EXPECT_FALSE(command->needsFlash || operation->needsFlash || operation->worksInBoot);
    EXPECT_EQ(command->states, row[4]);
    EXPECT_EQ(command->home, TextCommand::Home::CompactWithDisplay);
    EXPECT_EQ(operation->models, sim::BlockOperation::Models::WithDisplay);
    EXPECT_EQ(operation->takesPayload, row[6] != "none");
    EXPECT_EQ(ChangesSomething(command->name), row[2] != "R");
    EXPECT_NE(BlockFactsOf(operation->opCode).name, "unknown operation");
    EXPECT_EQ(BlockFactsOf(operation->opCode).isRead, row[2] == "R");
  }
}

TEST(ProtocolPage, PlacesOfAnAurexOs) {
  const auto rows = RowsBelow({"O/S model", "O/S, first and last address", "Fonts, first and last address"});
  EXPECT_EQ(rows.size(), 4u);
  const auto addresses = [](std::uint32_t first, std::uint32_t end) {
    return ToHex(first, 8) + " " + ToHex(end - 1, 8);
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row[0]);
    const sim::FlashMap* map = sim::FindFlashMap(CodeIn(row[0]));
    ASSERT_TRUE(map);
    EXPECT_EQ(row[1], addresses(map->os.first, map->os.end));
    EXPECT_EQ(row[2], addresses(map->fonts.first, map->fonts.end));
    if (map->osModel == "CLR ") continue;  // no file for colour models
    const AurexPlaces* places = PlacesOf(map->osModel);
    ASSERT_TRUE(places);
    EXPECT_EQ(row[1], addresses(places->osStart, places->osEnd));
    EXPECT_EQ(row[2], addresses(places->fontsStart, places->fontsEnd));
  }
}

TEST(ProtocolPage, EveryReasonIsToldInOneOrder) {
  using sim::RunState;
  constexpr sim::ConnectionAccess stranger, friendly{true};
  for (const TextCommand& command : sim::AllTextCommands()) {
    SCOPED_TRACE(command.name);
    const std::string malformed = std::string(command.name) + (command.form == TextCommand::Form::Whole ? "" : "?");
    const auto answer = [&](std::string_view model, char state, bool isBusy, sim::ConnectionAccess connection) {
      sim::Machine machine(*sim::FindModel(model), {}, {});
      machine.password = "key";
      machine.SetState(static_cast<RunState>(state));
      if (isBusy) machine.flash.Start(sim::FlashWork::Kind::Test, std::chrono::seconds(1));
      const std::string reply = sim::ExecuteText(machine, malformed, connection).text;
      return reply.substr(2).starts_with("ERROR") ? reply.substr(7) : "";
    };
    const auto expect = [&](bool applies, std::string_view code, const std::string& told) {
      EXPECT_TRUE(!applies || told == code) << code << ", but told " << told;
    };
    expect(command.home != TextCommand::Home::Everywhere, "0E", answer("K330", 'R', true, stranger));
    for (const char state : std::string("RSLB")) {
      const bool isPossible = command.states.contains(state);
      expect(command.needsAccess, "07", answer("Q51", state, true, stranger));
      expect(!isPossible, "09", answer("Q51", state, true, friendly));
      expect(isPossible && command.needsFlash, "0A", answer("Q51", state, true, friendly));
      expect(isPossible && malformed != command.name, "02", answer("Q51", state, false, friendly));
    }
  }
}

TEST(ProtocolPage, OperandTypes) {
  for (const Row& row : RowsBelow({"Type", "Operands", "Digits", "Most"})) {
    SCOPED_TRACE(row[1]);
    const int code = std::stoi(row[0], nullptr, 16);
    const std::size_t digits = std::stoul(row[2]);
    const int most = std::stoi(row[3]);
    const OperandType* ours = FindOperandType(code);
    const sim::OperandTypeRow* theirs = sim::FindOperandType(static_cast<std::uint32_t>(code));
    ASSERT_TRUE(ours != nullptr && theirs != nullptr);
    EXPECT_EQ(DigitsOf(ours->shape), digits);
    EXPECT_EQ(theirs->Digits(), digits);
    EXPECT_EQ(ours->maxPerRequest, most);
    EXPECT_EQ(theirs->most, most);
    EXPECT_EQ(theirs->writable, row[4] == "yes");
    constexpr std::size_t kAround = 16 + 12;  // letters, tag, type, start, count; the seal
    EXPECT_LE(kAround + static_cast<std::size_t>(most) * digits, kMaxFrameText);
  }
}

TEST(ProtocolPage, OperandCounts) {
  using namespace mdlDataTypesView;
  constexpr std::array<std::string_view, 3> kModels = {"K330", "K670-67-C30 / K390-29-C30", "Q50"};
  std::map<std::string, Row> page;
  for (Row& row : RowsBelow({"Operands", "plain", "large", "small"})) page[row[0]] = row;
  for (int number = 1; number <= kOperandTypeCount; ++number) {
    const auto type = static_cast<OperandTypeCode>(number);
    const std::string name(TypeName(type));
    const auto found = page.find(name.substr(0, name.find(' ')));  // timers and counters are three types
    ASSERT_NE(found, page.end()) << name;
    for (std::size_t group = 0; group < kModels.size(); ++group) {
      SCOPED_TRACE(name + " of " + std::string(kModels[group]));
      EXPECT_EQ(std::to_string(OperandCount(type, kModels[group])), found->second[1 + group]);
      EXPECT_EQ(std::to_string(LegacyOsOperandCount(type, kModels[group])), found->second[4 + group]);
    }
  }
  for (const sim::AreaRow& area : sim::AllAreas()) {
    const Row& row = page.at(std::string(area.name.substr(0, area.name.find('-'))));
    for (std::size_t group = 0; group < 3; ++group) {
      EXPECT_EQ(std::to_string(area.counts[group]), row[1 + group]) << area.name;
      EXPECT_EQ(std::to_string(area.olderCounts[group]), row[4 + group]) << area.name;
    }
  }
}

TEST(ProtocolPage, Models) {
  constexpr std::array<std::string_view, 3> kGroups = {"plain", "large", "small"};
  const auto rows = RowsBelow({"Model", "Model text", "Boot text", "Hardware code"});
  const auto models = sim::AllModels();
  ASSERT_EQ(rows.size(), models.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const sim::Model& model = models[i];
    const Row& row = rows[i];
    SCOPED_TRACE(row[0]);
    const bool isCompact = !model.UnderstandsBlocks();
    const Row expected = {std::string(model.name),
                          "`" + std::string(model.reported) + "`",
                          "`" + std::string(model.bootText) + "`",
                          "`" + std::string(model.hardware) + "`",
                          isCompact ? "compact" : "Aurex",
                          std::string(kGroups.at(static_cast<std::size_t>(model.operands))),
                          model.versionStyle == sim::VersionStyle::Fields ? "fields" : "digits",
                          "`" + std::string(model.osModel) + "`",
                          std::to_string(model.panel),
                          DisplayText(model.display)};
    EXPECT_EQ(row, expected);
    EXPECT_EQ(UnderstandsAsciiOnly(model.reported), isCompact);
    EXPECT_EQ(UnderstandsAsciiOnly(model.bootText), isCompact);
    EXPECT_EQ(IsColourModel(model.name), model.HasColour());
    EXPECT_EQ(model.display.kind == sim::Display::Kind::ColourDots, model.HasColour());
    EXPECT_EQ(model.display.kind == sim::Display::Kind::None, (model.panel & sim::kDisplay) == 0);
    const auto count = mdlDataTypesView::OperandCount(mdlDataTypesView::OperandTypeCode::MB, model.name);
    EXPECT_EQ(count, sim::CellCount(sim::Area::MB, model.operands, false));
  }
}

TEST(ProtocolPage, RefusalsAndTheirTexts) {
  const auto rows = RowsBelow({"Code", "Meaning", "Told when"});
  EXPECT_EQ(rows.size(), 15U);
  for (const Row& row : rows) EXPECT_EQ(row[1], ControllerErrorText(std::stoi(row[0], nullptr, 16)).meaning) << row[0];
}

TEST(ProtocolPage, TimeOutsAndTries) {
  sim::FrameReader reader(true);
  reader.Feed("\xB4", Instant{});
  EXPECT_FALSE(reader.Next(Instant{}));
  const auto inMilliseconds = [](Duration time) { return std::to_string(time / std::chrono::milliseconds(1)) + " ms"; };
  const std::vector<std::string> expected = {inMilliseconds(LinkSettings().timeOut),
                                             std::to_string(kTimeOuts.lowest) + " ms",
                                             std::to_string(kTimeOuts.highest) + " ms",
                                             std::to_string(LinkSettings().tries),
                                             std::to_string(kTries.highest),
                                             inMilliseconds(RoundTrip::kFloor),
                                             inMilliseconds(kRestartTime),
                                             inMilliseconds(*reader.Deadline() - Instant{})};
  std::vector<std::string> values;
  for (const Row& row : RowsBelow({"What", "Value"})) values.push_back(row[1]);
  EXPECT_EQ(values, expected);
}

TEST(ProtocolPage, StepsOfAProject) {
  constexpr std::array<std::uint16_t, 4> kOperations = {66, 2, 65, 69};
  constexpr std::array<std::uint16_t, 3> kWayThere = {66, 2, 69};
  const auto rows = RowsBelow({"Step", "66", "2", "65", "69"});
  for (std::size_t step = 0; step < rows.size(); ++step) {
    for (std::size_t column = 0; column < kOperations.size(); ++column) {
      sim::Machine machine(*sim::FindModel("K330"), {}, {});
      machine.Advance(Instant{});
      const auto status = [&](std::uint16_t operation) {
        const bool hasBlock = operation == 66 || operation == 2;
        return sim::ExecuteBlock(machine, {operation, 0, 0, 0, 0, hasBlock ? "PASSWORD" : ""}, {}).status;
      };
      for (std::size_t k = 0; k < std::min<std::size_t>(step, 3); ++k) (void)status(kWayThere[k]);
      if (step == 4) machine.Advance(Instant{} + std::chrono::seconds(10));
      EXPECT_EQ(std::to_string(status(kOperations[column])), rows[step][1 + column])
          << rows[step][0] << ", operation " << kOperations[column];
    }
  }
}

}  // namespace
}  // namespace kv::test
