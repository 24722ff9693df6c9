#include "dataview/sheets/XlsWriter.h"

#include <algorithm>
#include <cstdint>
#include <map>

#include "base/Utf8.h"
#include "dataview/sheets/BiffRecords.h"
#include "dataview/sheets/CompoundFile.h"
#include "dataview/sheets/SheetLook.h"

// The records and their fields are those of the BIFF8 file format that its makers have published.
namespace kv {
namespace {

enum Record : std::uint16_t {
  kEof = 0x000A,
  kSelection = 0x001D,
  kDateMode = 0x0022,
  kFont = 0x0031,
  kContinue = 0x003C,
  kWindow1 = 0x003D,
  kPane = 0x0041,
  kCodePage = 0x0042,
  kDefaultColumnWidth = 0x0055,
  kColumnInfo = 0x007D,
  kBoundSheet = 0x0085,
  kXf = 0x00E0,
  kSst = 0x00FC,
  kLabelSst = 0x00FD,
  kDimensions = 0x0200,
  kNumber = 0x0203,
  kRow = 0x0208,
  kWindow2 = 0x023E,
  kStyle = 0x0293,
  kBof = 0x0809,
};

constexpr std::size_t kLongestRecord = 8224;  // what is longer goes on in a CONTINUE record
constexpr std::size_t kRowsInBlock = 32;      // row records stand together, then their cells

// Indices of the formats ("XF") below; 15 is the one of plain cells in every file.
constexpr std::size_t kStyleXfs = 15;
constexpr std::size_t kPlainXf = 15;
constexpr std::size_t kHeadingXf = 16;
constexpr std::size_t kTextXf = 17;

constexpr std::size_t kPlainFont = 0;
constexpr std::size_t kBoldFont = 1;

// Each text once, in the order in which the cells name it.
class SharedTexts {
 public:
  explicit SharedTexts(const SheetTable& table) {
    for (const auto& row : table.rows) {
      for (const SheetCell& cell : row) {
        if (cell.kind == SheetCell::Kind::Text) Add(cell.text);
      }
    }
  }
  [[nodiscard]] std::size_t IndexOf(std::string_view text) const { return mIndices.find(text)->second; }

  void Write(BiffRecords& records) const {
    records.Begin(kSst);
    records.U32(mUses).U32(mInOrder.size());
    for (const std::string_view text : mInOrder) {
      const std::u16string units = Utf16FromUtf8(text);
      constexpr std::size_t kHead = 3;
      if (records.OpenSize() + kHead + 2 * units.size() > kLongestRecord) {
        records.End();
        records.Begin(kContinue);
      }
      records.LongText(units);
    }
    records.End();
  }

 private:
  void Add(std::string_view text) {
    ++mUses;
    if (mIndices.try_emplace(text, mInOrder.size()).second) mInOrder.push_back(text);
  }

  std::map<std::string_view, std::size_t> mIndices;
  std::vector<std::string_view> mInOrder;
  std::size_t mUses = 0;
};
static_assert(2 * kMaxCellBytes + 3 + 8 <= kLongestRecord, "a text stands in one record");

void BeginSubstream(BiffRecords& records, std::uint16_t kind) {
  constexpr std::uint16_t kBiff8 = 0x0600;
  records.Words(kBof, {kBiff8, kind, 0x0DBB, 0x07CC, 0x0041, 0, 0x0006, 0});
}

void WriteFont(BiffRecords& records, bool bold) {
  constexpr std::size_t kHeight = 200;  // twentieths of a point
  records.Begin(kFont);
  records.U16(kHeight).U16(0).U16(0x7FFF).U16(bold ? 700 : 400).U16(0).U32(0).ShortText(u"Arial");
  records.End();
}

struct Format {
  std::size_t font;
  std::size_t numberFormat;  // 0 general, 49 text
  std::uint16_t use;         // 0xFFF5 a style, 1 a cell
  std::uint8_t alignment;
  std::uint8_t ownAttributes;
};

void WriteFormat(BiffRecords& records, const Format& format) {
  records.Begin(kXf);
  records.U16(format.font).U16(format.numberFormat).U16(format.use).U8(format.alignment).U8(0).U8(0);
  records.U8(format.ownAttributes).U32(0).U32(0).U16(0x20C0);
  records.End();
}

void WriteFormats(BiffRecords& records) {
  constexpr std::uint8_t kBottom = 0x20;
  constexpr std::uint8_t kCentred = 0x22;
  constexpr std::uint8_t kRight = 0x23;
  constexpr std::size_t kAsText = 49;
  for (const bool bold : {false, true, false, false}) WriteFont(records, bold);  // files have four at least
  for (std::size_t i = 0; i < kStyleXfs; ++i) {
    WriteFormat(records, {kPlainFont, 0, 0xFFF5, kBottom, static_cast<std::uint8_t>(i == 0 ? 0 : 0xF4)});
  }
  WriteFormat(records, {kPlainFont, 0, 1, kBottom, 0});
  WriteFormat(records, {kBoldFont, 0, 1, kCentred, 0x18});
  WriteFormat(records, {kPlainFont, kAsText, 1, kRight, 0x14});  // an edited time stays a text, too
  records.Words(kStyle, {0x8000, 0xFF00});
}

// Returns where the sheet's place in the stream is to be filled in.
std::size_t WriteGlobals(BiffRecords& records, const SheetTable& table, const SharedTexts& texts) {
  BeginSubstream(records, 0x0005);
  records.Words(kCodePage, {0x04B0});
  records.Words(kWindow1, {0x01E0, 0x005A, 0x5FCF, 0x3A4E, 0x0038, 0, 0, 1, 0x0258});
  records.Words(kDateMode, {0});
  WriteFormats(records);
  records.Begin(kBoundSheet);
  const std::size_t place = records.Size();
  records.U32(0).U16(0).ShortText(Utf16FromUtf8(table.name));
  records.End();
  texts.Write(records);
  records.Bytes(kEof, {});
  return place;
}

void WriteColumns(BiffRecords& records, const SheetTable& table) {
  records.Words(kDefaultColumnWidth, {8});
  const std::vector<std::size_t> widths = ColumnWidths(table);
  for (std::size_t i = 0; i < widths.size(); ++i) {
    records.Begin(kColumnInfo);
    records.U16(i).U16(i).U16(256 * widths[i]).U16(kPlainXf).U16(0).U16(0);
    records.End();
  }
  records.Begin(kDimensions);
  records.U32(0).U32(table.rows.size()).U16(0).U16(widths.size()).U16(0);
  records.End();
}

void WriteRow(BiffRecords& records, std::size_t row, std::size_t columns) {
  constexpr std::size_t kDefaultHeight = 0x00FF;
  records.Begin(kRow);
  records.U16(row).U16(0).U16(columns).U16(kDefaultHeight).U16(0).U16(0).U32(0x000F0100);
  records.End();
}

void WriteCells(BiffRecords& records, std::size_t row, const std::vector<SheetCell>& cells, const SharedTexts& texts) {
  for (std::size_t column = 0; column < cells.size(); ++column) {
    const SheetCell& cell = cells[column];
    if (cell.kind == SheetCell::Kind::Number) {
      records.Begin(kNumber);
      records.U16(row).U16(column).U16(row == 0 ? kHeadingXf : kPlainXf).F64(ParseNumber(cell.text).value_or(0));
      records.End();
    } else if (cell.kind == SheetCell::Kind::Text) {
      records.Begin(kLabelSst);
      records.U16(row).U16(column).U16(row == 0 ? kHeadingXf : kTextXf).U32(texts.IndexOf(cell.text));
      records.End();
    }
  }
}

void WriteRows(BiffRecords& records, const SheetTable& table, const SharedTexts& texts) {
  for (std::size_t first = 0; first < table.rows.size(); first += kRowsInBlock) {
    const std::size_t end = std::min(first + kRowsInBlock, table.rows.size());
    for (std::size_t row = first; row < end; ++row) WriteRow(records, row, table.rows[row].size());
    for (std::size_t row = first; row < end; ++row) WriteCells(records, row, table.rows[row], texts);
  }
}

// The first row and the first column stay in view.
void WriteView(BiffRecords& records) {
  records.Words(kWindow2, {0x07BE, 0, 0, 0x0040, 0, 0, 0, 0, 0});
  records.Words(kPane, {1, 1, 1, 1, 0});
  constexpr std::string_view kCellB2("\0\1\0\1\0\0\0\1\0\1\0\1\0\1\1", 15);
  records.Bytes(kSelection, kCellB2);
}

}  // namespace

std::string XlsFile(const SheetTable& table) {
  const SharedTexts texts(table);
  BiffRecords records;
  const std::size_t place = WriteGlobals(records, table, texts);
  records.PutU32(place, records.Size());
  BeginSubstream(records, 0x0010);
  WriteColumns(records, table);
  WriteRows(records, table, texts);
  WriteView(records);
  records.Bytes(kEof, {});
  return CompoundFile("Workbook", records.Stream());
}

}  // namespace kv
