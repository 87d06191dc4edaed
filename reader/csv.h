// quillinv csv: one row for each computer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "reader/document.h"

struct Column {
  std::string name;  // as the header row shows it
  std::string path;  // root and attribute, as in "AssetInfo/control/os-name"; empty for the file's own path
};

// The columns of a row when none are chosen.
std::vector<Column> DefaultColumns();
// The names of all columns that have one.
std::vector<std::string> ColumnNames();

// The columns of a list such as "file,hostname,Snapshot/OS/os:1/kernel"; what holds a "/" is the path of an attribute.
// False, and plain words in `trouble`, when a name without "/" is none of ColumnNames.
bool ParseColumns(std::string_view list, std::vector<Column>& columns, std::string& trouble);

// What the file holds for that column, as it stands there; empty when it holds nothing.
std::string ColumnText(const Document& document, const Column& column);

// What --safe-csv does, for the help.
constexpr char kSafeCsvHelp[] =
    "Put an apostrophe in front of a field that begins with =, +, -, @, a tab\n"
    "or a carriage return, which a spreadsheet would take for a formula";

// One row by RFC 4180, in UTF-8, with its CR LF; `safe` as kSafeCsvHelp says.
std::string CsvLine(const std::vector<std::string>& texts, bool safe = false);
std::string CsvHeader(const std::vector<Column>& columns, bool safe = false);
std::string CsvRow(const Document& document, const std::vector<Column>& columns, bool safe = false);
