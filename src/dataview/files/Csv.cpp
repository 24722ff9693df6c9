#include "dataview/files/Csv.h"

#include <algorithm>
#include <utility>

#include "base/AnsiText.h"
#include "base/Utf8.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLineEnd = "\r\n";
constexpr char kQuote = '"';

// Whether the bytes can only be meant as UTF-8: they are, and they say more than ASCII.
bool IsClearlyUtf8(std::string_view bytes) {
  bool hasMore = false;
  while (!bytes.empty()) {
    const auto character = TakeCharacter(bytes);
    if (!character) return false;
    hasMore = hasMore || *character > 0x7F;
  }
  return hasMore;
}

std::string Decoded(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Mark)) return std::string(bytes.substr(kUtf8Mark.size()));
  return IsClearlyUtf8(bytes) ? std::string(bytes) : AnsiToUtf8(bytes);
}

bool IsUtf16(std::string_view bytes) {
  return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

std::string Encoded(std::string_view text) {
  std::string ansi = Utf8ToAnsi(text);
  const bool isReadAsWritten = !IsUtf16(ansi) && Decoded(ansi) == text;
  return isReadAsWritten ? ansi : std::string(kUtf8Mark).append(text);
}

std::unexpected<LineError> Fault(std::size_t line, std::string what) {
  return std::unexpected(LineError{line, std::move(what)});
}

class CsvReader {
 public:
  CsvReader(std::string_view text, std::string separator) : mText(text), mSeparator(std::move(separator)) {}

  std::expected<std::vector<CsvRecord>, LineError> Read() {
    std::vector<CsvRecord> records;
    while (!mText.empty()) {
      auto record = TakeRecord();
      if (!record) return std::unexpected(record.error());
      const bool isEmpty = record->fields.size() == 1 && record->fields.front().empty();
      if (!isEmpty) records.push_back(std::move(*record));
    }
    return records;
  }

 private:
  std::expected<CsvRecord, LineError> TakeRecord() {
    CsvRecord record{.line = mLine};
    for (;;) {
      auto field = TakeField();
      if (!field) return std::unexpected(field.error());
      if (++mFields > kMostCsvFields) return Fault(mLine, "there are more than a million fields up to here");
      record.fields.push_back(std::move(*field));
      if (mText.starts_with(mSeparator)) {
        mText.remove_prefix(mSeparator.size());
      } else {
        TakeLineEnd();
        return record;
      }
    }
  }

  std::expected<std::string, LineError> TakeField() {
    std::string field;
    if (mText.starts_with(kQuote)) {
      auto enclosed = TakeEnclosed();
      if (!enclosed) return enclosed;
      field = std::move(*enclosed);
    }
    std::size_t end = 0;
    while (end < mText.size() && mText[end] != '\r' && mText[end] != '\n' &&
           !mText.substr(end).starts_with(mSeparator)) {
      ++end;
    }
    field += mText.substr(0, end);
    mText.remove_prefix(end);
    if (field.size() > kLongestCsvField)
      return Fault(mLine, "a field is longer than any value; is it the separator with which the file was written?");
    return field;
  }

  // What stands between quotes, of which a doubled one stands for itself.
  std::expected<std::string, LineError> TakeEnclosed() {
    const std::size_t line = mLine;
    std::string field;
    mText.remove_prefix(1);
    while (!mText.empty()) {
      if (mText.front() == kQuote) {
        mText.remove_prefix(1);
        if (!mText.starts_with(kQuote)) return field;
        field += kQuote;
        mText.remove_prefix(1);
      } else if (const std::size_t before = mText.size(); TakeLineEnd()) {
        field.append(mText.data() - (before - mText.size()), before - mText.size());
      } else {
        field += mText.front();
        mText.remove_prefix(1);
      }
    }
    return Fault(line, "a field begins with a quote and has none at its end");
  }

  bool TakeLineEnd() {
    const std::size_t length = mText.starts_with(kLineEnd)                          ? 2
                               : mText.starts_with('\r') || mText.starts_with('\n') ? 1
                                                                                    : 0;
    mText.remove_prefix(length);
    mLine += length > 0 ? 1 : 0;
    return length > 0;
  }

  std::string_view mText;  // what is left
  std::string mSeparator;
  std::size_t mLine = 1;
  std::size_t mFields = 0;
};

}  // namespace

std::string WhyNoSeparator(char separator) {
  switch (separator) {
    case '\n':
      return "The line feed (0A) ends a line, so it cannot separate values. Choose another character, such as the "
             "comma (2C).";
    case '\r':
      return "The carriage return (0D) ends a line, so it cannot separate values. Choose another character, such as "
             "the comma (2C).";
    case kQuote:
      return "The quote (22) encloses values that hold the separator, so it cannot be the separator. Choose another "
             "character, such as the comma (2C).";
    default:
      return {};
  }
}

CsvWriter::CsvWriter(char separator)
    : mSeparator(AnsiToUtf8(std::string_view(&separator, 1))), mSpecial{mSeparator.front(), kQuote, '\r', '\n'} {}

void CsvWriter::Add(std::string_view field) {
  if (!mAtStart) mText += mSeparator;
  mAtStart = false;
  if (field.find_first_of(mSpecial) == std::string_view::npos) {
    mText += field;
    return;
  }
  mText += kQuote;
  for (const char c : field) mText.append(c == kQuote ? 2 : 1, c);
  mText += kQuote;
}

void CsvWriter::EndLine() {
  mText += kLineEnd;
  mAtStart = true;
}

std::string CsvWriter::Take() {
  return Encoded(std::exchange(mText, {}));
}

std::expected<std::vector<CsvRecord>, LineError> ReadCsv(std::string_view bytes, char separator) {
  if (bytes.size() > kLargestCsvFile) return Fault(0, "it is larger than 64 MB");
  if (IsUtf16(bytes)) {
    return Fault(0, "its characters take two bytes each (UTF-16); save it as CSV or as UTF-8 text");
  }
  const std::string text = Decoded(bytes);
  return CsvReader(text, AnsiToUtf8(std::string_view(&separator, 1))).Read();
}

}  // namespace kv::mdlDataTypesView
