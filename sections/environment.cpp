// "Environment": the variables that `env` prints.
#include <cstddef>
#include <string>
#include <string_view>

#include "main/collect/command_runner.h"
#include "sections/inventory_tags.h"
#include "sections/sections.h"

namespace {

constexpr std::size_t kEnvChunk = 300;  // bytes read at a time

// The text before the next line feed, which is taken away with it; empty when no line feed is left.
std::string_view NextLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) return {};
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end + 1);
  return line;
}

void WriteVariable(TagTree& inventoryTree, std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return;
  const std::string name(UpToZero(line.substr(0, equals)));
  const std::string value(line.substr(equals + 1));
  Tag* environment = GetOrAddChild(RootOf(inventoryTree), "Environment");
  Tag* variable = AddComplexChild(*environment, "env-var:" + name);
  SetTagValue(*variable, MakeTextValue(name));
  if (name == "PATH")
    SetAttribute(*variable, "value", MakeTextValue(value), "split", ":");
  else
    SetText(*variable, "value", value);
  SetFlag(*variable, "system", true);
}

}  // namespace

void BuildEnvironmentSection(TagTree& inventoryTree) {
  const std::string output = RunCommand("env", kEnvChunk);
  std::string_view rest = output;
  // deliberate: an empty line ends the list, and a last line without a line feed is not read
  for (std::string_view line = NextLine(rest); !line.empty(); line = NextLine(rest)) WriteVariable(inventoryTree, line);
}
