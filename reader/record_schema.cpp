// Writes the table of the fields for programs: as JSON Schema, and as the tables of databases that load nested records.
#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "reader/record_reference.h"

namespace {

using Json = nlohmann::ordered_json;

Json FieldSchema(const RecordField& field) {
  Json schema;
  const char* type = field.type == FieldType::Integer   ? "integer"
                     : field.type == FieldType::Decimal ? "number"
                     : field.type == FieldType::Flag    ? "boolean"
                                                        : "string";
  if (field.type == FieldType::TextList) {
    schema = {{"type", "array"}, {"items", {{"type", "string"}, {"minLength", 1}}}};
  } else {
    schema["type"] = field.missing ? Json{type, "null"} : Json(type);
  }
  if (field.type == FieldType::Text) schema["minLength"] = 1;
  if (field.type == FieldType::Moment) schema["format"] = "date-time";
  if (field.type == FieldType::Day) schema["format"] = "date";
  schema["description"] = MeaningWords(field);
  if (field.missing) schema["x-null"] = field.missing;
  if (!UnitOf(field).empty()) schema["x-unit"] = UnitOf(field);
  return schema;
}

Json TableSchema(const RecordTable& table, std::string_view name) {
  Json schema = {{"type", "object"}, {"description", table.meaning}, {"properties", Json::object()}};
  Json required = Json::array();
  for (const RecordField& field : table) {
    schema["properties"][std::string(field.name)] = FieldSchema(field);
    required.push_back(field.name);
  }
  for (const RecordTable& inner : RecordTables()) {
    if (inner.shape == TableShape::Mac || inner.parent != name || table.shape == TableShape::List) continue;
    const bool list = inner.shape == TableShape::List;
    const Json object = TableSchema(inner, inner.name);
    schema["properties"][std::string(inner.key)] = list ? Json{{"type", "array"}, {"items", object}} : object;
    if (!inner.extra) required.push_back(inner.key);
  }
  schema["required"] = required;
  schema["additionalProperties"] = false;
  return schema;
}

// How an engine writes a type.
struct Sql {
  const char* name;
  const char* before;  // what stands before the columns of the whole record
  const char* after;
  char quote;
  const char* column;  // between a column's name and its type
  const char* openStruct;
  const char* inner;  // the same in a structure
  const char* closeStruct;
  const char* openList;
  const char* closeList;
  const char* openNull;
  const char* closeNull;
  const char* types[7];  // by FieldType; TextList is made of Text
};

constexpr Sql kEngines[] = {
    {"duckdb",
     "-- quillinv records ... > fleet.jsonl\n"
     "CREATE VIEW macs AS SELECT * FROM read_json('fleet.jsonl', format = 'newline_delimited',\n"
     "  maximum_object_size = 268435456, columns = {\n",
     "\n});\n",
     '\'',
     ": '",
     "STRUCT(",
     " ",
     ")",
     "",
     "[]",
     "",
     "",
     {"VARCHAR", "", "BIGINT", "DOUBLE", "BOOLEAN", "TIMESTAMP", "DATE"}},
    {"spark",
     "-- quillinv records ... > fleet.jsonl\nCREATE TABLE macs (\n",
     "\n) USING json OPTIONS (path 'fleet.jsonl', timestampFormat \"yyyy-MM-dd'T'HH:mm:ssX\");\n",
     '`',
     " ",
     "STRUCT<",
     ": ",
     ">",
     "ARRAY<",
     ">",
     "",
     "",
     {"STRING", "", "BIGINT", "DOUBLE", "BOOLEAN", "TIMESTAMP", "DATE"}},
    {"clickhouse",
     "CREATE TABLE macs (\n",
     "\n) ENGINE = MergeTree ORDER BY (assumeNotNull(mac_key), assumeNotNull(scanned_at))\n"
     "SETTINGS allow_nullable_key = 1;\n"
     "-- quillinv records ... > fleet.jsonl\n"
     "-- clickhouse-client --date_time_input_format best_effort -q \"INSERT INTO macs FORMAT JSONEachRow\" < "
     "fleet.jsonl\n",
     '`',
     " ",
     "Tuple(",
     " ",
     ")",
     "Array(",
     ")",
     "Nullable(",
     ")",
     {"String", "", "Int64", "Float64", "Bool", "DateTime64(0, 'UTC')", "Date32"}},
    {"trino",
     "-- quillinv records ... > fleet.jsonl, copied into the folder that external_location names\n"
     "CREATE TABLE macs (\n",
     "\n) WITH (format = 'JSON', external_location = 's3://BUCKET/fleet/');\n",
     '"',
     " ",
     "ROW(",
     " ",
     ")",
     "ARRAY(",
     ")",
     "",
     "",
     {"VARCHAR", "", "BIGINT", "DOUBLE", "BOOLEAN", "VARCHAR", "VARCHAR"}},
};

std::string Quoted(std::string_view name, char quote) { return quote + std::string(name) + quote; }

std::string SqlType(const RecordField& field, const Sql& sql) {
  const std::string text = sql.types[0];
  if (field.type == FieldType::TextList) return sql.openList + text + sql.closeList;
  return sql.openNull + std::string(sql.types[static_cast<std::size_t>(field.type)]) + sql.closeNull;
}

// "name type" of each field and inner list, joined.
std::string SqlColumns(const RecordTable& table, const Sql& sql, const std::string& between, bool top);

std::string SqlStruct(const RecordTable& table, const Sql& sql) {
  return sql.openStruct + SqlColumns(table, sql, ", ", false) + sql.closeStruct;
}

std::string SqlColumns(const RecordTable& table, const Sql& sql, const std::string& between, bool top) {
  std::string columns;
  const char quote = !top && sql.quote == '\'' ? '"' : sql.quote;
  const auto add = [&](std::string_view name, const std::string& type) {
    const char* end = top && sql.quote == '\'' ? "'" : "";
    columns += (columns.empty() ? "" : between) + Quoted(name, quote) + (top ? sql.column : sql.inner) + type + end;
  };
  if (top) columns = "";
  for (const RecordField& field : table) add(field.name, SqlType(field, sql));
  for (const RecordTable& inner : RecordTables()) {
    const std::string_view holder = table.shape == TableShape::Mac ? std::string_view() : table.name;
    if (inner.shape == TableShape::Mac || table.shape == TableShape::List || inner.parent != holder) continue;
    const bool list = inner.shape == TableShape::List;
    add(inner.key, (list ? sql.openList : "") + SqlStruct(inner, sql) + (list ? sql.closeList : ""));
  }
  return columns;
}

}  // namespace

std::string JsonSchema() {
  Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"}, {"title", "The record of a Mac"}};
  schema.update(TableSchema(RecordTables().front(), ""));
  return schema.dump(1) + "\n";
}

std::string SqlSchema(std::string_view engine) {
  for (const Sql& sql : kEngines)
    if (engine == sql.name)
      return sql.before + ("  " + SqlColumns(RecordTables().front(), sql, ",\n  ", true)) + sql.after;
  return "";
}

std::vector<std::string> SqlEngines() {
  std::vector<std::string> names;
  for (const Sql& sql : kEngines) names.emplace_back(sql.name);
  return names;
}
