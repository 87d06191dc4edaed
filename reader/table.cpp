// quillinv table: one list of the records as rows of equal columns, or the tables that there are.
#include "reader/commands.h"
#include "reader/csv.h"
#include "reader/record_json.h"
#include "reader/record_reference.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

std::vector<std::string> TableNames() {
  std::vector<std::string> names;
  for (const RecordTable& table : RecordTables())
    if (table.shape != TableShape::Object) names.emplace_back(table.name);
  return names;
}

std::string Header(const std::vector<RecordColumn>& columns) {
  std::vector<std::string> names;
  for (const RecordColumn& column : columns) names.push_back(column.name);
  return CsvLine(names);
}

// The row that a column is read from: the table's own, or the only one of the record and its objects.
RecordRow RowFor(const RecordColumn& column, const RecordTable& table, const RecordRow& row) {
  return column.table == &table ? row : RecordRow{row.source};
}

std::string CsvRowText(const RecordTable& table, const std::vector<RecordColumn>& columns, const RecordRow& row,
                       bool safe) {
  std::vector<std::string> texts;
  FieldValue value;
  for (const RecordColumn& column : columns) {
    ReadField(*column.field, RowFor(column, table, row), value);
    texts.push_back(ValueText(column.field->type, value));
  }
  return CsvLine(texts, safe);
}

std::string JsonRowText(const RecordTable& table, const std::vector<RecordColumn>& columns, const RecordRow& row) {
  JsonWriter json;
  FieldValue value;
  JsonOpen(json, '{');
  for (const RecordColumn& column : columns) {
    JsonKey(json, column.name);
    ReadField(*column.field, RowFor(column, table, row), value);
    JsonValue(json, column.field->type, value);
  }
  JsonClose(json, '}');
  return json.text + "\n";
}

int RunTable(const Arguments& arguments) {
  if (arguments.word.empty()) {
    Write(TableList());
    return kSound;
  }
  const RecordTable* table = FindRecordTable(arguments.word);
  if (!table || table->shape == TableShape::Object) {
    Complain(arguments.word, "there is no such table (quillinv table lists them)");
    return kTrouble;
  }
  const std::vector<RecordColumn> columns = ColumnsOf(*table);
  if (!arguments.json && !arguments.noHeader) Write(Header(columns));
  return ForEachFile(arguments, [&](const Document& document, std::string& out, std::string&) {
    const RecordSource source = SourceOf(document);
    for (const RecordRow& row : RowsOf(*table, source))
      out += arguments.json ? JsonRowText(*table, columns, row) : CsvRowText(*table, columns, row, arguments.safeCsv);
    return true;
  });
}

}  // namespace

const Command kTableCommand = {
    "table",
    RunTable,
    0,
    "Write one list of the records as rows, with a header row (RFC 4180); without a name, show what tables there are.",
    "mac_key, computer_name and scanned_at stand in front of every row. A missing value is an empty field.\n\n"
    "Examples:\n  quillinv table\n  quillinv table software *.inv > software.csv\n"
    "  quillinv table volumes --json *.inv | jq 'select(.free_percent < 10)'",
    {{"--json", &Arguments::json, "One line of JSON for each row, typed as in the record"},
     {"--safe-csv", &Arguments::safeCsv, kSafeCsvHelp}},
    {Word::Place::BeforeFiles, "NAME", "Which list", false, TableNames}};
