// Prints a tree indented, with each tag's values in a column, units written out and what only announces a child left
// out.
#include "reader/show.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <vector>

#include "reader/commands.h"
#include "reader/meaning.h"
#include "reader/run.h"
#include "reader/text.h"
#include "reader/tree_path.h"

namespace {

constexpr std::size_t kWidestName = 32;  // names beyond this do not push the column of values further right

// A unit that a size may stand in, and how far rounding to its decimals takes the text from the bytes.
struct SizeUnit {
  const char* name;
  double bytes;
  double rounding;
};

constexpr SizeUnit kSizeUnits[] = {{"GB", 1073741824.0, 0.006}, {"MB", 1048576.0, 0.06}, {"bytes", 1.0, 0.5}};

// The unit in which `shown` says what `bytes` counts; empty when it is none of them. A file gives the unit only when it
// is not the usual one.
const char* SizeUnitOf(const std::string& shown, const std::string& bytes) {
  const double value = std::strtod(shown.c_str(), nullptr);
  const double base = std::strtod(bytes.c_str(), nullptr);
  for (const SizeUnit& unit : kSizeUnits)
    if (std::fabs(base / unit.bytes - value) < unit.rounding) return unit.name;
  return "";
}

using Names = std::vector<std::string_view>;

// The properties whose names are not in `told`.
std::string PropertiesText(const std::vector<Property>& properties, const Names& told) {
  std::string text;
  for (const Property& property : properties) {
    if (std::find(told.begin(), told.end(), property.name) != told.end()) continue;
    text += (text.empty() ? "" : ", ") + Printable(property.name);
    if (!property.text.empty()) text += " " + Printable(property.text);
  }
  return text.empty() ? "" : "  (" + text + ")";
}

std::string PropertyText(const Attribute& attribute, std::string_view name) {
  const Property* property = FindProperty(attribute.properties, name);
  return property ? property->text : "";
}

// " GB"; adds the properties that this tells to `told`.
std::string UnitText(const Attribute& attribute, std::string_view tagName, Names& told) {
  const std::string& text = TextOf(&attribute);
  if (text.empty()) return "";
  const std::string bytes = PropertyText(attribute, "base-value");
  std::string unit = Printable(PropertyText(attribute, "units"));
  if (unit.empty()) unit = UsualUnit(tagName, attribute.name);
  if (unit.empty() && !bytes.empty()) unit = SizeUnitOf(text, bytes);
  if (!unit.empty()) told.insert(told.end(), {"units", "base-value"});
  if (unit.empty() && !attribute.name.empty() && attribute.name.back() == '%') unit = "%";
  return unit.empty() ? "" : " " + unit;
}

// " (yes)" for a code that has a word.
std::string CodeText(const Attribute& attribute, std::string_view tagName) {
  if (PropertyText(attribute, "type") == "unknown") return "";
  const std::string_view word = CodeWord(tagName, attribute.name, TextOf(&attribute));
  return word.empty() ? "" : " (" + std::string(word) + ")";
}

// " (150.00 of 250.00 GB)" for an attribute that says where it stands on a scale; adds what this tells to `told`.
std::string ScaleText(const Attribute& attribute, Names& told) {
  const std::string pos = PropertyText(attribute, "pos");
  const std::string max = PropertyText(attribute, "max");
  if (pos.empty() || max.empty()) return "";
  told.insert(told.end(), {"pos", "max", "val-units"});
  const std::string unit = PropertyText(attribute, "val-units");
  return Printable(" (" + pos + " of " + max + (unit.empty() ? "" : " " + unit) + ")");
}

// A line with a name and, at `column`, its value.
std::string Line(const std::string& indent, const std::string& name, const std::string& value, std::size_t column,
                 const char* colour) {
  const std::string padded = value.empty() ? name : PadRight(name, column) + "  ";
  return indent + (*colour ? colour + padded + "\x1B[0m" : padded) + value + "\n";
}

// The attributes without those that only announce a child.
std::vector<const Attribute*> AttributesToShow(const Tag& tag) {
  std::set<std::string_view> children;
  for (const auto& child : tag.children) children.insert(child->name);
  std::vector<const Attribute*> attributes;
  for (const auto& attribute : tag.attributes)
    if (!FindProperty(attribute->properties, "complex") || !children.count(attribute->name))
      attributes.push_back(attribute.get());
  return attributes;
}

void ShowTag(const Tag& tag, const std::string& indent, bool colour, std::string& out) {
  out += Line(indent, Printable(tag.name), TagValue(tag), 0, colour ? "\x1B[1m" : "");
  std::size_t column = 0;
  const std::vector<const Attribute*> attributes = AttributesToShow(tag);
  for (const Attribute* attribute : attributes) column = std::max(column, Width(Printable(attribute->name)));
  column = std::min(column, kWidestName);
  for (const Attribute* attribute : attributes)
    out += Line(indent + "  ", Printable(attribute->name), ResolvedValue(*attribute, tag.name), column,
                colour ? "\x1B[36m" : "");
  for (const auto& child : tag.children) ShowTag(*child, indent + "  ", colour, out);
}

std::string ShowMatches(const Tag& container, const ShowOptions& options) {
  std::string out;
  for (const PathMatch& match : FindByPath(container, options.path)) {
    if (match.attribute)
      out += ResolvedValue(*match.attribute, match.tag->name) + "\n";
    else
      ShowTag(*match.tag, "", options.colour, out);
  }
  return out;
}

}  // namespace

std::string ResolvedValue(const Attribute& attribute, std::string_view tagName) {
  Names told = {"complex"};
  std::string value = Printable(TextOf(&attribute));
  const std::string code = CodeText(attribute, tagName);
  if (!code.empty()) told.emplace_back("type");
  value += code.empty() ? UnitText(attribute, tagName, told) : code;
  value += ScaleText(attribute, told);
  return value + PropertiesText(attribute.properties, told);
}

std::string TagValue(const Tag& tag) {
  return Printable(TextOf(&tag)) + PropertiesText(tag.properties, {"field-source"});
}

std::string ShowText(const Document& document, const ShowOptions& options) {
  const auto rawText = [&options](const std::string& text) { return options.terminal ? PrintableLines(text) : text; };
  std::string out;
  for (const Section& section : document.sections) {
    const Tag* root = RootTag(section);
    if (options.raw) {
      if (options.path.empty() || (root && root->name == options.path)) out += rawText(section.body.text);
      continue;
    }
    if (!options.path.empty()) {
      out += ShowMatches(section.tree.container, options);
      continue;
    }
    out += out.empty() ? "" : "\n";
    if (IsRaw(section)) out += rawText(section.body.text);
    for (const auto& child : section.tree.container.children) ShowTag(*child, "", options.colour, out);
  }
  return out;
}

namespace {

int RunShow(const Arguments& arguments) {
  const bool terminal = isatty(STDOUT_FILENO) != 0;
  const bool colour = terminal && std::getenv("NO_COLOR") == nullptr;
  const ShowOptions options = {arguments.raw, colour, arguments.word, terminal};
  const auto render = [&options](const Document& document, std::string&, std::string& trouble) {
    const std::string text = ShowText(document, options);
    Write(text);  // it has escape sequences of its own
    if (!text.empty() || options.path.empty()) return true;
    trouble = "holds nothing at " + Printable(options.path);
    return false;
  };
  return ForEachFile(arguments, render, options.path.empty() ? Parts::All : Parts::Trees);
}

}  // namespace

const Command kShowCommand = {
    "show",
    RunShow,
    1,
    "Show the trees in readable form, or the part of them that PATH names.",
    "A raw document of a debug scan is written unchanged.\n\nExamples:\n"
    "  quillinv show MYMAC_001EC2AABBCC.inv\n"
    "  quillinv show MYMAC_001EC2AABBCC.inv Snapshot/Storage\n"
    "  quillinv show MYMAC_001EC2AABBCC.inv AssetInfo/serial-number\n"
    "  quillinv show --raw MYMAC_001EC2AABBCC.inv Snapshot > snapshot.zxml",
    {{"--raw", &Arguments::raw, "The zXML text unchanged; PATH then names a root"}},
    {Word::Place::AfterFiles, "PATH", "What to show, such as Snapshot/Storage; names compare exactly"}};
