// Picks attributes of the AssetInfo tree, its control block and the snapshot's head, and quotes them as fields.
#include "reader/csv.h"

#include <sstream>

#include "reader/text.h"
#include "reader/tree_path.h"

namespace {

// The names that stand for an attribute, and the path in front of it. A name in two groups belongs to the first.
struct Group {
  const char* path;
  const char* names;
};

constexpr Group kGroups[] = {
    {"AssetInfo/",
     "hostname int-name alias ip-address static-ip mac-address serial-number\n"
     "uuid user-name login inv-number asset-tag asset-type virtual-type\n"
     "scan-type scan-subtype first-scan last-scan description comment\n"
     "error-message"},
    {"AssetInfo/control/",
     "domain os-name os-ver os-sp os-arch os-manuf system-model system-manuf\n"
     "chassis-manuf cpu-model cpu-manuf cpu-count cpu-count-virtual cpu-speed\n"
     "phys-memory hdd-capacity video-ram video-res monitor-count monitor-diag\n"
     "fw-status"},
    {"Snapshot/", "timestamp scan-time client-version snaptype"},
};

constexpr char kDefaultNames[] =
    "file,hostname,int-name,domain,ip-address,mac-address,serial-number,uuid,user-name,last-scan,client-version,"
    "system-model,virtual-type,os-name,os-ver,os-sp,os-arch,cpu-model,cpu-count,cpu-speed,phys-memory,hdd-capacity,"
    "video-ram,video-res,monitor-count,error-message";

// The column of that name; no value when there is none.
std::optional<Column> FindColumn(const std::string& name) {
  if (name == "file") return Column{name, ""};
  if (name.find('/') != std::string::npos) return Column{name, name};
  for (const Group& group : kGroups) {
    std::istringstream names(group.names);
    for (std::string known; names >> known;)
      if (name == known) return Column{name, group.path + name};
  }
  return std::nullopt;
}

std::string Field(std::string_view text) {
  std::string clean = CleanUtf8(text);
  if (clean.find_first_of(",\"\r\n") == std::string::npos) return clean;
  std::string field = "\"";
  for (const char c : clean) field += c == '"' ? std::string("\"\"") : std::string(1, c);
  return field + "\"";
}

std::string Row(const std::vector<std::string>& texts) {
  std::string row;
  for (const std::string& text : texts) row += (&text == &texts.front() ? "" : ",") + Field(text);
  return row + "\r\n";
}

}  // namespace

const std::vector<Column>& DefaultColumns() {
  std::string unknown;
  static const std::vector<Column> columns = ParseColumns(kDefaultNames, unknown);
  return columns;
}

std::string ColumnNames() {
  std::string names = "file";
  for (const Group& group : kGroups) names += std::string("\n") + group.names;
  return names;
}

std::vector<Column> ParseColumns(std::string_view list, std::string& unknown) {
  std::vector<Column> columns;
  while (true) {
    const std::string name(list.substr(0, list.find(',')));
    const auto column = FindColumn(name);
    if (!column) {
      unknown = name;
      return {};
    }
    columns.push_back(*column);
    if (name.size() == list.size()) return columns;
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

std::string CsvHeader(const std::vector<Column>& columns) {
  std::vector<std::string> texts;
  for (const Column& column : columns) texts.push_back(column.name);
  return Row(texts);
}

std::string CsvRow(const Document& document, const std::vector<Column>& columns) {
  std::vector<std::string> texts;
  for (const Column& column : columns) texts.push_back(ColumnText(document, column));
  return Row(texts);
}
