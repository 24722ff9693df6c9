#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "base/AtomicFile.h"
#include "base/Crc32.h"
#include "base/PathText.h"
#include "simulator/BlockCommands.h"
#include "simulator/Controller.h"
#include "simulator/Machine.h"
#include "simulator/MachineOperands.h"
#include "simulator/StateFile.h"
#include "simulator/TextCommands.h"

namespace sim {
namespace {

constexpr std::size_t kLongestPassword = 8;

class ControllerImpl final : public Controller {
 public:
  ControllerImpl(std::unique_ptr<Machine> machine, std::filesystem::path stateFile)
      : mMachine(std::move(machine)), mStateFile(std::move(stateFile)) {}

  void Advance(kv::Instant now) override { mMachine->Advance(now); }

  TextReply ExecuteText(std::string_view text, ConnectionAccess& connection) override {
    if (mIsLying) return Pretend(text, connection);
    TextReply reply = sim::ExecuteText(*mMachine, text, connection);
    mHasChanged = mHasChanged || !reply.changesNothing;
    KeepLease(connection);
    return reply;
  }

  void Restart() override {
    mMachine->Restart();
    mHasChanged = true;
  }

  BlockReply ExecuteBlock(const BlockRequest& request, ConnectionAccess& connection) override {
    if (mIsLying) {
      Machine copy(*mMachine);
      return sim::ExecuteBlock(copy, request, connection);
    }
    mHasChanged = mHasChanged || MayChangeState(request.opCode);
    BlockReply reply = sim::ExecuteBlock(*mMachine, request, connection);
    KeepLease(connection);
    return reply;
  }

  void EndConnection(const ConnectionAccess& connection) override {
    MachineOperands operands(mMachine->operands);
    mMachine->panel.EndLease(connection.lease, operands);
  }

  bool UnderstandsBlocks() const override { return mMachine->model.UnderstandsBlocks(); }
  std::uint8_t Unit() const override { return mMachine->identity.unit; }

  void SetLying(bool lying) override { mIsLying = lying; }

  std::expected<void, std::string> SaveState() override {
    const bool mayDiffer = mHasChanged || mMachine->panel.IsPlantAwake();
    if (mStateFile.empty() || !mayDiffer) return {};
    const auto saved = kv::SaveAtomically(mStateFile, WriteState(*mMachine));
    if (!saved) return std::unexpected("The state was not saved: " + saved.error().Text());
    mHasChanged = false;
    return {};
  }

 private:
  // What is done to a copy is answered as it would be, and is done to nothing.
  TextReply Pretend(std::string_view text, ConnectionAccess& connection) const {
    Machine copy(*mMachine);
    const ConnectionAccess before = connection;
    TextReply reply = sim::ExecuteText(copy, text, connection);
    if (reply.resets) connection = before;
    reply.newBaud.reset();
    reply.resets = false;
    return reply;
  }

  void KeepLease(ConnectionAccess& connection) {
    if (const auto lease = mMachine->panel.TakeNewLease()) connection.lease = *lease;
  }

  std::unique_ptr<Machine> mMachine;
  std::filesystem::path mStateFile;
  bool mIsLying = false;
  bool mHasChanged = true;  // a new controller has a serial number to keep
};

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

std::string ModelNames() {
  std::string names;
  for (const Model& model : AllModels()) names += (names.empty() ? "" : ", ") + std::string(model.name);
  return names;
}

// The sentence for people when an option cannot be used.
std::optional<std::string> WhyUnusable(const SimulatorOptions& options, const Model& model) {
  if (!options.osVersion.empty() && !IsOsNumber(model, options.osVersion)) {
    const std::string shape =
        model.versionStyle == VersionStyle::Fields ? "major and minor, as 1.10" : "digits with points, as 4.60";
    return "The O/S version " + Quoted(options.osVersion) + " does not fit the model " + Quoted(model.name) +
           ": give " + shape + ".";
  }
  if (options.osBuild && (*options.osBuild < 0 || *options.osBuild > 99)) return "The O/S build must be from 0 to 99.";
  const bool isPassword = options.password.size() <= kLongestPassword &&
                          std::ranges::all_of(options.password, [](char c) { return c >= ' ' && c <= '~'; });
  if (!isPassword) return "The password must have at most 8 characters, all of them letters, digits, signs or blanks.";
  return std::nullopt;
}

Identity FirstIdentity(const SimulatorOptions& options, const Model& model) {
  Identity identity;
  identity.unit = options.unit;
  identity.serial = options.serialNumber.value_or(
      kv::Crc32(std::string(model.name) + "|" + std::to_string(options.unit) + "|" + options.stateFile));
  identity.os = {std::string(model.osVersion), model.osBuild};
  return identity;
}

std::expected<void, std::string> LoadState(const std::filesystem::path& file, Machine& machine) {
  std::error_code ignored;
  if (file.empty() || !std::filesystem::exists(file, ignored)) return {};
  const auto text = kv::ReadWholeFile(file, kLargestStateFile);
  if (!text) return std::unexpected("The state file cannot be read: " + text.error().Text());
  const auto loaded = ReadState(*text, machine);
  if (loaded) return {};
  const kv::FileError error = loaded.error().In(kv::Utf8FromPath(file));
  return std::unexpected("The state file does not fit: " + error.Text() + ". Delete the file, or name another one.");
}

void ApplyOptions(const SimulatorOptions& options, Machine& machine) {
  OsVersion os = machine.identity.os;
  if (!options.osVersion.empty()) os.number = options.osVersion;
  if (options.osBuild) os.build = *options.osBuild;
  machine.SetOs(os);
  machine.password = options.password;
  if (options.boot) machine.SetState(RunState::Boot);
}

}  // namespace

std::expected<std::unique_ptr<Controller>, std::string> Controller::Create(const SimulatorOptions& options) {
  const Model* model = FindModel(options.model);
  if (model == nullptr)
    return std::unexpected("There is no simulated model " + Quoted(options.model) + ". There are: " + ModelNames() +
                           ".");
  if (auto why = WhyUnusable(options, *model)) return std::unexpected(std::move(*why));
  auto machine = std::make_unique<Machine>(*model, FirstIdentity(options, *model), options);
  auto stateFile = kv::PathFromUtf8(options.stateFile);
  if (auto loaded = LoadState(stateFile, *machine); !loaded) return std::unexpected(std::move(loaded.error()));
  ApplyOptions(options, *machine);
  return std::make_unique<ControllerImpl>(std::move(machine), std::move(stateFile));
}

}  // namespace sim
