// One record a Mac: what a file says of it, typed and in plain units, for engines and people. One table in the source
// (the record_fields_*.cpp) holds every field with its type, its place in the inventory, its codes and what a missing
// value says; the JSON record, the rows of `quillinv table`, the page, the schemas and docs/records.md are made from
// it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reader/document.h"

enum class FieldType : std::uint8_t {
  Text,
  TextList,  // never null, empty instead
  Integer,   // 64 bits, signed
  Decimal,   // always written with a point or an exponent
  Flag,
  Moment,  // a text such as "2026-01-02T03:04:05Z"
  Day,     // a text such as "2026-01-02"
};

// What one field holds in one row. Reading into the same value again reuses its memory.
struct FieldValue {
  bool known = false;              // otherwise null: the rest means nothing
  std::int64_t integer = 0;        // Integer
  double real = 0;                 // Decimal; finite
  bool flag = false;               // Flag
  std::string text;                // Text, Moment, Day: never empty; bytes as in the file, perhaps not UTF-8
  std::vector<std::string> texts;  // TextList
};

// The trees of a file that records are made of; either may be null. Points into the document.
struct RecordSource {
  const Document* document = nullptr;
  const Tag* snapshot = nullptr;
  const Tag* asset = nullptr;
};

RecordSource SourceOf(const Document& document);

// One row of a table. Points into the document and its source.
struct RecordRow {
  const RecordSource* source = nullptr;
  const Tag* tag = nullptr;  // null in the tables of one row
  std::int64_t place = 0;    // from 0
  std::int64_t holder = -1;  // the row of another table that this one belongs to: a volume's disk, a mode's monitor
};

// Where a value stands: a path of tags, then an attribute or "=" for the tag's value, then perhaps a property behind
// "~". A path that begins with a root's name starts there, any other at the row's tag.
struct FieldSource {
  std::string_view path;
  std::string_view attribute;
  std::string_view property;
  bool absolute = false;
};

// What a code of the inventory says in a record; a code that is not listed stays as it is.
struct FieldCode {
  const char* code;
  const char* word;
};

struct RecordField {
  using Read = void (*)(const RecordField& field, const RecordRow& row, FieldValue& value);

  std::string_view name;  // ends with the unit, where there is one
  FieldType type;
  FieldSource source;      // no attribute and no property for what is not read from one place
  FieldSource otherwise;   // where to look when `source` has nothing
  const char* meaning;     // one sentence; may hold Markdown
  const char* missing;     // what null says; null for a field that is always there
  std::int64_t times = 1;  // what an Integer of the file is multiplied with
  const FieldCode* codes = nullptr;
  std::size_t codeCount = 0;
  Read read = nullptr;  // null for the usual way of its type
};

enum class TableShape : std::uint8_t {
  Mac,     // the record itself: one row
  Object,  // an object in the record: one row
  List,
};

struct RecordTable {
  using Rows = void (*)(const RecordSource& source, std::vector<RecordRow>& rows);

  std::string_view name;    // "firewall_apps"
  std::string_view parent;  // the object that holds it, "firewall"; empty for the record itself
  std::string_view key;     // its name there, "apps"
  TableShape shape;
  bool extra;             // left out unless it is asked for
  std::string_view path;  // lists: the tag whose children are the rows, "Snapshot/Software"
  std::string_view base;  // and how their names begin, "Soft:"
  const char* meaning;
  const RecordField* fields;
  std::size_t fieldCount;
  Rows rows = nullptr;  // null for the children of `path`

  const RecordField* begin() const { return fields; }
  const RecordField* end() const { return fields + fieldCount; }
};

// All tables, the record itself first and every object before its lists.
const std::vector<RecordTable>& RecordTables();
// The table of that name, null when there is none. The record itself is called "macs".
const RecordTable* FindRecordTable(std::string_view name);

// "bytes", "mhz", ...: the unit that the field's name ends with; empty when it ends with none.
std::string_view UnitOf(const RecordField& field);

// The rows of `table` in that file, in the inventory's order; one for the shapes Mac and Object.
std::vector<RecordRow> RowsOf(const RecordTable& table, const RecordSource& source);
void ReadField(const RecordField& field, const RecordRow& row, FieldValue& value);

// A column of a table's rows outside the record: a field, and the table whose row it is read from.
struct RecordColumn {
  std::string name;
  const RecordTable* table = nullptr;
  const RecordField* field = nullptr;
};

// mac_key, computer_name and scanned_at, then the table's own fields; those of "macs" hold the fields of its objects,
// too, as "os_name". `table` is of the shape Mac or List.
std::vector<RecordColumn> ColumnsOf(const RecordTable& table);

// The value as a text for people and CSV; empty for null. Texts are as in the file, those of a list joined by ", ".
std::string ValueText(FieldType type, const FieldValue& value);

// The lists that --with asks for, by name.
struct RecordOptions {
  std::vector<std::string> with;
};

// The names that --with takes, joined by commas. False, and the odd name in `unknown`, when `list` holds another.
std::string ExtraLists();
bool ParseExtraLists(std::string_view list, RecordOptions& options, std::string& unknown);

// One line: the record as a JSON object, and a line feed. Bytes that are not UTF-8 become U+FFFD.
std::string RecordJson(const Document& document, const RecordOptions& options);
