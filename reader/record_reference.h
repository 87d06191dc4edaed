// What the records look like, in words and for programs, made from the table of their fields.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "reader/record.h"

// "text", "integer", ...
const char* TypeWord(FieldType type);
// Where the field is read: "`Snapshot/OS/os:1/name`"; empty for what is not read from one place.
std::string SourceWords(const RecordField& field);
// What the field means, with its codes.
std::string MeaningWords(const RecordField& field);

// The tables and their columns, for a terminal.
std::string TableList();

// docs/records.md.
std::string RecordsDocument();
// schema/record.schema.json: JSON Schema 2020-12.
std::string JsonSchema();
// schema/record.NAME.sql: the records as a table, and the statement that loads them. `engine` is one of SqlEngines.
std::string SqlSchema(std::string_view engine);
std::vector<std::string> SqlEngines();
