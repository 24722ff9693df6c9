// The values with which tools/check-office.sh tries other programs: writes them to files, and says what has become of
// them in the files that such a program has saved.

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "base/PathText.h"
#include "dataview/files/OperandCsv.h"
#include "dataview/files/OperandSheet.h"

namespace {

using namespace kv;
using namespace kv::mdlDataTypesView;
using enum OperandTypeCode;

std::vector<TypeTexts> Values() {
  std::vector<TypeTexts> types = {
      {MB, {"0", "1", "", "1"}},
      {MI, {"-32768", "32767", "0"}},
      {MF, {"0.1", "-3.402823e+38", "1e-05", "1.234568e+07", "nan", "1.175494e-38", "3.141593", "-0", "inf"}},
      {ML, {"-2147483648", "2147483647"}},
      {DW, {"4294967295", "0"}},
      {TimerPreset, {"00:00:00.00", "99:59:59.99", "00:01:02.50"}},
      {TimerCurrent, {"163830000", "10"}},
      {XDW, {"", "", "4294967295"}},
  };
  TypeTexts many{SI, {}};
  for (int address = 0; address < 512; ++address) many.texts.push_back(std::to_string(address * 64 - 16384));
  types.push_back(many);
  return types;
}

std::string TextAt(const std::vector<TypeTexts>& types, OperandTypeCode type, std::size_t address) {
  for (const TypeTexts& row : types) {
    if (row.type == type && address < row.texts.size()) return row.texts[address];
  }
  return {};
}

// An office program writes floats in its own way, and knows one zero only.
bool IsSameValue(const std::string& a, const std::string& b) {
  const auto first = ParseNumber(a);
  return a == b || (first && first == ParseNumber(b));
}

int Write(const std::filesystem::path& folder, const std::filesystem::path& templateFile) {
  const std::vector<TypeTexts> types = Values();
  bool good = SaveAtomically(folder / "values.csv", PrintGridCsv(types, ',')).has_value();
  for (const char* name : {"values.xls", "values.xlsx"}) {
    good = ExportSheet(templateFile, folder / name, OperandSheetRows(types)).has_value() && good;
  }
  return good ? 0 : 1;
}

std::vector<TypeTexts> ReadCsvValues(const std::filesystem::path& file) {
  const auto content = ReadWholeFile(file, kLargestCsvFile);
  const auto csv =
      content ? ParseOperandCsv(*content, ',', CsvForm::Grid) : std::unexpected(LineError{0, content.error().what});
  if (!csv) std::printf("    not taken: line %zu, %s\n", csv.error().line, csv.error().what.c_str());
  std::vector<TypeTexts> types;
  for (const OperandValue& value : csv.value_or(OperandCsv()).values) {
    if (types.empty() || types.back().type != value.type) types.push_back({value.type, {}});
    types.back().texts.push_back(value.text);
  }
  return types;
}

std::vector<TypeTexts> ReadValues(const std::filesystem::path& file) {
  if (file.extension() == ".csv") return ReadCsvValues(file);
  const auto sheet = ReadSheet(file);
  const auto values = sheet ? ParseOperandSheet(*sheet) : std::unexpected(sheet.error());
  if (!values) std::printf("    not taken: %s: %s\n", values.error().place.c_str(), values.error().what.c_str());
  std::vector<TypeTexts> types;
  for (std::int32_t code = 1; values && code <= kOperandTypeCount; ++code) {
    types.push_back({static_cast<OperandTypeCode>(code), std::vector<std::string>(kMaxSheetRows)});
  }
  for (const SheetValue& value : values.value_or(std::vector<SheetValue>())) {
    types[static_cast<std::size_t>(value.type) - 1].texts[static_cast<std::size_t>(value.address)] = value.text;
  }
  return types;
}

int Check(const std::filesystem::path& file) {
  constexpr int kMostShown = 5;
  const std::vector<TypeTexts> found = ReadValues(file);
  int different = 0;
  for (const TypeTexts& row : Values()) {
    for (std::size_t address = 0; address < row.texts.size(); ++address) {
      const std::string text = TextAt(found, row.type, address);
      if (IsSameValue(text, row.texts[address])) continue;
      if (different < kMostShown)
        std::printf("    type %d, address %zu: \"%s\" has become \"%s\"\n", static_cast<int>(row.type), address,
                    row.texts[address].c_str(), text.c_str());
      ++different;
    }
  }
  std::printf("%s %s\n", different == 0 ? "same   " : "differs", Utf8FromPath(file.filename()).c_str());
  return different;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string_view(argv[1]) == "write") return Write(argv[2], argv[3]);
  int different = 0;
  for (int i = 2; i < argc; ++i) different += Check(argv[i]);
  return different == 0 && argc > 2 ? 0 : 1;
}
