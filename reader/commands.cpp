// The table of the commands. A new one is a row here, its declaration in commands.h, and a file of its own with its row
// of words and options and what it does.
#include "reader/commands.h"

const std::vector<const Command*>& Commands() {
  static const std::vector<const Command*> commands = {
      &kListCommand,   &kShowCommand,   &kJsonCommand,  &kRecordsCommand,   &kTableCommand,
      &kSchemaCommand, &kCsvCommand,    &kFindCommand,  &kDiffCommand,      &kExtractCommand,
      &kCheckCommand,  &kReportCommand, &kFleetCommand, &kCompletionCommand};
  return commands;
}

const std::vector<Option>& CommonOptions() {
  static const std::vector<Option> options = {
      {"--latest", &Arguments::latest, "Of each Mac only its newest scan; debug scans do not count"},
      {"--files-from", &Arguments::filesFrom, "Take the names of files from this one, one a line; - is standard input"},
      {"--no-header", &Arguments::noHeader, "Leave out lines that only say what the columns or the files are"},
      {"--limit", &Arguments::limit,
       "The most that a file, and the text of its bodies, may take, such as 64MB (256MB)"},
  };
  return options;
}
