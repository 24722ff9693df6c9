#include "dataview/sheets/XlsReader.h"

#include <bit>
#include <cstdint>
#include <optional>
#include <utility>

#include "base/LittleEndian.h"
#include "dataview/sheets/BiffCursor.h"
#include "dataview/sheets/CompoundReader.h"
#include "dataview/sheets/SheetBuilder.h"

// The records and their fields are those of the BIFF8 file format that its makers have published.
namespace kv {
namespace {

enum Record : std::uint16_t {
  kFormula = 0x0006,
  kEof = 0x000A,
  kFilePass = 0x002F,
  kBoundSheet = 0x0085,
  kMulRk = 0x00BD,
  kRichString = 0x00D6,
  kSst = 0x00FC,
  kLabelSst = 0x00FD,
  kNumber = 0x0203,
  kLabel = 0x0204,
  kBoolErr = 0x0205,
  kString = 0x0207,
  kRk = 0x027E,
  kBof = 0x0809,
};

constexpr std::uint16_t kBiff8 = 0x0600;

using Done = std::expected<void, SheetError>;

std::string Offset(std::size_t offset) {
  return "offset " + std::to_string(offset) + " of its records";
}

std::unexpected<SheetError> Damaged(std::size_t offset) {
  return SheetFailure(Offset(offset), "the file is damaged or was cut off");
}

double F64(std::string_view bytes, std::size_t at) {
  return std::bit_cast<double>(LittleEndianAt<std::uint64_t>(bytes, at));
}

// A number packed into 30 bits: the upper bits of a float or a whole number, either maybe in hundredths.
double UnpackRk(std::uint32_t packed) {
  const double value = (packed & 2) != 0 ? static_cast<double>(static_cast<std::int32_t>(packed) >> 2)
                                         : std::bit_cast<double>(std::uint64_t{packed & 0xFFFFFFFCU} << 32);
  return (packed & 1) != 0 ? value / 100 : value;
}

// What the first part of the stream says about the workbook.
struct Globals {
  std::string sheetName = {};
  std::optional<std::size_t> sheetOffset = {};
  std::vector<std::string> texts = {};
};

class XlsReader {
 public:
  explicit XlsReader(std::string_view stream) : mStream(stream) {}

  std::expected<SheetTable, SheetError> Read() {
    if (Done done = ReadGlobals(); !done) return std::unexpected(done.error());
    if (!mGlobals.sheetOffset) return SheetFailure("workbook", "it has no sheet of cells");
    if (Done done = ReadSheet(*mGlobals.sheetOffset); !done) return std::unexpected(done.error());
    return mBuilder.Take(std::move(mGlobals.sheetName));
  }

 private:
  [[nodiscard]] Done ReadGlobals();
  [[nodiscard]] Done ReadGlobal(const BiffRecord& record);
  [[nodiscard]] Done CheckVersion(const BiffRecord& record) const;
  void ReadBoundSheet(const BiffRecord& record);
  [[nodiscard]] Done ReadTexts(const BiffRecord& record);

  [[nodiscard]] Done ReadSheet(std::size_t offset);
  [[nodiscard]] Done ReadCell(const BiffRecord& record);
  [[nodiscard]] Done ReadNumbers(const BiffRecord& record);
  [[nodiscard]] Done ReadSharedText(const BiffRecord& record);
  [[nodiscard]] Done ReadOwnText(const BiffRecord& record);
  [[nodiscard]] Done ReadFormula(const BiffRecord& record);
  [[nodiscard]] Done ReadFormulaText(const BiffRecord& record);
  [[nodiscard]] Done PutBoolOrError(bool isError, std::uint8_t value);

  std::string_view mStream;
  Globals mGlobals;
  SheetBuilder mBuilder;
  std::size_t mRow = 0;  // of the cell that was read last: a formula's text follows in a record of its own
  std::size_t mColumn = 0;
  bool mTextFollows = false;
};

Done XlsReader::ReadGlobals() {
  std::size_t offset = 0;
  auto record = TakeRecord(mStream, offset);
  if (!record || record->type != kBof) return Damaged(0);
  if (Done done = CheckVersion(*record); !done) return done;
  while ((record = TakeRecord(mStream, offset))) {
    if (record->type == kEof) return {};
    if (Done done = ReadGlobal(*record); !done) return done;
  }
  return Damaged(offset);
}

Done XlsReader::ReadGlobal(const BiffRecord& record) {
  if (record.type == kFilePass) {
    return SheetFailure("workbook", "it is protected by a password; save it without one");
  }
  if (record.type == kBoundSheet) ReadBoundSheet(record);
  if (record.type == kSst) return ReadTexts(record);
  return {};
}

Done XlsReader::CheckVersion(const BiffRecord& record) const {
  if (LittleEndianAt<std::uint16_t>(record.Data(), 0) == kBiff8) return {};
  return SheetFailure("workbook", "it is of a kind before Excel 97; save it as .xls of Excel 97 or as .xlsx");
}

// The first sheet of cells counts; charts and macros are sheets, too.
void XlsReader::ReadBoundSheet(const BiffRecord& record) {
  BiffCursor cursor(record);
  const std::size_t offset = cursor.U32();
  const bool isOfCells = (cursor.U16() & 0x0F00) == 0;
  if (!isOfCells || mGlobals.sheetOffset) return;
  mGlobals.sheetOffset = offset;
  mGlobals.sheetName = cursor.Text(cursor.U8());
}

Done XlsReader::ReadTexts(const BiffRecord& record) {
  constexpr std::size_t kUses = 4;  // how often the texts are used does not matter
  BiffCursor cursor(record, kUses);
  const std::uint32_t count = cursor.U32();
  if (count > kMaxSheetCells) return SheetFailure(Offset(record.offset), "it has more than a million texts");
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t units = cursor.U16();
    mGlobals.texts.push_back(cursor.Text(units));
    if (cursor.Failed()) return Damaged(record.offset);
  }
  return {};
}

Done XlsReader::ReadSheet(std::size_t offset) {
  int depth = 0;  // charts in the sheet are sheets within it
  while (auto record = TakeRecord(mStream, offset)) {
    if (record->type == kBof) {
      if (Done done = CheckVersion(*record); !done) return done;
      ++depth;
    } else if (depth == 0) {
      return Damaged(record->offset);
    } else if (record->type == kEof) {
      if (--depth == 0) return {};
    } else if (depth == 1) {
      if (Done done = ReadCell(*record); !done) return done;
    }
  }
  return Damaged(offset);
}

Done XlsReader::ReadCell(const BiffRecord& record) {
  constexpr std::size_t kShortestCell = 8;
  const std::string_view data = record.Data();
  if (record.type == kString) return ReadFormulaText(record);
  switch (record.type) {
    case kNumber:
    case kRk:
    case kMulRk:
    case kLabelSst:
    case kLabel:
    case kRichString:
    case kFormula:
    case kBoolErr:
      break;
    default:
      return {};
  }
  if (data.size() < kShortestCell) return Damaged(record.offset);
  mRow = LittleEndianAt<std::uint16_t>(data, 0);
  mColumn = LittleEndianAt<std::uint16_t>(data, 2);
  mTextFollows = false;
  switch (record.type) {
    case kLabelSst:
      return ReadSharedText(record);
    case kLabel:
    case kRichString:
      return ReadOwnText(record);
    case kFormula:
      return ReadFormula(record);
    case kBoolErr:
      return PutBoolOrError(data[7] != 0, static_cast<std::uint8_t>(data[6]));
    default:
      return ReadNumbers(record);
  }
}

Done XlsReader::ReadNumbers(const BiffRecord& record) {
  constexpr std::size_t kNumberAt = 6;
  constexpr std::size_t kPackedSize = 6;  // a format and a packed number
  const std::string_view data = record.Data();
  if (record.type == kNumber) {
    if (data.size() < kNumberAt + sizeof(double)) return Damaged(record.offset);
    return mBuilder.PutNumber(mRow, mColumn, F64(data, kNumberAt));
  }
  if (data.size() < kNumberAt + 4) return Damaged(record.offset);
  for (std::size_t at = kNumberAt; at + 4 <= data.size(); at += kPackedSize, ++mColumn) {
    const Done done = mBuilder.PutNumber(mRow, mColumn, UnpackRk(LittleEndianAt<std::uint32_t>(data, at)));
    if (!done || record.type == kRk) return done;
  }
  return {};
}

Done XlsReader::ReadSharedText(const BiffRecord& record) {
  const std::size_t index = LittleEndianAt<std::uint32_t>(record.Data(), 6);
  if (record.Data().size() < 10 || index >= mGlobals.texts.size()) return Damaged(record.offset);
  return mBuilder.PutText(mRow, mColumn, mGlobals.texts[index]);
}

Done XlsReader::ReadOwnText(const BiffRecord& record) {
  BiffCursor cursor(record, 6);
  std::string text = cursor.Text(cursor.U16());
  if (cursor.Failed()) return Damaged(record.offset);
  return mBuilder.PutText(mRow, mColumn, std::move(text));
}

// The value that was computed last: a number, or with 0xFFFF at its end a mark of another kind of value.
Done XlsReader::ReadFormula(const BiffRecord& record) {
  const std::string_view value = record.Data().substr(6);
  if (value.size() < sizeof(double)) return Damaged(record.offset);
  if (LittleEndianAt<std::uint16_t>(value, 6) != 0xFFFF) return mBuilder.PutNumber(mRow, mColumn, F64(value, 0));
  enum Kind : std::uint8_t { kText, kBool, kError };
  const auto kind = static_cast<std::uint8_t>(value[0]);
  mTextFollows = kind == kText;
  if (kind == kBool || kind == kError) return PutBoolOrError(kind == kError, static_cast<std::uint8_t>(value[2]));
  return mBuilder.PutText(mRow, mColumn, {});
}

Done XlsReader::ReadFormulaText(const BiffRecord& record) {
  if (!std::exchange(mTextFollows, false)) return {};
  BiffCursor cursor(record);
  std::string text = cursor.Text(cursor.U16());
  if (cursor.Failed()) return Damaged(record.offset);
  return mBuilder.PutText(mRow, mColumn, std::move(text));
}

Done XlsReader::PutBoolOrError(bool isError, std::uint8_t value) {
  if (isError) return mBuilder.PutText(mRow, mColumn, {});
  return mBuilder.PutNumber(mRow, mColumn, value == 0 ? 0 : 1);
}

}  // namespace

std::expected<SheetTable, SheetError> ReadXls(std::string_view content) {
  const auto file = CompoundReader::Open(content);
  if (!file) return std::unexpected(file.error());
  if (file->Has("EncryptedPackage")) {
    return SheetFailure("workbook", "it is protected by a password; save it without one");
  }
  if (!file->Has("Workbook") && file->Has("Book")) {
    return SheetFailure("workbook", "it is of a kind before Excel 97; save it as .xls of Excel 97 or as .xlsx");
  }
  const auto stream = file->Stream("Workbook");
  if (!stream) return std::unexpected(stream.error());
  return XlsReader(*stream).Read();
}

}  // namespace kv
