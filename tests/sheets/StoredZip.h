#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Crc32.h"

namespace kv::test {

using ZipEntries = std::vector<std::pair<std::string_view, std::string>>;  // name and content

inline void AppendNumber(std::string& bytes, std::size_t value, int size) {
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

// A zip archive whose parts are not packed, made by hand.
inline std::string StoredZip(const ZipEntries& entries) {
  std::string file;
  std::string directory;
  for (const auto& [name, content] : entries) {
    std::string facts;
    for (const std::size_t word : {10U, 0U, 0U, 0U, 0U}) AppendNumber(facts, word, 2);
    for (const std::size_t word : {std::size_t{Crc32(content)}, content.size(), content.size()}) {
      AppendNumber(facts, word, 4);
    }
    AppendNumber(facts, name.size(), 2);
    directory.append("PK\x01\x02\x0A").append(1, '\0').append(facts).append(12, '\0');
    AppendNumber(directory, file.size(), 4);
    directory.append(name);
    file.append("PK\x03\x04").append(facts).append(2, '\0').append(name).append(content);
  }
  const std::size_t start = file.size();
  file.append(directory).append("PK\x05\x06").append(4, '\0');
  for (int i = 0; i < 2; ++i) AppendNumber(file, entries.size(), 2);
  AppendNumber(file, directory.size(), 4);
  AppendNumber(file, start, 4);
  return file.append(2, '\0');
}

// A workbook of one sheet with these rows, which may name the texts "zero" and "one" by number.
inline std::string Workbook(const std::string& sheetData) {
  constexpr std::string_view kRelation = "<Relationship Id=\"r";
  return StoredZip({
      {"xl/workbook.xml", "<workbook><sheets><sheet name=\"Values\" r:id=\"r1\"/></sheets></workbook>"},
      {"xl/_rels/workbook.xml.rels",
       std::string("<Relationships>")
           .append(kRelation)
           .append("1\" Target=\"worksheets/s.xml\" Type=\"x/worksheet\"/>")
           .append(kRelation)
           .append("2\" Target=\"/xl/t.xml\" Type=\"x/sharedStrings\"/></Relationships>")},
      {"xl/t.xml", "<sst><si><t>zero</t></si><si><r><t>o</t></r><r><t>ne</t></r></si></sst>"},
      {"xl/worksheets/s.xml", "<worksheet><sheetData>" + sheetData + "</sheetData></worksheet>"},
  });
}

}  // namespace kv::test
