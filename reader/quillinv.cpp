// quillinv: reads INV files for people and programs. This file turns the command line into calls of the commands, goes
// through the files one at a time, and answers with the exit status.
#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "reader/commands.h"
#include "reader/csv.h"
#include "reader/text.h"

namespace {

constexpr int kSound = 0;
constexpr int kDifferent = 1;  // diff: the files differ; check: there are faults
constexpr int kTrouble = 2;

struct Arguments {
  std::vector<std::string> files;
  std::string columns;
  std::string output;
  ShowOptions show;
  bool lines = false;
  bool all = false;
  int section = -1;  // the default one
  std::size_t limit = kDefaultLimit;
};

void Complain(const std::string& file, const std::string& words) {
  std::fprintf(stderr, "quillinv: %s: %s\n", Printable(file).c_str(), words.c_str());
}

void Write(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

bool WantsProgress(std::size_t total) {
  winsize size = {};
  if (!isatty(STDERR_FILENO) || isatty(STDOUT_FILENO)) return false;
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0) size.ws_row = 24;
  return total > size.ws_row;
}

// `step` on each file, counted on standard error when they are more than a terminal has lines and standard output goes
// elsewhere.
void ForEachPath(const std::vector<std::string>& files, const std::function<void(const std::string&)>& step) {
  const bool progress = WantsProgress(files.size());
  std::size_t done = 0;
  for (const std::string& path : files) {
    step(path);
    if (progress) std::fprintf(stderr, "\r%zu of %zu files", ++done, files.size());
  }
  if (progress) std::fputs("\r\x1B[K", stderr);
}

// Reads one file; false, and a message, when it cannot be read at all.
bool Load(const std::string& path, std::size_t limit, Document& document) {
  std::string bytes;
  const std::string trouble = ReadFile(path, bytes);
  if (!trouble.empty()) {
    Complain(path, trouble);
    return false;
  }
  document = ReadDocument(path, bytes, limit);
  return true;
}

// The same with a message about faults. False when there are any; `document` then holds what could be read.
bool LoadSound(const std::string& path, std::size_t limit, Document& document) {
  if (!Load(path, limit, document)) return false;
  if (document.faults.empty()) return true;
  const std::size_t more = document.faults.size() - 1;
  Complain(path, FaultText(document.faults.front()) +
                     (more ? " (and " + std::to_string(more) + " more: see quillinv check)" : ""));
  return false;
}

// What a command writes about a file; words in `trouble` when it could not do its work.
using Render = std::function<std::string(const Document& document, std::string& trouble)>;

// Writes what `render` gives for each file that has an index; one file at a time is in memory.
int ForEachFile(const Arguments& arguments, const Render& render) {
  int status = kSound;
  ForEachPath(arguments.files, [&](const std::string& path) {
    Document document;
    std::string trouble;
    if (!LoadSound(path, arguments.limit, document)) status = kTrouble;
    if (document.sections.empty() && !document.container.whole) return;
    Write(render(document, trouble));
    if (trouble.empty()) return;
    Complain(path, trouble);
    status = kTrouble;
  });
  return status;
}

int List(const Arguments& arguments) {
  return ForEachFile(arguments, [](const Document& document, std::string&) { return ListText(document); });
}

int Show(const Arguments& arguments) {
  ShowOptions options = arguments.show;
  options.colour = isatty(STDOUT_FILENO) && !std::getenv("NO_COLOR");
  return ForEachFile(arguments, [&options](const Document& document, std::string& trouble) {
    std::string text = ShowText(document, options);
    if (text.empty() && !options.path.empty()) trouble = "holds nothing at " + Printable(options.path);
    return text;
  });
}

int Json(const Arguments& arguments) {
  return ForEachFile(arguments, [&arguments](const Document& document, std::string&) {
    return DocumentJson(document, arguments.lines);
  });
}

int Csv(const Arguments& arguments) {
  std::string unknown;
  const std::string& names = arguments.columns;
  const auto columns = names.empty() ? DefaultColumns() : ParseColumns(names, unknown);
  if (!unknown.empty() || columns.empty()) {
    Complain(unknown, "there is no such column (see quillinv csv --help)");
    return kTrouble;
  }
  Write(CsvHeader(columns));
  return ForEachFile(arguments,
                     [&columns](const Document& document, std::string&) { return CsvRow(document, columns); });
}

int Diff(const Arguments& arguments) {
  Document before, after;
  const bool sound = LoadSound(arguments.files[0], arguments.limit, before);
  if (!LoadSound(arguments.files[1], arguments.limit, after) || !sound) return kTrouble;
  const std::string text = DiffText(before, after, arguments.all);
  if (!text.empty()) Write("--- " + Printable(before.path) + "\n+++ " + Printable(after.path) + "\n" + text);
  return text.empty() ? kSound : kDifferent;
}

int Extract(const Arguments& arguments) {
  return ForEachFile(arguments, [&arguments](const Document& document, std::string& trouble) {
    const std::size_t section =
        arguments.section < 0 ? DefaultSection(document) : static_cast<std::size_t>(arguments.section);
    const auto text = ExtractText(document, section, trouble);
    if (text && !WriteExtract(*text, arguments.output, trouble)) trouble = arguments.output + ": " + trouble;
    return "";
  });
}

int Check(const Arguments& arguments) {
  int status = kSound;
  ForEachPath(arguments.files, [&](const std::string& path) {
    Document document;
    if (!Load(path, arguments.limit, document)) {
      status = kTrouble;
      return;
    }
    const Faults faults = CheckDocument(document);
    for (const Fault& fault : faults) Write(Printable(path) + ": " + FaultText(fault) + "\n");
    if (faults.empty()) Write(Printable(path) + ": sound\n");
    if (!faults.empty() && status == kSound) status = kDifferent;
  });
  return status;
}

struct Command {
  const char* name;
  int (*run)(const Arguments&);
  int files;  // how many it takes; 0 for one or more
  const char* description;
  const char* footer;
};

constexpr Command kCommands[] = {
    {"list", List, 0, "Show the index: each section's type, place, length and timestamp, and what its body holds.",
     "Example:\n  quillinv list *.inv"},
    {"show", Show, 1, "Show the trees in readable form, or the part of them that PATH names.",
     "A raw document of a debug scan is written unchanged.\n\nExamples:\n"
     "  quillinv show MYMAC_001EC2AABBCC.inv\n"
     "  quillinv show MYMAC_001EC2AABBCC.inv Snapshot/Storage\n"
     "  quillinv show MYMAC_001EC2AABBCC.inv AssetInfo/serial-number\n"
     "  quillinv show --raw MYMAC_001EC2AABBCC.inv Snapshot > snapshot.zxml"},
    {"json", Json, 0, "Write each file as a JSON document.",
     "Examples:\n  quillinv json MYMAC_001EC2AABBCC.inv | jq .computer\n  quillinv json --lines *.inv > fleet.jsonl"},
    {"csv", Csv, 0, "Write one row for each computer, with a header row (RFC 4180).",
     "Examples:\n  quillinv csv *.inv > fleet.csv\n"
     "  quillinv csv --columns hostname,serial-number,Snapshot/OS/os:1/kernel *.inv"},
    {"diff", Diff, 2, "Show what appeared (+), vanished (-) and changed (!) between two scans.",
     "Times, processes, uptime and free space are left out unless --all.\n"
     "Exit status: 0 no difference, 1 differences, 2 trouble.\n\n"
     "Example:\n  quillinv diff MYMAC_001EC2AABBCC.inv 'MYMAC_001EC2AABBCC(1).inv'"},
    {"extract", Extract, 1, "Write one section's body, inflated: the raw document of a debug scan, else section 0.",
     "Examples:\n  quillinv extract DEBUG_001EC2AABBCC.inv -o profiler.plist\n"
     "  quillinv extract --section 1 MYMAC_001EC2AABBCC.inv"},
    {"check", Check, 0, "Look for everything that can be wrong with a file; each fault with its offset.",
     "Exit status: 0 all sound, 1 faults, 2 a file cannot be read.\n\nExample:\n  quillinv check *.inv"},
};

void AddOptions(CLI::App& app, const Command& command, Arguments& arguments) {
  if (command.files == 1) {
    app.add_option_function<std::string>(
           "FILE", [&arguments](const std::string& file) { arguments.files = {file}; }, "An INV file")
        ->required();
  } else {
    CLI::Option* files = app.add_option("FILES", arguments.files, "INV files")->required();
    if (command.files) files->expected(command.files);
  }
  app.add_option("--limit", arguments.limit, "The most that a file's bodies may inflate to, such as 64MB (256MB)")
      ->transform(CLI::AsSizeValue(false));
  if (command.run == Show) {
    app.add_option("PATH", arguments.show.path, "What to show, such as Snapshot/Storage; names compare exactly");
    app.add_flag("--raw", arguments.show.raw, "The zXML text unchanged; PATH then names a root");
  }
  if (command.run == Json) app.add_flag("--lines", arguments.lines, "One line a file");
  if (command.run == Csv)
    app.add_option(
        "--columns", arguments.columns,
        "Names joined by commas; a name with a \"/\" is the path of any attribute.\nNames:\n" + ColumnNames());
  if (command.run == Diff) app.add_flag("--all", arguments.all, "Also what changes from scan to scan by itself");
  if (command.run == Extract) {
    app.add_option("--section", arguments.section, "Number of the section")->check(CLI::NonNegativeNumber);
    app.add_option("-o,--output", arguments.output, "File to write; standard output when missing");
  }
}

int Run(int argc, char** argv) {
  CLI::App app("Reads INV files, the scan results of quillagent. It never changes one.", "quillinv");
  app.require_subcommand(1);
  app.footer("\"quillinv COMMAND --help\" shows a command's options and examples.");
  Arguments arguments;
  int status = kSound;
  for (const Command& command : kCommands) {
    CLI::App* sub = app.add_subcommand(command.name, command.description);
    sub->footer(command.footer);
    AddOptions(*sub, command, arguments);
    sub->callback([&arguments, &status, &command] { status = command.run(arguments); });
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {  // how this library says that the command line is wrong, or asks for help
    return app.exit(error) == 0 ? kSound : kTrouble;
  }
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return status;
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
