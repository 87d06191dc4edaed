// quillinv completion: the rows of the commands as what a shell completes command lines with. Each shell has a fixed
// frame and one entry for each command; for bash and zsh it names the options, the words to choose from and whether
// files follow, for fish each of these is a line.
#include "reader/commands.h"
#include "reader/run.h"

namespace {

enum class Value { None, Free, File, List };  // List: some of the choices, joined by commas

Value ValueOf(const Option& option) {
  if (std::holds_alternative<bool Arguments::*>(option.field)) return Value::None;
  if (option.choices) return Value::List;
  return std::holds_alternative<std::string Arguments::*>(option.field) ? Value::File : Value::Free;
}

std::vector<Option> OptionsOf(const Command& command) {
  std::vector<Option> options = command.options;
  if (command.files != kNoFiles) options.insert(options.end(), CommonOptions().begin(), CommonOptions().end());
  options.push_back(
      {"-h,--help", &Arguments::all, "Show what the command does, with examples"});  // the field is unused
  return options;
}

// "-o,--output" with `between` for its commas.
std::string NamesOf(const Option& option, const char* between) {
  std::string names;
  for (const char* c = option.names; *c; ++c) names += *c == ',' ? between : std::string(1, *c);
  return names;
}

std::string ChoicesOf(Choices choices) {
  std::string text;
  if (choices == nullptr) return text;
  for (const std::string& choice : choices()) text += (text.empty() ? "" : " ") + choice;
  return text;
}

// Inside single quotes of the shell, with a backslash before each of `special`.
std::string Quoted(const std::string& text, const std::string& special, const char* apostrophe) {
  std::string quoted;
  for (const char c : text) {
    if (special.find(c) != std::string::npos) quoted += '\\';
    quoted += c == '\'' ? apostrophe : std::string(1, c);
  }
  return quoted;
}

std::string ZshText(const std::string& text) { return Quoted(text, "\\[]:", "'\\''"); }
std::string FishText(const std::string& text) { return "'" + Quoted(text, "\\", "\\'") + "'"; }

std::string BashEntry(const Command& command) {
  std::string options;
  std::string values;
  for (const Option& option : OptionsOf(command)) {
    const Value value = ValueOf(option);
    options += (options.empty() ? "" : " ") + NamesOf(option, " ");
    if (value == Value::None) continue;
    values += "        " + NamesOf(option, " | ") + ") ";
    values += value == Value::List   ? "kind=list words=\"" + ChoicesOf(option.choices) + "\""
              : value == Value::File ? "kind=file"
                                     : "kind=none";
    values += " ;;\n";
  }
  std::string entry = "    " + std::string(command.name) + ")\n      options=\"" + options + "\" words=\"" +
                      ChoicesOf(command.word.choices) + "\"\n";
  if (command.files == kNoFiles) entry += "      kind=none\n";
  return entry + (values.empty() ? "" : "      case $before in\n" + values + "      esac\n") + "      ;;\n";
}

std::string BashScript() {
  std::string names;
  std::string entries;
  for (const Command* command : Commands()) {
    names += std::string(command->name) + " ";
    entries += BashEntry(*command);
  }
  return "# Completes the command lines of quillinv in bash.\n"
         "_quillinv() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} options= words= kind=inv given\n"
         "  COMPREPLY=()\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    COMPREPLY=($(compgen -W \"" +
         names +
         "--help --version\" -- \"$word\"))\n"
         "    return\n"
         "  fi\n"
         "  case ${COMP_WORDS[1]} in\n" +
         entries +
         "  esac\n"
         "  if [ \"$kind\" = list ]; then\n"
         "    local head=\n"
         "    case $word in *,*) head=${word%,*}, ;; esac\n"
         "    COMPREPLY=($(compgen -P \"$head\" -W \"$words\" -- \"${word##*,}\"))\n"
         "    return\n"
         "  fi\n"
         "  for given in \"${COMP_WORDS[@]:2:COMP_CWORD-2}\"; do\n"
         "    case \" $words \" in *\" $given \"*) words= ;; esac\n"
         "  done\n"
         "  case $word in -*) [ \"$kind\" = file ] || words=$options ;; esac\n"
         "  local IFS=$'\\n'\n"
         "  case $kind:$words in\n"
         "    file:*) COMPREPLY=($(compgen -f -- \"$word\")) ;;\n"
         "    *:?*) COMPREPLY=($(compgen -W \"${words// /$IFS}\" -- \"$word\")) ;;\n"
         "    inv:*) COMPREPLY=($(compgen -f -X '!*.inv' -- \"$word\") $(compgen -d -- \"$word\")) ;;\n"
         "  esac\n"
         "}\n"
         "complete -o filenames -F _quillinv quillinv\n";
}

std::string ZshValue(const Option& option) {
  switch (ValueOf(option)) {
    case Value::None:
      return "";
    case Value::Free:
      return ":value: ";
    case Value::File:
      return ":file:_files";
    case Value::List:
      return ":list:_values -s , list " + ChoicesOf(option.choices);
  }
  return "";
}

std::string ZshEntry(const Command& command) {
  std::string entry = "  " + std::string(command.name) + ")\n    _arguments";
  for (const Option& option : OptionsOf(command)) {
    const std::string text = "'[" + ZshText(option.description) + "]" + ZshValue(option) + "'";
    const bool single = NamesOf(option, ",").find(',') == std::string::npos;
    entry += " \\\n      " +
             (single ? option.names + text : "'(" + NamesOf(option, " ") + ")'{" + NamesOf(option, ",") + "}" + text);
  }
  if (command.word.place == Word::Place::BeforeFiles)
    entry += " \\\n      '1:" + std::string(command.word.name) + ":(" + ChoicesOf(command.word.choices) + ")'";
  if (command.files != kNoFiles) entry += " \\\n      '*:file:_files -g \"*.inv\"'";
  return entry + "\n    ;;\n";
}

std::string ZshScript() {
  std::string names;
  std::string entries;
  for (const Command* command : Commands()) {
    names += "  '" + std::string(command->name) + ":" + ZshText(command->description) + "'\n";
    entries += ZshEntry(*command);
  }
  return "#compdef quillinv\n"
         "# Completes the command lines of quillinv in zsh, as a file _quillinv in a folder of fpath.\n"
         "local -a commands=(\n" +
         names +
         ")\n"
         "if (( CURRENT == 2 )); then\n"
         "  _describe command commands\n"
         "  return\n"
         "fi\n"
         "local command=$words[2]\n"
         "shift words\n"
         "(( CURRENT-- ))\n"
         "case $command in\n" +
         entries + "esac\n";
}

std::string FishOption(const Option& option) {
  std::string line;
  const std::string names = NamesOf(option, " ");
  for (std::size_t at = 0; at < names.size();
       at = names.find(' ', at) == std::string::npos ? names.size() : names.find(' ', at) + 1) {
    const std::string name = names.substr(at, names.find(' ', at) - at);
    line += name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  const Value value = ValueOf(option);
  if (value == Value::File) line += " -r -F";
  if (value == Value::Free) line += " -x";
  if (value == Value::List) line += " -x -a " + FishText(ChoicesOf(option.choices));
  return line + " -d " + FishText(option.description) + "\n";
}

std::string FishScript() {
  std::string text =
      "# Completes the command lines of quillinv in fish.\n"
      "complete -c quillinv -f\n"
      "complete -c quillinv -n __fish_use_subcommand -l version -d 'Show the version'\n";
  for (const Command* command : Commands()) {
    const std::string name = command->name;
    const std::string line = "complete -c quillinv -n '__fish_seen_subcommand_from " + name + "'";
    text += "complete -c quillinv -n __fish_use_subcommand -a " + name + " -d " + FishText(command->description) + "\n";
    for (const Option& option : OptionsOf(*command)) text += line + FishOption(option);
    if (command->word.choices) text += line + " -a " + FishText(ChoicesOf(command->word.choices)) + "\n";
    if (command->files != kNoFiles) text += line + " -a '(__fish_complete_suffix .inv)'\n";
  }
  return text;
}

std::vector<std::string> Shells() { return {"bash", "zsh", "fish"}; }

int RunCompletion(const Arguments& arguments) {
  const std::string& shell = arguments.word;
  const std::string text = shell == "bash"   ? BashScript()
                           : shell == "zsh"  ? ZshScript()
                           : shell == "fish" ? FishScript()
                                             : "";
  if (text.empty()) {
    Complain(shell, "there is no completion for this shell (there is for bash, zsh and fish)");
    return kTrouble;
  }
  Write(text);
  return kSound;
}

}  // namespace

const Command kCompletionCommand = {
    "completion",
    RunCompletion,
    kNoFiles,
    "Write what bash, zsh or fish completes the command lines of quillinv with.",
    "A package brings it already. It reads no file.\n\nExample:\n  source <(quillinv completion bash)",
    {},
    {Word::Place::BeforeFiles, "SHELL", "Which shell", true, Shells}};
