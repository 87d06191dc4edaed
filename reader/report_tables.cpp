// Writes the tables of a record as they stand: a column for each field that any row knows.
#include "reader/report_tables.h"

#include <algorithm>

#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/text.h"

namespace {

constexpr std::size_t kShortText = 22;   // characters that a column keeps on one line
constexpr std::size_t kPlainTitle = 32;  // characters of a meaning that says no more than the title
constexpr std::string_view kInfoTable = "software_info";
constexpr std::size_t kManyColumns = 9;  // that a sheet of paper has room for
constexpr std::size_t kFilterRows = 6;   // shorter tables need no filter

struct Column {
  const RecordField* field = nullptr;
  std::vector<FieldValue> values;  // one for each row
  bool number = false;
  bool used = false;
  std::size_t width = 0;  // of the longest text, in characters
};

Column ReadColumn(const RecordField& field, const std::vector<RecordRow>& rows) {
  Column column;
  column.field = &field;
  column.number = field.type == FieldType::Integer || field.type == FieldType::Decimal;
  for (const RecordRow& row : rows) {
    column.values.emplace_back();
    ReadField(field, row, column.values.back());
    const std::string text = Shown(field, column.values.back());
    column.width = std::max(column.width, Width(text));
    column.used = column.used || !text.empty();
  }
  return column;
}

// The fields of a table's rows. What applications say of themselves has a table of its own, read from the same tags.
std::vector<const RecordField*> FieldsOf(const RecordTable& table) {
  std::vector<const RecordField*> fields;
  for (const RecordField& field : table) fields.push_back(&field);
  if (table.name == "software")
    for (const RecordField& field : *FindRecordTable(kInfoTable))
      if (field.type == FieldType::Text) fields.push_back(&field);
  return fields;
}

std::vector<Column> UsedColumns(const RecordTable& table, const std::vector<RecordRow>& rows) {
  std::vector<Column> columns;
  for (const RecordField* field : FieldsOf(table)) {
    Column column = ReadColumn(*field, rows);
    if (column.used) columns.push_back(std::move(column));
  }
  return columns;
}

const char* KindOf(const Column& column) {
  if (column.number) return "num";
  return column.width > kShortText ? "long" : "short";
}

// What numbers are sorted by; their texts have units.
std::string KeyText(const FieldValue& value, FieldType type) {
  if (!value.known) return "";
  if (type == FieldType::Integer) return " data-key=\"" + std::to_string(value.integer) + "\"";
  return type == FieldType::Decimal ? " data-key=\"" + std::to_string(value.real) + "\"" : "";
}

// A path may break behind each of its folders.
std::string BreakableHtml(const std::string& text) {
  std::string html = HtmlText(text);
  if (text.empty() || text[0] != '/') return html;
  for (std::size_t at = html.find('/', 1); at != html.npos; at = html.find('/', at + 1)) html.insert(at + 1, "<wbr>");
  return html;
}

std::string CellHtml(const Column& column, std::size_t row, bool head) {
  const FieldValue& value = column.values[row];
  const FieldType type = column.field->type;
  const std::string text = Shown(*column.field, value);
  const char* name = head && !text.empty() ? "th" : "td";
  std::string html = std::string("<") + name + " class=\"" + KindOf(column) + "\"" +
                     (name[1] == 'h' ? " scope=\"row\"" : "") + KeyText(value, type);
  const bool ofFile = type == FieldType::Text || type == FieldType::TextList;
  return html + (ofFile ? " dir=\"auto\">" : ">") + BreakableHtml(text) + "</" + name + ">";
}

// The column that names a row: the first of texts, else the first.
std::size_t HeadColumn(const std::vector<Column>& columns) {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].field->type == FieldType::Text) return i;
  return 0;
}

std::string ToolsHtml(const std::string& id, std::size_t rows) {
  if (rows < kFilterRows) return "";
  return "<div class=\"tools\" hidden><label for=\"filter-" + id +
         "\">Filter</label><input type=\"search\" id=\"filter-" + id + "\"><span class=\"soft\" role=\"status\">" +
         Counted(rows, "row", "rows") + "</span></div>";
}

std::string TableHtml(const RecordTable& table, const std::vector<RecordRow>& rows, const std::string& id) {
  const std::vector<Column> columns = UsedColumns(table, rows);
  if (columns.empty()) return "<p class=\"soft\">Nothing is known of them.</p>";
  const std::size_t head = HeadColumn(columns);
  std::vector<ColumnHead> heads;
  for (const Column& column : columns) heads.push_back({FieldLabel(*column.field), KindOf(column)});
  std::string html = HeadsHtml(heads) + "<tbody>\n";
  for (std::size_t row = 0; row < rows.size(); ++row) {
    html += "<tr>";
    for (std::size_t i = 0; i < columns.size(); ++i) html += CellHtml(columns[i], row, i == head);
    html += "</tr>\n";
  }
  return ScrollTable(id, columns.size() > kManyColumns ? "data many" : "data", html + "</tbody>");
}

std::string ListHtml(const TablePart& part, const std::string& body, bool open) {
  return std::string("<details class=\"list\"") + (open ? " open" : "") + "><summary><h3 id=\"" + part.id + "\">" +
         part.title + "</h3> <span class=\"count\">" +
         (part.rows ? Grouped(static_cast<std::int64_t>(part.rows)) : "") + "</span></summary>" + body + "</details>\n";
}

// "Firewall apps"
std::string TitleOf(const RecordTable& table) {
  std::string title(table.name);
  std::replace(title.begin(), title.end(), '_', ' ');
  for (const auto& [word, better] : {std::pair("usb", "USB"), {"gpus", "Graphics"}})
    if (title.find(word) == 0) title.replace(0, std::string_view(word).size(), better);
  if (title[0] >= 'a' && title[0] <= 'z') title[0] = static_cast<char>(title[0] - 'a' + 'A');
  return title;
}

// A sentence with its `words` as code.
std::string MeaningHtml(std::string_view text) {
  if (text.size() <= kPlainTitle) return "";
  std::string html = "<p class=\"soft meaning\">";
  bool code = false;
  for (const char c : text) {
    if (c == '`') html += (code = !code) ? "<code>" : "</code>";
    if (c != '`') html += HtmlText({&c, 1});
  }
  return html + ".</p>";
}

TablePart ListPart(const RecordTable& table, const RecordSource& source) {
  const std::vector<RecordRow> rows = RowsOf(table, source);
  TablePart part = {"list-" + std::string(table.name), TitleOf(table), rows.size(), ""};
  const bool open = !table.extra;
  if (!rows.empty())
    part.html = ListHtml(
        part, MeaningHtml(table.meaning) + ToolsHtml(part.id, rows.size()) + TableHtml(table, rows, part.id), open);
  return part;
}

// The tables of one row, as names and values.
TablePart MacPart(const RecordSource& source) {
  TablePart part = {"list-mac", "The Mac and its scan", 0, ""};
  std::string body;
  for (const RecordTable& table : RecordTables()) {
    if (table.shape == TableShape::List) continue;
    std::string pairs;
    const RecordRow row = RowsOf(table, source).front();
    for (const RecordField& field : table) {
      FieldValue value;
      ReadField(field, row, value);
      const std::string text = Shown(field, value);
      if (!text.empty()) pairs += "<div><dt>" + FieldLabel(field) + "</dt>" + FileText("dd", text) + "</div>";
    }
    if (!pairs.empty()) body += std::string("<h4>") + table.meaning + "</h4><dl class=\"facts\">" + pairs + "</dl>";
  }
  part.html = ListHtml(part, body, true);
  return part;
}

}  // namespace

std::vector<TablePart> InventoryTables(const RecordSource& source) {
  std::vector<TablePart> parts = {MacPart(source), ListPart(*FindRecordTable("software"), source)};
  for (const RecordTable& table : RecordTables())
    if (table.shape == TableShape::List && table.name != "software" && table.name != kInfoTable)
      parts.push_back(ListPart(table, source));
  const auto empty = [](const TablePart& part) { return part.html.empty(); };
  parts.erase(std::remove_if(parts.begin(), parts.end(), empty), parts.end());
  return parts;
}

std::string EmptyLists(const RecordSource& source) {
  std::string names;
  for (const RecordTable& table : RecordTables()) {
    if (table.shape != TableShape::List || table.name == kInfoTable || !RowsOf(table, source).empty()) continue;
    names += (names.empty() ? "" : ", ") + std::string(table.name);
  }
  std::replace(names.begin(), names.end(), '_', ' ');
  return names;
}
