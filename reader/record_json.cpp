// Writes a record as one line of JSON: every field of every table, in the tables' order.
#include "reader/record_json.h"

#include <algorithm>
#include <utility>

namespace {

void WriteTexts(JsonWriter& json, const std::vector<std::string>& texts) {
  JsonOpen(json, '[');
  for (const std::string& text : texts) JsonText(json, text);
  JsonClose(json, ']');
}

}  // namespace

void JsonValue(JsonWriter& json, FieldType type, const FieldValue& value) {
  if (!value.known) return JsonWord(json, "null");
  switch (type) {
    case FieldType::Integer:
    case FieldType::Decimal:
    case FieldType::Flag:
      return JsonWord(json, ValueText(type, value));
    case FieldType::TextList:
      return WriteTexts(json, value.texts);
    case FieldType::Text:
    case FieldType::Moment:
    case FieldType::Day:
      return JsonText(json, value.text);
  }
}

namespace {

struct Writing {
  RecordSource source;
  const RecordOptions& options;
  JsonWriter json = {};
  FieldValue value = {};
};

void WriteFields(Writing& writing, const RecordTable& table, const RecordRow& row) {
  for (const RecordField& field : table) {
    JsonKey(writing.json, field.name);
    ReadField(field, row, writing.value);
    JsonValue(writing.json, field.type, writing.value);
  }
}

void WriteList(Writing& writing, const RecordTable& table) {
  JsonOpen(writing.json, '[');
  for (const RecordRow& row : RowsOf(table, writing.source)) {
    JsonOpen(writing.json, '{');
    WriteFields(writing, table, row);
    JsonClose(writing.json, '}');
  }
  JsonClose(writing.json, ']');
}

bool IsWanted(const RecordTable& table, const RecordOptions& options) {
  return !table.extra || std::count(options.with.begin(), options.with.end(), table.name) != 0;
}

// The fields of an object, then the objects and lists in it.
void WriteObject(Writing& writing, const RecordTable& table, std::string_view name) {
  JsonOpen(writing.json, '{');
  WriteFields(writing, table, RowsOf(table, writing.source).front());
  for (const RecordTable& inner : RecordTables()) {
    if (inner.shape == TableShape::Mac || inner.parent != name || !IsWanted(inner, writing.options)) continue;
    JsonKey(writing.json, inner.key);
    inner.shape == TableShape::Object ? WriteObject(writing, inner, inner.name) : WriteList(writing, inner);
  }
  JsonClose(writing.json, '}');
}

}  // namespace

std::string ExtraLists() {
  std::string names;
  for (const RecordTable& table : RecordTables())
    if (table.extra) names += (names.empty() ? "" : ",") + std::string(table.name);
  return names;
}

bool ParseExtraLists(std::string_view list, RecordOptions& options, std::string& unknown) {
  while (!list.empty()) {
    const std::string name(list.substr(0, list.find(',')));
    const RecordTable* table = FindRecordTable(name);
    if (!table || !table->extra) {
      unknown = name;
      return false;
    }
    options.with.push_back(name);
    list.remove_prefix(std::min(name.size() + 1, list.size()));
  }
  return true;
}

std::string RecordJson(const Document& document, const RecordOptions& options) {
  Writing writing{SourceOf(document), options};
  std::size_t size = 0;
  for (const Section& section : document.sections) size += section.body.text.size();
  writing.json.text.reserve(size + size / 2);  // as a rule enough
  WriteObject(writing, RecordTables().front(), "");
  writing.json.text += '\n';
  return std::move(writing.json.text);
}
