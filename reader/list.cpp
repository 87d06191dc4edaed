// Turns the records of the index, and what could be read of the bodies, into aligned lines.
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "reader/commands.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

constexpr std::size_t kColumns = 6;
using Row = std::array<std::string, kColumns>;

std::size_t CountTags(const Tag& tag) {
  std::size_t count = 1;
  for (const auto& child : tag.children) count += CountTags(*child);
  return count;
}

std::string Holds(const Section& section) {
  if (!section.record.inside) return "not in the file";
  if (!section.isRead) return FormName(BodyForm::Raw);
  const std::string size = FormName(section.body.form) + ", " + Bytes(section.body.text.size());
  const Tag* root = RootTag(section);
  const std::string damage = section.body.whole ? "" : ", damaged";
  if (!root) return size + damage;
  const std::size_t tags = CountTags(*root);
  return size + damage + ": " + Printable(root->name) + ", " + std::to_string(tags) + (tags == 1 ? " tag" : " tags");
}

Row MakeRow(const Section& section) {
  const InvRecord& record = section.record;
  return {std::to_string(record.number), TypeName(record.type),       std::to_string(record.offset),
          std::to_string(record.length), Printable(record.timestamp), Holds(section)};
}

std::string Line(const Row& row, const std::array<std::size_t, kColumns>& widths) {
  constexpr bool kRight[] = {true, false, true, true, false, false};
  std::string line;
  for (std::size_t i = 0; i < row.size(); ++i)
    line += "  " + (kRight[i] ? PadLeft(row[i], widths[i]) : PadRight(row[i], widths[i]));
  return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

}  // namespace

std::string ListText(const Document& document, bool header) {
  const InvContainer& inv = document.container;
  std::string text = Printable(document.path) + ": " + Bytes(document.size) + ", " +
                     std::to_string(inv.records.size()) + (inv.records.size() == 1 ? " section" : " sections") +
                     ", index at " + std::to_string(inv.indexOffset) + (inv.indexDeflated ? ", deflated" : ", plain") +
                     (inv.littleEndian ? ", little-endian\n" : ", big-endian\n");
  std::vector<Row> rows;
  if (header) rows.push_back({"#", "type", "offset", "length", "timestamp", "holds"});
  for (const Section& section : document.sections) rows.push_back(MakeRow(section));
  std::array<std::size_t, kColumns> widths = {};
  for (const Row& row : rows)
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  if (document.sections.empty()) return text;
  for (const Row& row : rows) text += Line(row, widths);
  return text;
}

namespace {

int RunList(const Arguments& arguments) {
  return ForEachFile(arguments, [&arguments](const Document& document, std::string& out, std::string&) {
    out = ListText(document, !arguments.noHeader);
    return true;
  });
}

}  // namespace

const Command kListCommand = {
    "list",
    RunList,
    0,
    "Show the index: each section's type, place, length and timestamp, and what its body holds.",
    "Example:\n  quillinv list *.inv",
    {}};
