// The tables of a record, and the rows that a file has for each of them.
#include <algorithm>

#include "reader/record_fields.h"

namespace {

constexpr std::string_view kUnits[] = {
    "bytes", "mhz", "hz", "ma", "cm", "in", "percent", "minutes", "seconds", "pixels", "bits_per_second"};

std::vector<RecordTable> MakeTables() {
  std::vector<RecordTable> tables;
  AddMacTables(tables);
  AddDeviceTables(tables);
  AddSoftwareTables(tables);
  return tables;
}

void AddColumns(const RecordTable& table, const std::string& prefix, std::vector<RecordColumn>& columns) {
  for (const RecordField& field : table) {
    const std::string name = prefix + std::string(field.name);
    const bool there =
        std::any_of(columns.begin(), columns.end(), [&](const RecordColumn& c) { return c.name == name; });
    if (!there || table.shape == TableShape::List) columns.push_back({name, &table, &field});
  }
}

const RecordField& FieldOf(const RecordTable& table, std::string_view name) {
  return *std::find_if(table.begin(), table.end(), [name](const RecordField& field) { return field.name == name; });
}

bool BeginsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

}  // namespace

RecordSource SourceOf(const Document& document) {
  return {&document, FindRoot(document, "Snapshot"), FindRoot(document, "AssetInfo")};
}

const std::vector<RecordTable>& RecordTables() {
  static const std::vector<RecordTable> tables = MakeTables();
  return tables;
}

const RecordTable* FindRecordTable(std::string_view name) {
  for (const RecordTable& table : RecordTables())
    if (table.name == name) return &table;
  return nullptr;
}

std::string_view UnitOf(const RecordField& field) {
  for (const std::string_view unit : kUnits) {
    const std::string_view name = field.name;
    if (name.size() > unit.size() + 1 && name.substr(name.size() - unit.size()) == unit &&
        name[name.size() - unit.size() - 1] == '_' && field.type == FieldType::Integer)
      return unit;
  }
  return {};
}

std::vector<RecordRow> RowsOf(const RecordTable& table, const RecordSource& source) {
  std::vector<RecordRow> rows;
  if (table.rows) {
    table.rows(source, rows);
    return rows;
  }
  if (table.shape != TableShape::List) return {{&source, nullptr}};
  const Tag* list = FindTag(source.snapshot, table.path.substr(table.path.find('/') + 1));
  if (!list) return rows;
  for (const auto& child : list->children)
    if (BeginsWith(child->name, table.base))
      rows.push_back({&source, child.get(), static_cast<std::int64_t>(rows.size())});
  return rows;
}

std::vector<RecordColumn> ColumnsOf(const RecordTable& table) {
  std::vector<RecordColumn> columns;
  const RecordTable& mac = RecordTables().front();
  for (const char* name : {"mac_key", "computer_name", "scanned_at"})
    columns.push_back({name, &mac, &FieldOf(mac, name)});
  AddColumns(table, "", columns);
  if (table.shape != TableShape::Mac) return columns;
  for (const RecordTable& object : RecordTables())
    if (object.shape == TableShape::Object) AddColumns(object, std::string(object.name) + "_", columns);
  return columns;
}
