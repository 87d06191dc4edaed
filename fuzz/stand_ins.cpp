// Takes the place of the command runner and of the platform's questions to the machine. Property lists are real.
#include "fuzz/stand_ins.h"

#include <array>

#include "main/collect/command_runner.h"
#include "platform/platform.h"
#include "platform/plist_limits.h"
#include "platform/portable/plist_binary.h"
#include "platform/portable/plist_xml.h"

namespace {

constexpr std::string_view kSources = "io ls ds en ps di bu na";  // of tools, a bundle, the computer: how they begin
std::array<std::string_view, 8> answers;

std::string AnswerOf(std::string_view name) { return std::string(answers.at(kSources.find(name.substr(0, 2)) / 3)); }

PropertyList ParseDocument(std::string_view document) {
  return IsBinaryPropertyList(document) ? ReadBinaryList(document, kMaxBinaryValues) : ReadXmlList(document);
}

}  // namespace

void SetAnswers(std::string_view parts) {
  for (std::string_view& answer : answers) {
    answer = parts.substr(0, parts.find('\x1E'));
    parts.remove_prefix(std::min(parts.size(), answer.size() + 1));
  }
}

const char kPlatformUuidCommand[] = "ioreg";

std::string RunCommand(const std::string& command, std::size_t) {
  const std::string answer = AnswerOf(command);
  return answer.empty() && command[0] == 'l' ? "\n" : answer;  // on a Mac, users are asked for until there are some
}

PropertyList ParsePropertyList(std::string_view document) {
  return ParseDocument(document);  // whatever its root: nothing may rely on an array
}

std::string FormatLocalTime(double seconds, DateForm) { return seconds < 0 ? "" : "20150302010203.000000 +0530"; }

double CurrentTime() { return 0.0; }

std::string ComputerName() { return AnswerOf("name"); }

std::optional<ProcessTable> ReadProcessTable() {
  return ProcessTable{{{0, 0, "kernel_task"}, {7, 1, AnswerOf("name")}}};
}

void ForEachBundle(const std::string& folder, const std::function<void(const Bundle&)>& take) {
  take({AnswerOf("name"), folder, ParseDocument(AnswerOf("bundle"))});
  take({"B.plugin", folder, PropertyList()});
}
