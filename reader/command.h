// What the command line of quillinv is made of: a row for each command with the word and the options that it takes, and
// the record of what was given. The parser, the help and whatever else lists the commands read the same rows.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "reader/inflate.h"

// What a command returns, and the program's exit status.
constexpr int kSound = 0;
constexpr int kDifferent = 1;  // diff: the files differ; check: there are faults
constexpr int kTrouble = 2;

// One record for all commands; each reads the fields that its options fill.
struct Arguments {
  std::vector<std::string> files;
  std::string word;  // the command's own, as its row says; empty when it was not given
  std::size_t limit = kDefaultLimit;
  std::string filesFrom;
  bool latest = false;
  bool noHeader = false;
  bool all = false;
  bool anyCase = false;
  bool fleet = false;
  bool json = false;
  bool lines = false;
  bool raw = false;
  bool safeCsv = false;
  std::string columns;
  std::string output;
  std::string with;
  std::optional<std::size_t> section;
};

// The field that an option fills; its type says what the option takes: nothing, a text, a whole number or a size such
// as "64MB" in bytes.
using OptionField = std::variant<bool Arguments::*, std::string Arguments::*, std::optional<std::size_t> Arguments::*,
                                 std::size_t Arguments::*>;

// The texts that an option or a word may be, one element each; null when they are not known beforehand.
using Choices = std::vector<std::string> (*)();

struct Option {
  const char* names;  // "-o,--output"
  OptionField field;
  const char* description;
  Choices choices = nullptr;
};

// A word of the command itself, beside the files: what to find, what to show.
struct Word {
  enum class Place { None, BeforeFiles, AfterFiles };
  Place place = Place::None;
  const char* name = "";
  const char* description = "";
  bool required = false;
  Choices choices = nullptr;
};

constexpr std::size_t kNoFiles = static_cast<std::size_t>(-1);

struct Command {
  const char* name;
  int (*run)(const Arguments& arguments);
  std::size_t files;  // how many names of files it takes; 0 for any number, kNoFiles for none
  const char* description;
  const char* footer;  // examples, and what else its help says
  std::vector<Option> options;
  Word word = {};
};

// All commands in the order of the help.
const std::vector<const Command*>& Commands();
// The options that every command takes.
const std::vector<Option>& CommonOptions();
