#include "tests/kvtele/CommandFixture.h"

#include <sstream>
#include <utility>

#include "base/PathText.h"

namespace kv::test {

CommandFixture::CommandFixture() {
  std::filesystem::create_directories(home.Path() / "Sessions" / "Default");
}

std::string CommandFixture::PathOf(const std::string& name) const {
  return Utf8FromPath(home.Path() / PathFromUtf8(name));
}

std::vector<std::string> CommandFixture::WordsOf(const std::string& line) const {
  std::vector<std::string> words;
  bool isQuoted = false;
  bool isInWord = false;
  for (const char c : line) {
    if (c == '\'') isQuoted = !isQuoted;
    if (c == ' ' && !isQuoted) {
      isInWord = false;
      continue;
    }
    if (!std::exchange(isInWord, true)) words.emplace_back();
    if (c != '\'') words.back() += c;
  }
  for (std::string& word : words) {
    if (word.starts_with('@')) word = PathOf(word.substr(1));
  }
  return words;
}

Result CommandFixture::Run(const std::string& line) {
  std::ostringstream out;
  std::ostringstream err;
  if (outIsBroken) out.setstate(std::ios::badbit);
  const std::filesystem::path trace = home.Path() / "trace.txt";
  cli::Environment environment{
      .out = out,
      .err = err,
      .errIsTerminal = errIsTerminal,
      .input = input,
      .pacer = pacer,
      .clock = pacer,
      .password = password,
      .places = places.value_or(ProgramPlaces{home.Path(), {}}),
      .makeDriver = [&](cli::DriverOrder order) -> cli::OrFailure<std::unique_ptr<CommDriver>> {
        if (driver) return std::move(driver);
        if (order.traceFile.empty()) order.traceFile = Utf8FromPath(trace);
        auto real =
            std::make_unique<Driver>(pacer, [this](const std::string& model) { return NewLine(model); }, makePort);
        return cli::SetUpDriver(std::move(real), order, nullptr);
      },
      .listSerialPorts = [this] { return serialPorts; },
      .journalDisk = recordsChanges ? &SystemJournalDisk() : nullptr,
      .stateFolder = home.Path() / "state",
  };
  std::filesystem::remove(trace);
  const auto exit = cli::RunKvTele(WordsOf(line), environment);
  return {static_cast<int>(exit), out.str(), err.str(), TemporaryFolder::Content(trace)};
}

// Leads to whichever controller is there when it is connected.
class CommandFixture::Cable final : public InProcessLine {
 public:
  Cable(CommandFixture& fixture, std::string model) : mFixture(fixture), mModel(std::move(model)) {}

  bool Connect(Instant now) override {
    mLine = mFixture.LineTo(mModel);
    return mLine->Connect(now);
  }
  void Disconnect(Instant now) override { mLine->Disconnect(now); }
  bool IsConnected() const override { return mLine && mLine->IsConnected(); }
  void Write(std::string_view bytes, Instant now) override { mLine->Write(bytes, now); }
  std::string Read(Instant now) override { return mLine->Read(now); }
  std::optional<Instant> NextEvent() const override { return mLine->NextEvent(); }

 private:
  CommandFixture& mFixture;
  std::string mModel;
  std::unique_ptr<InProcessLine> mLine;
};

std::unique_ptr<InProcessLine> CommandFixture::NewLine(const std::string& model) {
  return LineTo(model) ? std::make_unique<Cable>(*this, model) : nullptr;
}

std::unique_ptr<InProcessLine> CommandFixture::LineTo(const std::string& model) {
  auto& controller = mControllers[model];
  if (!controller) {
    options.model = model;
    auto created = sim::SimulatedController::Create(options);
    if (!created) return nullptr;
    controller = std::move(*created);
  }
  return controller->NewLine();
}

}  // namespace kv::test
