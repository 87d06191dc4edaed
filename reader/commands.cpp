// The table of the commands. A new one is a row here, its declaration in commands.h, and a file of its own with its row
// of words and options and what it does.
#include "reader/commands.h"

const std::vector<const Command*>& Commands() {
  static const std::vector<const Command*> commands = {&kListCommand, &kShowCommand,    &kJsonCommand, &kCsvCommand,
                                                       &kDiffCommand, &kExtractCommand, &kCheckCommand};
  return commands;
}

const std::vector<Option>& CommonOptions() {
  static const std::vector<Option> options = {
      {"--limit", &Arguments::limit, "The most that a file's bodies may inflate to, such as 64MB (256MB)"},
  };
  return options;
}
