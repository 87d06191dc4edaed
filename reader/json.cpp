// Lays a file out as flat lists of equal records, so that a database can load a whole fleet without guessing: each tag
// of a tree is one record that names its parent by position.
#include <cstdint>
#include <string>
#include <vector>

#include "reader/commands.h"
#include "reader/csv.h"
#include "reader/json_writer.h"
#include "reader/run.h"

namespace {

void NumberField(JsonWriter& json, const char* name, std::uint64_t number) {
  JsonKey(json, name);
  JsonWord(json, std::to_string(number));
}

void BoolField(JsonWriter& json, const char* name, bool flag) {
  JsonKey(json, name);
  JsonWord(json, flag ? "true" : "false");
}

// A key and a list, which `write` fills with one record for each element.
template <typename List, typename Write>
void ListField(JsonWriter& json, const char* name, const List& list, Write write) {
  JsonKey(json, name);
  JsonOpen(json, '[');
  for (const auto& element : list) {
    JsonOpen(json, '{');
    write(element);
    JsonClose(json, '}');
  }
  JsonClose(json, ']');
}

void PropertiesField(JsonWriter& json, const std::vector<Property>& properties) {
  ListField(json, "properties", properties, [&json](const Property& property) {
    JsonField(json, "name", property.name);
    JsonField(json, "text", property.text);
  });
}

// Writes `tag` and, behind it, everything below it. `parent` is the position of its parent in the list, -1 for a root;
// `count` is the number of tags written so far.
void WriteTag(JsonWriter& json, const Tag& tag, const std::string& path, std::int64_t parent, std::int64_t& count) {
  const std::int64_t position = count++;
  JsonOpen(json, '{');
  JsonField(json, "path", path);
  JsonKey(json, "parent");
  JsonWord(json, std::to_string(parent));
  JsonField(json, "name", tag.name);
  JsonField(json, "value", TextOf(&tag));
  PropertiesField(json, tag.properties);
  ListField(json, "attributes", tag.attributes, [&json](const auto& attribute) {
    JsonField(json, "name", attribute->name);
    JsonField(json, "value", TextOf(attribute.get()));
    PropertiesField(json, attribute->properties);
  });
  JsonClose(json, '}');
  for (const auto& child : tag.children) WriteTag(json, *child, path + "/" + child->name, position, count);
}

void WriteSection(JsonWriter& json, const Section& section) {
  const InvRecord& record = section.record;
  NumberField(json, "number", record.number);
  JsonField(json, "type", TypeName(record.type));
  NumberField(json, "offset", record.offset);
  NumberField(json, "length", record.length);
  JsonField(json, "timestamp", record.timestamp);
  JsonField(json, "form", FormName(section.body.form));
  BoolField(json, "whole", section.body.whole);
  JsonKey(json, "tags");
  JsonOpen(json, '[');
  std::int64_t count = 0;
  for (const auto& root : section.tree.container.children) WriteTag(json, *root, root->name, -1, count);
  JsonClose(json, ']');
  JsonKey(json, "raw");
  if (IsRaw(section))
    JsonText(json, section.body.text);
  else
    JsonWord(json, "null");
}

void WriteComputer(JsonWriter& json, const Document& document) {
  JsonKey(json, "computer");
  JsonOpen(json, '{');
  for (const Column& column : DefaultColumns())
    if (!column.path.empty()) JsonField(json, column.name, ColumnText(document, column));
  JsonClose(json, '}');
}

}  // namespace

std::string DocumentJson(const Document& document, bool oneLine) {
  const InvContainer& inv = document.container;
  JsonWriter json;
  json.oneLine = oneLine;
  JsonOpen(json, '{');
  JsonField(json, "file", document.path);
  NumberField(json, "size", document.size);
  NumberField(json, "version", inv.version);
  JsonField(json, "byteOrder", inv.littleEndian ? "little" : "big");
  NumberField(json, "indexOffset", inv.indexOffset);
  BoolField(json, "indexDeflated", inv.indexDeflated);
  WriteComputer(json, document);
  ListField(json, "sections", document.sections, [&json](const Section& section) { WriteSection(json, section); });
  ListField(json, "faults", document.faults, [&json](const Fault& fault) {
    JsonField(json, "part", fault.part);
    NumberField(json, "offset", fault.offset);
    JsonField(json, "words", fault.words);
  });
  JsonClose(json, '}');
  return json.text + "\n";
}

namespace {

int RunJson(const Arguments& arguments) {
  return ForEachFile(
      arguments,
      [&arguments](const Document& document, std::string& out, std::string&) {
        out = DocumentJson(document, arguments.lines);
        return true;
      },
      Parts::All);
}

}  // namespace

const Command kJsonCommand = {
    "json",
    RunJson,
    0,
    "Write each file as a JSON document.",
    "Examples:\n  quillinv json MYMAC_001EC2AABBCC.inv | jq .computer\n  quillinv json --lines *.inv > fleet.jsonl",
    {{"--lines", &Arguments::lines, "One line a file"}}};
