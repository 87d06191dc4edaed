// quillinv records: one line of JSON for each Mac.
#include "reader/commands.h"
#include "reader/record.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

std::vector<std::string> ExtraListChoices() {
  std::vector<std::string> names;
  for (const RecordTable& table : RecordTables())
    if (table.extra) names.emplace_back(table.name);
  return names;
}

int RunRecords(const Arguments& arguments) {
  RecordOptions options;
  std::string unknown;
  if (!ParseExtraLists(arguments.with, options, unknown)) {
    Complain(unknown, "there is no such list (there are " + ExtraLists() + ")");
    return kTrouble;
  }
  return ForEachFile(arguments, [&options](const Document& document, std::string& out, std::string&) {
    out = RecordJson(document, options);
    return true;
  });
}

}  // namespace

const Command kRecordsCommand = {
    "records",
    RunRecords,
    0,
    "Write one typed JSON record a line for each file, ready for a database.",
    "docs/records.md describes every field.\n\nExamples:\n"
    "  quillinv records *.inv > fleet.jsonl\n"
    "  quillinv records --with processes *.inv | jq -r '.processes[].command'",
    {{"--with", &Arguments::with, "Long lists to add, joined by commas", ExtraListChoices}}};
