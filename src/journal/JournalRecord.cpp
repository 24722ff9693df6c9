#include "journal/JournalRecord.h"

#include <algorithm>
#include <array>

#include "base/Texts.h"
#include "base/Utf8.h"
#include "digest/Sha256.h"
#include "journal/JsonText.h"

namespace kv {
namespace {

constexpr std::size_t kHashDigits = kNoHash.size();
constexpr std::size_t kUsualLine = 2048;  // of 60 operands, and some more

struct KindName {
  RecordKind kind;
  std::string_view name;
};
constexpr std::array kKinds{
    KindName{RecordKind::Start, "start"},           KindName{RecordKind::Segment, "segment"},
    KindName{RecordKind::Begin, "begin"},           KindName{RecordKind::End, "end"},
    KindName{RecordKind::Repair, "repair"},         KindName{RecordKind::Finding, "finding"},
    KindName{RecordKind::Unrecorded, "unrecorded"}, KindName{RecordKind::Acknowledged, "acknowledged"},
};

std::string HashOf(std::string_view text) {
  Sha256 digest;
  digest.Add(text);
  return digest.Hex();
}

// A reader who has the whole text can tell that it is the one.
std::string Shortened(std::string_view text) {
  constexpr std::size_t kShown = 1000;
  std::string_view rest = text;
  while (text.size() - rest.size() < kShown) (void)TakeCharacter(rest);
  return std::string(text.substr(0, text.size() - rest.size())) + "... (" + std::to_string(text.size()) +
         " bytes, SHA-256 " + HashOf(text) + ")";
}

// Writes the fields of one object.
class Fields {
 public:
  explicit Fields(std::string& json) : mJson(json) { mJson += '{'; }
  void Close() { mJson += '}'; }

  void Text(std::string_view name, std::string_view text) {
    if (text.empty()) return;
    Name(name);
    Append(text);
  }
  void Number(std::string_view name, std::uint64_t number) {
    Name(name);
    mJson += std::to_string(number);
  }
  void Texts(std::string_view name, const std::vector<std::string>& texts) {
    if (texts.empty()) return;
    Name(name);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      mJson += i == 0 ? '[' : ',';
      Append(texts[i]);
    }
    mJson += ']';
  }
  void Name(std::string_view name) {
    if (mJson.back() != '{') mJson += ',';
    AppendJsonText(mJson, name);
    mJson += ':';
  }

 private:
  void Append(std::string_view text) {
    if (text.size() > kLongestJournalText) return AppendJsonText(mJson, Shortened(text));
    AppendJsonText(mJson, text);
  }

  std::string& mJson;
};

void AppendController(std::string& json, Fields& fields, const ControllerName& controller) {
  fields.Name("controller");
  Fields inner(json);
  inner.Text("model", controller.model);
  if (controller.serialNumber) inner.Number("serial", *controller.serialNumber);
  inner.Text("project", controller.project);
  inner.Close();
}

// How many entries of a record's operands a line has room for.
struct Room {
  std::size_t entries;
  std::size_t withValues;  // the first of them
};

void AppendOperands(std::string& json, Fields& fields, const std::vector<ChangedOperands>& operands, Room room) {
  if (operands.empty()) return;
  fields.Name("values");
  json += '[';
  const auto append = [&json](const ChangedOperands& each, bool withValues) {
    if (json.back() != '[') json += ',';
    Fields inner(json);
    inner.Text("operands", each.operands);
    if (withValues) inner.Texts("before", each.before);
    if (withValues) inner.Texts("after", each.after);
    inner.Close();
  };
  for (std::size_t i = 0; i < room.entries; ++i) append(operands[i], i < room.withValues);
  const std::size_t left = operands.size() - room.entries;
  if (left > 0) append({"and " + Counted(left, "run") + " of operands more", {}, {}}, false);
  json += ']';
}

void AppendJson(std::string& json, const JournalRecord& record, Room room) {
  Fields fields(json);
  fields.Number("n", record.number);
  fields.Text("prev", record.previous);
  fields.Text("time", record.time);
  fields.Text("kind", std::ranges::find(kKinds, record.kind, &KindName::kind)->name);
  fields.Text("journal", record.journal);
  fields.Text("user", record.user);
  if (record.kind == RecordKind::Begin) {
    AppendController(json, fields, record.controller);
    fields.Text("link", record.link);
    fields.Text("tool", record.tool);
    fields.Text("what", record.what);
    AppendOperands(json, fields, record.operands, room);
  }
  fields.Text("reason", record.reason);
  if (record.of != 0) fields.Number("of", record.of);
  fields.Text("result", record.result);
  fields.Text("detail", record.detail);
  if (record.count != 0) fields.Number("count", record.count);
  fields.Text("hash", record.hash);
  fields.Close();
}

std::vector<std::string> ReadTexts(JsonReader& reader) {
  std::vector<std::string> texts;
  reader.EachItem([&] { texts.push_back(reader.Text()); });
  return texts;
}

ControllerName ReadController(JsonReader& reader) {
  ControllerName controller;
  reader.EachField([&](const std::string& name) {
    if (name == "model") {
      controller.model = reader.Text();
    } else if (name == "serial") {
      controller.serialNumber = static_cast<std::uint32_t>(reader.Number());
    } else if (name == "project") {
      controller.project = reader.Text();
    } else {
      reader.Skip();
    }
  });
  return controller;
}

ChangedOperands ReadOperands(JsonReader& reader) {
  ChangedOperands operands;
  reader.EachField([&](const std::string& name) {
    if (name == "operands") {
      operands.operands = reader.Text();
    } else if (name == "before") {
      operands.before = ReadTexts(reader);
    } else if (name == "after") {
      operands.after = ReadTexts(reader);
    } else {
      reader.Skip();
    }
  });
  return operands;
}

struct TextField {
  std::string_view name;
  std::string JournalRecord::* field;
};
constexpr std::array kTextFields{
    TextField{"prev", &JournalRecord::previous},   TextField{"time", &JournalRecord::time},
    TextField{"journal", &JournalRecord::journal}, TextField{"user", &JournalRecord::user},
    TextField{"link", &JournalRecord::link},       TextField{"tool", &JournalRecord::tool},
    TextField{"what", &JournalRecord::what},       TextField{"reason", &JournalRecord::reason},
    TextField{"result", &JournalRecord::result},   TextField{"detail", &JournalRecord::detail},
    TextField{"hash", &JournalRecord::hash},
};
struct NumberField {
  std::string_view name;
  std::uint64_t JournalRecord::* field;
};
constexpr std::array kNumberFields{
    NumberField{"n", &JournalRecord::number},
    NumberField{"of", &JournalRecord::of},
    NumberField{"count", &JournalRecord::count},
};

void ReadField(JsonReader& reader, const std::string& name, JournalRecord& record, bool& hasKind) {
  if (const auto* text = std::ranges::find(kTextFields, name, &TextField::name); text != kTextFields.end()) {
    record.*text->field = reader.Text();
  } else if (const auto* number = std::ranges::find(kNumberFields, name, &NumberField::name);
             number != kNumberFields.end()) {
    record.*number->field = reader.Number();
  } else if (name == "kind") {
    const auto* kind = std::ranges::find(kKinds, reader.Text(), &KindName::name);
    hasKind = kind != kKinds.end();
    if (hasKind) record.kind = kind->kind;
  } else if (name == "controller") {
    record.controller = ReadController(reader);
  } else if (name == "values") {
    reader.EachItem([&] { record.operands.push_back(ReadOperands(reader)); });
  } else {
    reader.Skip();
  }
}

}  // namespace

std::string_view ResultWord(ChangeResult result) {
  switch (result) {
    case ChangeResult::Done:
      return "done";
    case ChangeResult::Sent:
      return "sent";
    case ChangeResult::Refused:
      return "refused";
    case ChangeResult::Failed:
      return "failed";
    case ChangeResult::Stopped:
      return "stopped";
  }
  return "failed";
}

bool IsResultWord(std::string_view word) {
  constexpr std::array kResults{ChangeResult::Done, ChangeResult::Sent, ChangeResult::Refused, ChangeResult::Failed,
                                ChangeResult::Stopped};
  return std::ranges::any_of(kResults, [word](ChangeResult result) { return ResultWord(result) == word; });
}

bool IsJournalHash(std::string_view text) {
  return text.size() == kHashDigits && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::string PrintRecord(const JournalRecord& record) {
  Room room{record.operands.size(), record.operands.size()};
  std::string line;
  line.reserve(kUsualLine);
  while (true) {
    line.assign(kHashDigits + 1, ' ');  // the hash is known when the text is
    AppendJson(line, record, room);
    if (line.size() <= kLongestJournalLine || room.entries == 0) break;
    std::size_t& less = room.withValues > 0 ? room.withValues : room.entries;
    less /= 2;
  }
  return line.replace(0, kHashDigits, HashOf(std::string_view(line).substr(kHashDigits + 1)));
}

std::expected<ReadRecord, std::string_view> ParseRecord(std::string_view line) {
  if (line.empty() || line.size() > kLongestJournalLine) {
    return std::unexpected("its line is empty or longer than a record can be");
  }
  ReadRecord read{.record = {}, .hash = std::string(line.substr(0, kHashDigits))};
  if (!IsJournalHash(read.hash) || !line.substr(kHashDigits).starts_with(' ')) {
    return std::unexpected("it does not begin with a hash and a blank");
  }
  const std::string_view json = line.substr(kHashDigits + 1);
  if (HashOf(json) != read.hash) return std::unexpected("its text does not have the hash that stands before it");
  JsonReader reader(json);
  bool hasKind = false;
  reader.EachField([&](const std::string& name) { ReadField(reader, name, read.record, hasKind); });
  if (!reader.IsAtEnd()) return std::unexpected("its text is not of the form that a record has");
  if (!hasKind || read.record.number == 0)
    return std::unexpected("it has no number, or is of no kind that records have");
  return read;
}

}  // namespace kv
