// The command line as a record, the help text and the question before the scan.
#pragma once

#include <string>

#include "main/scan_settings.h"
#include "zxml/version.h"

constexpr const char* kAgentVersion = kBuildVersion;
constexpr const char* kClientVersion = kBuildVersionOfFour;

struct Options {
  ScanSettings settings;
  bool silent = false;
  bool debug = false;
  bool help = false;  // reading stopped at a request for help
  std::string currentIp;
  std::string login;
};

// Reads the arguments behind the program's name. Options act at once: a silent one sends standard input and standard
// error to /dev/null. Unknown arguments are ignored.
Options ReadOptions(int count, const char* const* arguments);

void PrintHelp();

enum class Answer { Yes, No, Other };

// Asks whether to scan; reads one word from standard input.
Answer AskToStart();
