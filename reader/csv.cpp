// Picks attributes of the AssetInfo tree, its control block and the snapshot's head, and quotes them as fields.
#include "reader/csv.h"

#include <algorithm>

#include "reader/commands.h"
#include "reader/run.h"
#include "reader/text.h"
#include "reader/tree_path.h"

namespace {

constexpr char kAsset[] = "AssetInfo/";
constexpr char kControl[] = "AssetInfo/control/";
constexpr char kSnapshot[] = "Snapshot/";

constexpr std::string_view kFormulaStarts = "=+-@\t\r";

struct NamedColumn {
  const char* name;
  const char* place;     // path in front of the name; empty for the file itself
  bool isUsual = false;  // a row has it when no columns are chosen
};

// The usual ones stand in the order of a row.
constexpr NamedColumn kColumns[] = {
    {"file", "", true},
    {"hostname", kAsset, true},
    {"int-name", kAsset, true},
    {"domain", kControl, true},
    {"ip-address", kAsset, true},
    {"mac-address", kAsset, true},
    {"serial-number", kAsset, true},
    {"uuid", kAsset, true},
    {"user-name", kAsset, true},
    {"last-scan", kAsset, true},
    {"client-version", kSnapshot, true},
    {"system-model", kControl, true},
    {"virtual-type", kAsset, true},
    {"os-name", kControl, true},
    {"os-ver", kControl, true},
    {"os-sp", kControl, true},
    {"os-arch", kControl, true},
    {"cpu-model", kControl, true},
    {"cpu-count", kControl, true},
    {"cpu-speed", kControl, true},
    {"phys-memory", kControl, true},
    {"hdd-capacity", kControl, true},
    {"video-ram", kControl, true},
    {"video-res", kControl, true},
    {"monitor-count", kControl, true},
    {"error-message", kAsset, true},
    {"alias", kAsset},
    {"static-ip", kAsset},
    {"login", kAsset},
    {"inv-number", kAsset},
    {"asset-tag", kAsset},
    {"asset-type", kAsset},
    {"scan-type", kAsset},
    {"scan-subtype", kAsset},
    {"first-scan", kAsset},
    {"description", kAsset},
    {"comment", kAsset},
    {"os-manuf", kControl},
    {"system-manuf", kControl},
    {"chassis-manuf", kControl},
    {"cpu-manuf", kControl},
    {"cpu-count-virtual", kControl},
    {"monitor-diag", kControl},
    {"fw-status", kControl},
    {"timestamp", kSnapshot},
    {"scan-time", kSnapshot},
    {"snaptype", kSnapshot},
};

Column MakeColumn(const NamedColumn& named) {
  return {named.name, *named.place == '\0' ? "" : std::string(named.place) + named.name};
}

// False when there is no column of that name.
bool FindColumn(const std::string& name, Column& column) {
  column = {name, name};
  if (name.find('/') != std::string::npos) return true;
  for (const NamedColumn& named : kColumns) {
    if (name != named.name) continue;
    column = MakeColumn(named);
    return true;
  }
  return false;
}

// What a spreadsheet takes for a formula gets an apostrophe in front when it has to be `safe`.
std::string Field(std::string_view text, bool safe) {
  std::string clean = CleanUtf8(text);
  if (safe && !clean.empty() && kFormulaStarts.find(clean.front()) != std::string_view::npos) clean.insert(0, 1, '\'');
  if (clean.find_first_of(",\"\r\n") == std::string::npos) return clean;
  std::string field = "\"";
  for (const char c : clean) field += c == '"' ? std::string("\"\"") : std::string(1, c);
  return field + "\"";
}

}  // namespace

std::string CsvLine(const std::vector<std::string>& texts, bool safe) {
  std::string row;
  for (const std::string& text : texts) row += (&text == &texts.front() ? "" : ",") + Field(text, safe);
  return row + "\r\n";
}

std::vector<Column> DefaultColumns() {
  std::vector<Column> columns;
  for (const NamedColumn& named : kColumns)
    if (named.isUsual) columns.push_back(MakeColumn(named));
  return columns;
}

std::vector<std::string> ColumnNames() {
  std::vector<std::string> names;
  for (const NamedColumn& named : kColumns) names.emplace_back(named.name);
  return names;
}

bool ParseColumns(std::string_view list, std::vector<Column>& columns, std::string& trouble) {
  columns.clear();
  while (true) {
    const std::string name(list.substr(0, list.find(',')));
    columns.emplace_back();
    if (!FindColumn(name, columns.back())) {
      trouble = "there is no column " + Printable(name) + " (see quillinv csv --help)";
      return false;
    }
    if (name.size() == list.size()) return true;
    list.remove_prefix(name.size() + 1);
  }
}

std::string ColumnText(const Document& document, const Column& column) {
  if (column.path.empty()) return document.path;
  for (const Section& section : document.sections)
    for (const PathMatch& match : FindByPath(section.tree.container, column.path))
      return TextOf(match.attribute) + (match.attribute ? "" : TextOf(match.tag));
  return "";
}

std::string CsvHeader(const std::vector<Column>& columns, bool safe) {
  std::vector<std::string> texts;
  for (const Column& column : columns) texts.push_back(column.name);
  return CsvLine(texts, safe);
}

std::string CsvRow(const Document& document, const std::vector<Column>& columns, bool safe) {
  std::vector<std::string> texts;
  for (const Column& column : columns) texts.push_back(ColumnText(document, column));
  return CsvLine(texts, safe);
}

namespace {

// Takes the columns out of `missing` that name something in the document.
void RemoveFound(const Document& document, std::vector<Column>& missing) {
  const auto isFound = [&document](const Column& column) {
    const auto& sections = document.sections;
    return std::any_of(sections.begin(), sections.end(), [&column](const Section& section) {
      return !FindByPath(section.tree.container, column.path).empty();
    });
  };
  missing.erase(std::remove_if(missing.begin(), missing.end(), isFound), missing.end());
}

int RunCsv(const Arguments& arguments) {
  std::vector<Column> columns = DefaultColumns();
  std::string trouble;
  if (!arguments.columns.empty() && !ParseColumns(arguments.columns, columns, trouble)) {
    Complain("csv", trouble);
    return kTrouble;
  }
  std::vector<Column> missing;  // columns chosen by their path that no file has held so far
  for (const Column& column : columns)
    if (column.name.find('/') != std::string::npos) missing.push_back(column);
  if (!arguments.noHeader) WriteData(CsvHeader(columns, arguments.safeCsv));
  const int status = ForEachFile(arguments, [&](const Document& document, std::string& out, std::string&) {
    out = CsvRow(document, columns, arguments.safeCsv);
    RemoveFound(document, missing);
    return true;
  });
  for (const Column& column : missing) Complain("csv", "none of the files holds anything at " + Printable(column.name));
  return missing.empty() ? status : kTrouble;
}

}  // namespace

const Command kCsvCommand = {"csv",
                             RunCsv,
                             0,
                             "Write one row for each computer, with a header row (RFC 4180).",
                             "Examples:\n  quillinv csv *.inv > fleet.csv\n"
                             "  quillinv csv --columns hostname,serial-number,Snapshot/OS/os:1/kernel *.inv",
                             {{"--columns", &Arguments::columns,
                               "Names joined by commas; a name with a \"/\" is the path of any attribute", ColumnNames},
                              {"--safe-csv", &Arguments::safeCsv, kSafeCsvHelp}}};
