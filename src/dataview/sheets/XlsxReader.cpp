#include "dataview/sheets/XlsxReader.h"

#include <cstring>
#include <optional>
#include <pugixml.hpp>
#include <utility>

#include "base/Numbers.h"
#include "dataview/sheets/SheetBuilder.h"
#include "dataview/sheets/XlsxText.h"
#include "dataview/sheets/ZipParts.h"

namespace kv {
namespace {

using Done = std::expected<void, SheetError>;

// The name without the prefix that a file may choose for its namespace.
std::string_view LocalName(const char* name) {
  const char* colon = std::strchr(name, ':');
  return colon != nullptr ? colon + 1 : name;
}

bool Is(const pugi::xml_node& node, std::string_view name) {
  return LocalName(node.name()) == name;
}

pugi::xml_node Child(const pugi::xml_node& node, std::string_view name) {
  return node.find_child([name](const pugi::xml_node& child) { return Is(child, name); });
}

std::string_view Attribute(const pugi::xml_node& node, std::string_view name) {
  for (const pugi::xml_attribute& attribute : node.attributes()) {
    if (LocalName(attribute.name()) == name) return attribute.value();
  }
  return {};
}

// The text of a cell or a shared text: its own, or that of the pieces with fonts of their own; readings of Asian
// characters ("rPh") stand beside them and are no part of it.
std::string RichText(const pugi::xml_node& node) {
  std::string text;
  for (const pugi::xml_node& child : node.children()) {
    if (Is(child, "t")) text += child.child_value();
    if (Is(child, "r")) text += Child(child, "t").child_value();
  }
  return UnescapedText(text);
}

// Row and column of "C7".
struct Place {
  std::size_t row;
  std::size_t column;
};
std::optional<Place> ParsePlace(std::string_view text) {
  constexpr std::size_t kMostLetters = 3;
  constexpr std::size_t kMostDigits = 7;
  std::size_t column = 0;
  std::size_t letters = 0;
  for (; letters < text.size() && text[letters] >= 'A' && text[letters] <= 'Z'; ++letters) {
    if (letters == kMostLetters) return std::nullopt;
    column = 26 * column + static_cast<std::size_t>(text[letters] - 'A') + 1;
  }
  const auto row = ParseInteger(text.substr(letters));
  if (letters == 0 || text.size() - letters > kMostDigits || !row || *row < 1) return std::nullopt;
  return Place{static_cast<std::size_t>(*row) - 1, column - 1};
}

class XlsxReader {
 public:
  explicit XlsxReader(ZipParts parts) : mParts(std::move(parts)) {}

  std::expected<SheetTable, SheetError> Read();

 private:
  [[nodiscard]] Done Load(const std::string& part);
  [[nodiscard]] Done FindSheet();
  [[nodiscard]] Done ReadTexts();
  [[nodiscard]] Done ReadRows();
  [[nodiscard]] Done ReadRow(const pugi::xml_node& row);
  [[nodiscard]] Done ReadCell(const pugi::xml_node& cell, const Place& at);
  [[nodiscard]] Done ReadValue(std::string_view kind, std::string_view value, const Place& at);

  ZipParts mParts;
  std::string mXml;  // of the part at hand; the document points into it
  pugi::xml_document mDocument;
  std::string mSheetPart;
  std::string mSheetName;
  std::string mTextsPart;
  std::vector<std::string> mTexts;
  SheetBuilder mBuilder;
  Place mNext{0, 0};  // where a cell stands that does not say it
};

std::expected<SheetTable, SheetError> XlsxReader::Read() {
  for (const auto step : {&XlsxReader::FindSheet, &XlsxReader::ReadTexts, &XlsxReader::ReadRows}) {
    if (Done done = (this->*step)(); !done) return std::unexpected(done.error());
  }
  return mBuilder.Take(std::move(mSheetName));
}

Done XlsxReader::Load(const std::string& part) {
  mDocument.reset();
  auto xml = mParts.Read(part);
  if (!xml) return std::unexpected(xml.error());
  mXml = std::move(*xml);
  const auto parsed =
      mDocument.load_buffer_inplace(mXml.data(), mXml.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
  if (parsed) return {};
  return SheetFailure(part + ", offset " + std::to_string(parsed.offset), parsed.description());
}

// The first sheet of the workbook, by way of the list in which parts are named.
Done XlsxReader::FindSheet() {
  const std::string folder = "xl/";
  if (Done done = Load(folder + "workbook.xml"); !done) return done;
  const pugi::xml_node sheet = Child(Child(Child(mDocument, "workbook"), "sheets"), "sheet");
  if (!sheet) return SheetFailure("xl/workbook.xml", "it has no sheet");
  mSheetName = Attribute(sheet, "name");
  const std::string id(Attribute(sheet, "id"));
  if (Done done = Load(folder + "_rels/workbook.xml.rels"); !done) return done;
  for (const pugi::xml_node& relation : Child(mDocument, "Relationships").children()) {
    const std::string_view target = Attribute(relation, "Target");
    const std::string part = target.starts_with('/') ? std::string(target.substr(1)) : folder + std::string(target);
    if (Attribute(relation, "Id") == id) mSheetPart = part;
    if (Attribute(relation, "Type").ends_with("/sharedStrings")) mTextsPart = part;
  }
  return {};
}

Done XlsxReader::ReadTexts() {
  if (mTextsPart.empty() || !mParts.Has(mTextsPart)) return {};
  if (Done done = Load(mTextsPart); !done) return done;
  for (const pugi::xml_node& item : Child(mDocument, "sst").children()) {
    if (Is(item, "si")) mTexts.push_back(RichText(item));
  }
  return {};
}

Done XlsxReader::ReadRows() {
  if (mSheetPart.empty()) return SheetFailure("xl/workbook.xml", "its first sheet is missing");
  if (Done done = Load(mSheetPart); !done) return done;
  const pugi::xml_node data = Child(Child(mDocument, "worksheet"), "sheetData");
  if (!data) return SheetFailure(mSheetPart, "it is no sheet of cells");
  for (const pugi::xml_node& row : data.children()) {
    if (!Is(row, "row")) continue;
    if (Done done = ReadRow(row); !done) return done;
  }
  return {};
}

Done XlsxReader::ReadRow(const pugi::xml_node& row) {
  if (const auto number = ParseInteger(Attribute(row, "r")); number && *number > 0) {
    mNext.row = static_cast<std::size_t>(*number) - 1;
  }
  mNext.column = 0;
  for (const pugi::xml_node& cell : row.children()) {
    if (!Is(cell, "c")) continue;
    const std::string_view place = Attribute(cell, "r");
    const auto at = place.empty() ? mNext : ParsePlace(place);
    if (!at) return SheetFailure(mSheetPart, "\"" + std::string(place.substr(0, 20)) + "\" is no place of a cell");
    if (Done done = ReadCell(cell, *at); !done) return done;
    mNext = {at->row, at->column + 1};
  }
  ++mNext.row;
  return {};
}

Done XlsxReader::ReadCell(const pugi::xml_node& cell, const Place& at) {
  const std::string_view kind = Attribute(cell, "t");
  if (kind == "inlineStr") return mBuilder.PutText(at.row, at.column, RichText(Child(cell, "is")));
  const pugi::xml_node value = Child(cell, "v");
  return value ? ReadValue(kind, value.child_value(), at) : Done();
}

Done XlsxReader::ReadValue(std::string_view kind, std::string_view value, const Place& at) {
  if (kind == "e") return mBuilder.PutText(at.row, at.column, {});
  if (kind == "str" || kind == "d") return mBuilder.PutText(at.row, at.column, UnescapedText(value));
  const std::string place = mSheetPart + ", cell " + CellPlace(at.row, at.column);
  if (kind == "s") {
    const auto index = ParseInteger(value);
    if (!index || *index < 0 || static_cast<std::size_t>(*index) >= mTexts.size()) {
      return SheetFailure(place, "it names a text that is not there");
    }
    return mBuilder.PutText(at.row, at.column, mTexts[static_cast<std::size_t>(*index)]);
  }
  if (value.empty()) return {};
  const auto number = ParseNumber(value);
  if (!number) return SheetFailure(place, "a number was expected");
  return mBuilder.PutNumber(at.row, at.column, *number);
}

}  // namespace

std::expected<SheetTable, SheetError> ReadXlsx(std::string_view content) {
  auto parts = ZipParts::Open(content);
  if (!parts) return std::unexpected(parts.error());
  return XlsxReader(std::move(*parts)).Read();
}

}  // namespace kv
