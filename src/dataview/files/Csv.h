#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "base/LineError.h"

// Tables as text, with one separator between the fields of a line.
namespace kv::mdlDataTypesView {

// As much as is read of any file; the grid of the largest model takes a fraction of it.
inline constexpr std::size_t kLargestCsvFile = std::size_t{64} * 1024 * 1024;
inline constexpr std::size_t kMostCsvFields = 1'000'000;
inline constexpr std::size_t kLongestCsvField = 4000;  // bytes of UTF-8

// Why a character (a byte of Windows-1252) cannot separate fields, as a sentence for the user; empty when it can. Line
// ends and the quote cannot; all others can, also those that occur in values: fields that hold them are quoted.
[[nodiscard]] std::string WhyNoSeparator(char separator);

struct CsvRecord {
  std::size_t line = 0;  // where it begins, counted from 1
  std::vector<std::string> fields = {};

  bool operator==(const CsvRecord&) const = default;
};

// Takes fields one after another and makes the content of a file from them. Lines end with CR LF. A field that holds
// the separator, a quote or a line end is put in quotes, and quotes in it are doubled. The file is Windows-1252, or
// UTF-8 with a byte-order mark where that does not have all the characters.
class CsvWriter {
 public:
  explicit CsvWriter(char separator);  // one that can separate

  void Add(std::string_view field);  // UTF-8
  void EndLine();
  [[nodiscard]] std::string Take();

 private:
  std::string mSeparator;
  std::string mText;
  std::string mSpecial;  // the first bytes of what makes quotes necessary
  bool mAtStart = true;
};

// The lines of a file; those without a character are left out. Line ends are CR LF, LF or CR. A quote at the start of a
// field encloses it up to the next single quote; elsewhere it is a character as others are. The bytes are UTF-8 where
// they have a byte-order mark or can be nothing else, else Windows-1252.
[[nodiscard]] std::expected<std::vector<CsvRecord>, LineError> ReadCsv(std::string_view bytes, char separator);

}  // namespace kv::mdlDataTypesView
