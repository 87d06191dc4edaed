// Reads the command line and talks to the user before a scan.
#include "main/options.h"

#include <cstdio>
#include <string_view>

namespace {

bool IsEither(std::string_view argument, std::string_view name) {
  return !argument.empty() && (argument[0] == '/' || argument[0] == '-') && argument.substr(1) == name;
}

bool StartsWithEither(std::string_view argument, std::string_view prefix) {
  return IsEither(argument.substr(0, prefix.size() + 1), prefix);
}

// What stands behind the first `mark`; the argument has one.
std::string_view Behind(std::string_view argument, char mark) { return argument.substr(argument.find(mark) + 1); }

void SilenceStandardStreams() {
  if (!std::freopen("/dev/null", "r", stdin)) std::fclose(stdin);
  if (!std::freopen("/dev/null", "w", stderr)) std::fclose(stderr);
}

void ReadOption(std::string_view argument, Options& options) {
  if (argument == "-?" || argument == "--help") {
    options.help = true;
  } else if (IsEither(argument, "silent")) {
    SilenceStandardStreams();
    options.silent = true;
  } else if (StartsWithEither(argument, "ip:")) {
    options.currentIp = Behind(argument, ':');
  } else if (IsEither(argument, "log")) {
    options.settings.log = true;
  } else if (IsEither(argument, "modern")) {
    options.settings.modern = true;
  } else if (StartsWithEither(argument, "login:")) {
    options.login = Behind(argument, ':');
  } else if (IsEither(argument, "debug")) {
    options.debug = true;
  }
}

}  // namespace

Options ReadOptions(int count, const char* const* arguments) {
  Options options;
  for (int i = 1; i < count && !options.help; ++i) ReadOption(arguments[i], options);
  return options;
}

void PrintHelp() {
  std::fputs(
      "Copyright (c) 2015 Quillon. Quillon's Mac OS X Agent\n"
      "Usage: quillagent [OPTION...]\n"
      "-ip:[ipaddr],\t\t/ip:[ipaddr]\t\tSet Current IP Address\n"
      "--help,\t\t\t-?\t\t\tShow this help message\n"
      "-debug,\t\t\t/debug\t\t\tSave offline scan result in raw format to send to support\n"
      "-silent,\t\t/silent\t\t\tStart offline scan without output to console\n"
      "\n"
      "\n"
      "Support: support@quillon.example\n"
      "Web site: https://www.quillon.example\n",
      stdout);
}

Answer AskToStart() {
  std::printf("Quillon scanner for MacOS X (version %s)\nDo you want to start the scan of local computer?(y/n)\n",
              kAgentVersion);
  std::fflush(stdout);
  char word[128] = "";  // room for the width below and a zero byte
  if (std::scanf("%127s", word) != 1) return Answer::Other;
  const std::string_view answer = word;
  if (answer == "y") return Answer::Yes;
  return answer == "n" ? Answer::No : Answer::Other;
}
