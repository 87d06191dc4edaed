// quillinv: reads INV files for people and programs. This file makes the command line's parser from the rows of the
// commands, runs the one that was asked for, and answers with the exit status.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "reader/command.h"
#include "reader/output.h"
#include "reader/text.h"
#include "zxml/version.h"

namespace {

constexpr std::size_t kHelpWidth = 70;  // columns of a list of choices

// The choices in lines of their own, below what the help says of the option.
std::string ChoicesText(Choices choices) {
  if (choices == nullptr) return "";
  std::string text;
  std::size_t width = kHelpWidth;
  for (const std::string& choice : choices()) {
    const bool fits = width + 1 + choice.size() <= kHelpWidth;
    text += (fits ? " " : "\n") + choice;
    width = (fits ? width + 1 : 0) + choice.size();
  }
  return text;
}

// True for the name of a command and for an option; otherwise a message that names what was probably meant.
bool KnowsCommand(const std::string& name) {
  std::vector<std::string> names;
  for (const Command* command : Commands()) names.emplace_back(command->name);
  if (name[0] == '-' || std::find(names.begin(), names.end(), name) != names.end()) return true;
  const std::string nearest = Nearest(name, names);
  Complain(name, "there is no such command" +
                     (nearest.empty() ? " (see quillinv --help)" : "; did you mean " + nearest + "?"));
  return false;
}

void AddOption(CLI::App& app, const Option& option, Arguments& arguments) {
  const std::string description = option.description + ChoicesText(option.choices);
  if (const auto* flag = std::get_if<bool Arguments::*>(&option.field))
    app.add_flag(option.names, arguments.**flag, description);
  if (const auto* text = std::get_if<std::string Arguments::*>(&option.field))
    app.add_option(option.names, arguments.**text, description);
  if (const auto* number = std::get_if<std::optional<std::size_t> Arguments::*>(&option.field))
    app.add_option(option.names, arguments.**number, description);
  if (const auto* size = std::get_if<std::size_t Arguments::*>(&option.field))
    app.add_option(option.names, arguments.**size, description)->transform(CLI::AsSizeValue(false));
}

void AddWord(CLI::App& app, const Command& command, Arguments& arguments) {
  const Word& word = command.word;
  app.add_option(word.name, arguments.word, word.description + ChoicesText(word.choices))->required(word.required);
}

void AddFiles(CLI::App& app, const Command& command, Arguments& arguments) {
  if (command.files == kNoFiles) return;
  if (command.files == 1) {  // a list of one would take the word behind it, too
    const auto take = [&arguments](const std::string& file) { arguments.files = {file}; };
    app.add_option_function<std::string>("FILE", take, "An INV file, or - for standard input");
    return;
  }
  app.add_option("FILES", arguments.files,
                 "INV files, - for standard input, and folders for the *.inv files below them");
}

void AddCommand(CLI::App& app, const Command& command, Arguments& arguments) {
  if (command.word.place == Word::Place::BeforeFiles) AddWord(app, command, arguments);
  AddFiles(app, command, arguments);
  if (command.word.place == Word::Place::AfterFiles) AddWord(app, command, arguments);
  for (const Option& option : command.options) AddOption(app, option, arguments);
  if (command.files == kNoFiles) return;
  for (const Option& option : CommonOptions()) AddOption(app, option, arguments);
}

int RunCommand(const Command& command, Arguments& arguments) {
  // With a list of files, what stands in the place of the one file is the word behind it.
  if (!arguments.filesFrom.empty() && command.word.place == Word::Place::AfterFiles && arguments.word.empty() &&
      !arguments.files.empty()) {
    arguments.word = arguments.files.front();
    arguments.files.clear();
  }
  // A command that begins with a word and does not need it does not need files without it.
  const bool needsFiles = command.files != kNoFiles && (!arguments.word.empty() || command.word.required ||
                                                        command.word.place != Word::Place::BeforeFiles);
  if (needsFiles && arguments.files.empty() && arguments.filesFrom.empty()) {
    Complain(command.name, "no file is given (see quillinv " + std::string(command.name) + " --help)");
    return kTrouble;
  }
  return command.run(arguments);
}

// What the library has to say about the command line: help and version on standard output, errors on standard error.
int Answer(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = app.exit(error, out, err);
  WriteData(out.str());
  if (status != 0) WriteError(PrintableLines(err.str()));
  return status == 0 ? kSound : kTrouble;
}

int Run(int argc, char** argv) {
  CLI::App app("Reads INV files, the scan results of quillagent. It never changes one.", "quillinv");
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("quillinv ") + kBuildVersion);
  app.footer("\"quillinv COMMAND --help\" shows a command's options and examples.");
  Arguments arguments;
  int status = kSound;
  for (const Command* command : Commands()) {
    CLI::App* sub = app.add_subcommand(command->name, command->description);
    sub->footer(command->footer);
    AddCommand(*sub, *command, arguments);
    sub->callback([&arguments, &status, command] { status = RunCommand(*command, arguments); });
  }
  if (argc > 1 && !KnowsCommand(argv[1])) return kTrouble;
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {  // how this library says that the command line is wrong, or asks for help
    status = Answer(app, error);
  }
  if (AllWritten()) return status;
  Complain("standard output", "could not be written");
  return kTrouble;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {  // memory that ran out
    std::fprintf(stderr, "quillinv: %s\n", error.what());
    return kTrouble;
  }
}
