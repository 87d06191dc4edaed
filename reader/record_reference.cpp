// Writes the table of the fields as the reference in Markdown, and as a list for a terminal.
#include "reader/record_reference.h"

#include <algorithm>

#include "reader/text.h"

namespace {

constexpr char kHead[] =
    R"(<!-- Written by `quillinv schema reference`; a test compares. -->
# The record of a Mac

`quillinv records FILE...` writes one line of JSON for each file. The same fields are the columns of `quillinv table`.
[record.schema.json](../schema/record.schema.json) says the same for programs, and [fleet.md](fleet.md) puts records to
use. What the inventory's own tags mean is in [vocabulary.md](vocabulary.md).

- Every field is always there, and every list. What is missing, empty or not what its field wants is null; no text is
  empty. A list is never null.
- A number is in the unit that its name ends with. An integer fits 64 bits; a decimal always has a point or an exponent.
- A timestamp is in UTC: `2026-01-02T03:04:05Z`. A date is `2026-01-02`.
- A text is UTF-8; each byte that belongs to no valid sequence is U+FFFD. Line breaks at its end are cut off, those inside
  it are carriage returns.
- A code that this reference does not know stands in the record as it is.
- Fields may be added; none is renamed, moved or given another type.

"From" names tag and attribute of the inventory: `=` is the tag's value, `~name` a property. A path without a root begins
at the row's tag; where there are two, the second serves when the first has nothing. A quantity of storage is what its
property `base-value` says in bytes, and only without one the number shown.
)";

std::string Place(const FieldSource& source) {
  if (source.attribute.empty() && source.property.empty()) return "";
  std::string place(source.path);
  if (!source.attribute.empty()) place += (place.empty() ? "" : "/") + std::string(source.attribute);
  if (!source.property.empty()) place += "~" + std::string(source.property);
  return "`" + place + "`";
}

std::string TableHead(const RecordTable& table) {
  std::string head = "\n## " + std::string(table.shape == TableShape::Mac ? "The record itself" : table.name) + "\n\n";
  head += table.meaning;
  if (table.shape == TableShape::Mac) head += "; as a table, `macs`, with the objects' fields as `os_name`";
  if (table.shape == TableShape::Object) head += ", an object of the record";
  if (!table.parent.empty())
    head += ", the list `" + std::string(table.key) + "` in the object `" + std::string(table.parent) + "`";
  if (table.shape == TableShape::List)
    head += ". From `" + std::string(table.path) + "/" + std::string(table.base) + "N`";
  if (table.extra) head += "; only with `--with " + std::string(table.name) + "`";
  return head + ".\n\n| field | type | unit | from | meaning | null |\n| --- | --- | --- | --- | --- | --- |\n";
}

std::string FieldLine(const RecordField& field) {
  const std::string null = field.missing ? field.missing : field.type == FieldType::TextList ? "never: empty" : "never";
  return "| `" + std::string(field.name) + "` | " + TypeWord(field.type) + " | " + std::string(UnitOf(field)) + " | " +
         SourceWords(field) + " | " + MeaningWords(field) + " | " + null + " |\n";
}

// Without the marks of Markdown.
std::string Plain(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '`'), text.end());
  return text;
}

}  // namespace

const char* TypeWord(FieldType type) {
  constexpr const char* kWords[] = {"text", "texts", "integer", "decimal", "boolean", "timestamp", "date"};
  return kWords[static_cast<std::size_t>(type)];
}

std::string SourceWords(const RecordField& field) {
  const std::string first = Place(field.source), second = Place(field.otherwise);
  return first + (second.empty() ? "" : ", else ") + second;
}

std::string MeaningWords(const RecordField& field) {
  std::string words = field.meaning;
  for (std::size_t i = 0; i < field.codeCount; ++i) {
    words += i == 0 ? "; " : ", ";
    words += "`" + std::string(field.codes[i].word) + "` for `" + field.codes[i].code + "`";
  }
  return words;
}

std::string TableList() {
  std::string list = "Every table begins with mac_key, computer_name and scanned_at.\n";
  for (const RecordTable& table : RecordTables()) {
    if (table.shape == TableShape::Object) continue;
    list += "\n" + std::string(table.name) + ": " + table.meaning + "\n";
    const std::vector<RecordColumn> columns = ColumnsOf(table);
    std::size_t width = 0;
    for (const RecordColumn& column : columns) width = std::max(width, column.name.size());
    for (std::size_t i = 3; i < columns.size(); ++i)
      list += "  " + PadRight(columns[i].name, width) + "  " + PadRight(TypeWord(columns[i].field->type), 9) + "  " +
              Plain(MeaningWords(*columns[i].field)) + "\n";
  }
  return list;
}

std::string RecordsDocument() {
  std::string document = kHead;
  for (const RecordTable& table : RecordTables()) {
    document += TableHead(table);
    for (const RecordField& field : table) document += FieldLine(field);
  }
  return document;
}
