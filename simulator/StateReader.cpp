#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "base/LineReader.h"
#include "base/Numbers.h"
#include "base/Texts.h"
#include "simulator/HexText.h"
#include "simulator/StateFile.h"

namespace sim {
namespace {

constexpr std::size_t kLongestName = 20;

// Reads the lines from the top down; every step says what it wants to see when it does not see it.
class StateReader {
 public:
  StateReader(std::string_view text, Machine& machine) : mLines(text), mMachine(machine) {}

  std::expected<void, kv::LineError> Read() {
    const bool isRead = ReadHead() && ReadContent() && ReadCheck();
    if (isRead) return {};
    return std::unexpected(kv::LineError{mLines.Number(), mWanted});
  }

 private:
  bool ReadHead() {
    if (!NextLine() || mRest != "KVSIM-STATE 1")
      return Want("\"KVSIM-STATE 1\", the first line of a state file, was expected");
    return ReadModel() && ReadSerial() && ReadOs() && ReadRunState() && ReadProjectName();
  }

  bool ReadModel() {
    const std::string model(mMachine.model.name);
    if (!NextLine() || !Take("model ") || mRest != model) return Want("\"model " + model + "\" was expected");
    return true;
  }

  bool ReadSerial() {
    if (!NextLine() || !Take("serial ")) return Want("\"serial\" was expected");
    HexReader digits(mRest);
    mMachine.identity.serial = digits.Number(8);
    return digits.IsGoodAndDone() || Want("a serial number of 8 digits was expected");
  }

  bool ReadOs() {
    OsVersion os;
    if (!NextLine() || !Take("os ") || !IsOsNumber(mMachine.model, mRest))
      return Want("\"os\" and a version were expected");
    os.number = mRest;
    if (!NextLine() || !Take("build ")) return Want("\"build\" was expected");
    const auto build = kv::ParseInteger(mRest);
    if (!build || *build < 0 || *build > 99) return Want("a build from 0 to 99 was expected");
    os.build = static_cast<int>(*build);
    mMachine.SetOs(os);
    if (!NextLine() || !Take("os-loaded ") || (mRest != "0" && mRest != "1"))
      return Want("\"os-loaded 0\" or 1 was expected");
    mMachine.identity.hasOs = mRest == "1";
    return true;
  }

  bool ReadRunState() {
    const bool isState =
        NextLine() && Take("state ") && mRest.size() == 1 && std::string_view("RSBL").contains(mRest[0]);
    if (!isState) return Want("\"state\" and one of R, S, B, L were expected");
    mMachine.SetState(static_cast<RunState>(mRest[0]));
    return true;
  }

  bool ReadProjectName() {
    if (!NextLine() || !Take("project ")) return Want("\"project\" was expected");
    HexReader digits(mRest);
    mMachine.identity.projectName = digits.RestAsBytes();
    const bool isName = digits.IsGood() && mMachine.identity.projectName.size() <= kLongestName;
    return isName || Want("a project name of at most 20 bytes was expected");
  }

  // Cells and memory, up to the line of the check.
  bool ReadContent() {
    Clear();
    while (NextLine()) {
      if (mRest.starts_with(kv::kCheckWord)) return true;
      const bool isRead = Take("cells ")    ? ReadCells()
                          : Take("memory ") ? ReadMemory()
                                            : Want("\"cells\", \"memory\" or \"check\" was expected");
      if (!isRead) return false;
    }
    return Want("\"check\" was expected: the file is cut");
  }

  void Clear() {
    mMachine.operands.Clear();
    for (std::size_t i = 0; i < mMachine.memory.Segments().size(); ++i) mMachine.memory.Erase(i);
  }

  bool ReadCells() {
    const auto name = TakeWord();
    const auto row = std::ranges::find(AllAreas(), name, &AreaRow::name);
    if (row == AllAreas().end()) return Want("the name of an operand area was expected");
    const auto first = TakeNumber(4);
    const std::size_t count = mRest.size() / 8;
    const std::size_t cells = mMachine.operands.Cells(row->area).size();
    if (!first || count == 0 || *first > cells || count > cells - *first)
      return Want("an address and values inside the area were expected");
    HexReader digits(mRest);
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t value = digits.Number(8);
      if (value > row->greatest) return Want("a value that this operand can hold was expected");
      mMachine.operands.SetCell(row->area, *first + i, value);
    }
    return digits.IsGoodAndDone() || Want("values of 8 digits were expected");
  }

  bool ReadMemory() {
    const std::size_t segment = mMachine.memory.IndexOf(TakeWord());
    if (segment == mMachine.memory.Segments().size()) return Want("the code of a segment was expected");
    const auto offset = TakeNumber(8);
    HexReader digits(mRest);
    const std::string bytes = digits.RestAsBytes();
    const std::size_t size = mMachine.memory.Content(segment).size();
    const bool fits = offset && digits.IsGood() && *offset <= size && bytes.size() <= size - *offset;
    if (!fits) return Want("an offset and bytes inside the segment were expected");
    mMachine.memory.Write(segment, *offset, bytes);
    return true;
  }

  bool ReadCheck() {
    if (!kv::IsCheckLine(mLines.Line(), mLines.Before()) || !mLines.IsAtEnd())
      return Want("the checksum of the lines above was expected: the file is damaged");
    return true;
  }

  bool NextLine() {
    if (!mLines.Next() || !mLines.IsEnded()) return false;
    mRest = mLines.Line();
    return true;
  }

  bool Take(std::string_view beginning) {
    if (!mRest.starts_with(beginning)) return false;
    mRest.remove_prefix(beginning.size());
    return true;
  }

  std::string_view TakeWord() { return kv::TakeField(mRest, ' '); }

  std::optional<std::uint32_t> TakeNumber(std::size_t digits) {
    const auto word = TakeWord();
    HexReader reader(word);
    const std::uint32_t number = reader.Number(digits);
    return reader.IsGoodAndDone() ? std::optional(number) : std::nullopt;
  }

  bool Want(std::string what) {
    mWanted = std::move(what);
    return false;
  }

  kv::LineReader mLines;
  Machine& mMachine;
  std::string_view mRest;  // of the line at hand
  std::string mWanted;
};

}  // namespace

std::expected<void, kv::LineError> ReadState(std::string_view text, Machine& machine) {
  return StateReader(text, machine).Read();
}

}  // namespace sim
