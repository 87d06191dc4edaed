// quillinv schema: what the records look like, for people and for the programs that load them.
#include "reader/commands.h"
#include "reader/record_reference.h"
#include "reader/run.h"

namespace {

std::vector<std::string> Formats() {
  std::vector<std::string> formats = SqlEngines();
  formats.insert(formats.begin(), {"json", "reference"});
  return formats;
}

int RunSchema(const Arguments& arguments) {
  const std::string& format = arguments.word;
  const std::string text = format.empty() || format == "json" ? JsonSchema()
                           : format == "reference"            ? RecordsDocument()
                                                              : SqlSchema(format);
  if (text.empty()) {
    Complain(format, "there is no such format (see quillinv schema --help)");
    return kTrouble;
  }
  Write(text);
  return kSound;
}

}  // namespace

const Command kSchemaCommand = {
    "schema",
    RunSchema,
    kNoFiles,
    "Write what the records look like: as JSON Schema, as the reference in Markdown, or as the table of a database.",
    "It reads no file.\n\nExamples:\n  quillinv schema > record.schema.json\n  duckdb -init schema/record.duckdb.sql",
    {},
    {Word::Place::BeforeFiles, "FORMAT", "Which form; JSON Schema when missing", false, Formats}};
