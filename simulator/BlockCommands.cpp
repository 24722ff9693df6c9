#include "simulator/BlockCommands.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>

#include "simulator/OperandList.h"
#include "simulator/PanelCommands.h"

namespace sim {
namespace {

constexpr int kDone = 10;
constexpr int kDoneInBackground = 11;
constexpr int kBusy = 5;
constexpr int kRefused = 128;

constexpr std::uint32_t kRunStateField = 7;
constexpr std::uint32_t kRunStateLength = 2;
constexpr std::uint32_t kStatusLength = 106;
constexpr std::size_t kPasswordBlock = 8;
constexpr std::uint32_t kLongestRead = 4096;

using Answer = BlockAnswer;

Answer Done(std::string payload = {}) {
  return BlockReply{kDone, std::move(payload)};
}

Answer AnswerOf(const Result<void>& done) {
  return done ? Done() : Refuse(done.error());
}

Answer AnswerOf(Result<std::string> payload) {
  if (!payload) return Refuse(payload.error());
  return Done(std::move(*payload));
}

bool IsInBootLoader(const Machine& machine) {
  return machine.State() == RunState::Boot;
}

Answer TellRunState(Machine& machine, const BlockRequest& request) {
  if (request.param1 != kRunStateField || request.dataLength != kRunStateLength) return Refuse(Refusal::Malformed);
  return Done({machine.StateLetter(), '\0'});
}

Answer Accept(Machine&, const BlockRequest&) {
  return Done();
}

Answer TellStatus(Machine& machine, const BlockRequest& request) {
  if (request.dataLength != kStatusLength) return Refuse(Refusal::Malformed);
  const bool inBoot = IsInBootLoader(machine);
  const bool programs = machine.flash.IsBusyWith(FlashWork::Kind::Program);
  const bool isValid = inBoot ? machine.aurexOs.HasWholeTopic() : machine.project.IsProgrammed();
  std::string status(kStatusLength, '\0');
  status[0] = 'R';
  status[2] = programs ? 'P' : 'I';
  status[3] = static_cast<char>(machine.flash.PercentDone());
  status[8] = static_cast<char>(inBoot ? machine.aurexOs.ChunkCount() : machine.project.TopicCount());
  status[9] = isValid && !programs ? 1 : 0;
  status[10] = inBoot && !programs && machine.aurexOs.NewVersion() ? 1 : 0;
  status[28] = inBoot ? 3 : 0;
  return Done(std::move(status));
}

Answer BeginProject(Machine& machine, const BlockRequest& request) {
  if (request.payload.size() != kPasswordBlock) return Refuse(Refusal::Malformed);
  machine.BeginLoad();
  machine.project.Begin(request.payload);
  return Done();
}

Answer ConfirmProject(Machine& machine, const BlockRequest& request) {
  if (request.payload.size() != kPasswordBlock) return Refuse(Refusal::Malformed);
  return AnswerOf(machine.project.Confirm(request.payload));
}

Answer TakeTopic(Machine& machine, const BlockRequest& request) {
  if (request.dataLength != request.payload.size()) return Refuse(Refusal::Malformed);
  if (!IsInBootLoader(machine)) return AnswerOf(machine.project.TakeTopic(request.param3, request.payload));
  return AnswerOf(machine.aurexOs.Take({request.param1, request.param3, request.param4, std::string(request.payload)}));
}

// 300 ms and 20 us a byte, 5 s at most: a status poll sees it at work, nobody waits long.
kv::Duration ProgrammingTime(std::size_t bytes) {
  const kv::Duration time = std::chrono::milliseconds(300) + kv::Duration(20) * static_cast<std::int64_t>(bytes);
  return std::min<kv::Duration>(time, std::chrono::seconds(5));
}

Answer Program(Machine& machine, const BlockRequest&) {
  const auto bytes = IsInBootLoader(machine) ? machine.aurexOs.Program() : machine.project.Program();
  if (!bytes) return Refuse(bytes.error());
  machine.flash.Start(FlashWork::Kind::Program, ProgrammingTime(*bytes));
  return BlockReply{kDoneInBackground, {}};
}

Answer ReadOperandRecords(Machine& machine, const BlockRequest& request) {
  const std::uint64_t expected = std::uint64_t{request.dataLength} * kOperandRecordSize;
  if (request.payload.size() != expected) return Refuse(Refusal::Malformed);
  return AnswerOf(ReadOperandList(machine.operands, request.payload));
}

Answer ReadMemory(Machine& machine, const BlockRequest& request) {
  if (request.dataLength == 0 || request.dataLength > kLongestRead) return Refuse(Refusal::PastTheEnd);
  return AnswerOf(machine.memory.Read(request.param1, request.dataLength));
}

Answer ListResources(Machine& machine, const BlockRequest& request) {
  return AnswerOf(machine.resources.Directory(request.param3, request.param1));
}

Answer ReadResource(Machine& machine, const BlockRequest& request) {
  return AnswerOf(machine.resources.Piece(request.param3, request.param4, request.param1, request.dataLength));
}

Answer SetSystemMode(Machine& machine, const BlockRequest& request) {
  if (request.param1 > 1) return Refuse(Refusal::Malformed);
  machine.displayInSystemMode = request.param1 == 1;
  return Done();
}

using Models = BlockOperation::Models;

// clang-format off
constexpr BlockOperation kOperations[] = {
    // code access flash  models               boot   payload does
    {0,    false, false, Models::All,         true,  false,  TellRunState},
    {1,    false, false, Models::All,         true,  false,  Accept},
    {2,    true,  true,  Models::All,         false, true,   ConfirmProject},
    {7,    false, false, Models::All,         true,  false,  TellStatus},
    {8,    false, false, Models::All,         true,  false,  Accept},
    {65,   true,  true,  Models::All,         true,  true,   TakeTopic},
    {66,   true,  true,  Models::All,         false, true,   BeginProject},
    {69,   true,  true,  Models::All,         true,  false,  Program},
    {256,  false, false, Models::All,         false, true,   ReadOperandRecords},
    {257,  false, false, Models::All,         false, false,  ReadMemory},
    {258,  false, false, Models::WithColour,  true,  false,  ListResources},
    {259,  false, false, Models::WithColour,  true,  false,  ReadResource},
    {260,  false, false, Models::WithColour,  true,  false,  SetSystemMode},
    {270,  false, false, Models::WithDisplay, false, false,  DescribePanel},
    {271,  false, false, Models::WithDisplay, false, true,   TellPanelChanges},
    {272,  true,  false, Models::WithDisplay, false, true,   TakePanelEvent},
};
// clang-format on

const BlockOperation* FindOperation(std::uint16_t opCode) {
  const auto operation = std::ranges::find(kOperations, opCode, &BlockOperation::opCode);
  return operation == std::end(kOperations) ? nullptr : &*operation;
}

Answer Execute(Machine& machine, const BlockRequest& request, const ConnectionAccess& connection) {
  const BlockOperation* operation = FindOperation(request.opCode);
  if (operation == nullptr) return Refuse(Refusal::UnknownCommand);
  if (!operation->IsAtHome(machine.model)) return Refuse(Refusal::NotOnThisModel);
  if (operation->needsAccess && !machine.MayAccess(connection)) return Refuse(Refusal::PasswordNeeded);
  if (IsInBootLoader(machine) && !operation->worksInBoot) return Refuse(Refusal::WrongState);
  if (operation->needsFlash && machine.flash.IsBusy()) return Refuse(Refusal::Busy);
  if (!operation->takesPayload && !request.payload.empty()) return Refuse(Refusal::Malformed);
  return operation->execute(machine, request);
}

}  // namespace

bool BlockOperation::IsAtHome(const Model& model) const {
  if (!model.UnderstandsBlocks()) return false;
  if (models == Models::WithColour) return model.HasColour();
  return models == Models::All || model.display.kind != Display::Kind::None;
}

std::span<const BlockOperation> AllBlockOperations() {
  return kOperations;
}

BlockReply ExecuteBlock(Machine& machine, const BlockRequest& request, const ConnectionAccess& connection) {
  auto answer = Execute(machine, request, connection);
  if (answer) return std::move(*answer);
  if (answer.error() == Refusal::Busy) return {kBusy, {}};
  return {kRefused + static_cast<int>(answer.error()), {}};
}

// What a controller guards is what it keeps.
bool MayChangeState(std::uint16_t opCode) {
  const BlockOperation* operation = FindOperation(opCode);
  return operation != nullptr && operation->needsAccess;
}

}  // namespace sim
