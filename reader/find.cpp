// quillinv find: goes through the trees of a fleet for a text in what they say, not in the names of attributes, which
// are the same in all of them.
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reader/commands.h"
#include "reader/identity.h"
#include "reader/json_writer.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

struct Search {
  std::string text;
  bool anyCase;  // of ASCII letters; `text` is in lower case then
  bool json;
  const Document& document;
  MacKey mac;
  std::string out;
};

char LowerLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string LowerLetters(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), LowerLetter);
  return lower;
}

bool Holds(const Search& search, std::string_view text) {
  if (!search.anyCase) return text.find(search.text) != std::string_view::npos;
  return LowerLetters(text).find(search.text) != std::string::npos;
}

void Report(Search& search, const std::string& path, const std::string& value) {
  if (!search.json) {
    const std::string& mac = search.mac.text.empty() ? search.document.path : search.mac.text;
    search.out += Printable(mac) + ": " + Printable(path) + (value.empty() ? "" : ": " + Printable(value)) + "\n";
    return;
  }
  JsonWriter json;
  JsonOpen(json, '{');
  JsonField(json, "mac_key", search.mac.text);
  JsonField(json, "file", search.document.path);
  JsonField(json, "path", path);
  JsonField(json, "value", value);
  JsonClose(json, '}');
  search.out += json.text + "\n";
}

void SearchProperties(Search& search, const std::vector<Property>& properties, const std::string& path) {
  for (const Property& property : properties)
    if (Holds(search, property.text)) Report(search, path + "~" + property.name, property.text);
}

void SearchTag(Search& search, const Tag& tag, const std::string& path) {
  if (Holds(search, tag.name) || Holds(search, TextOf(&tag))) Report(search, path, TextOf(&tag));
  SearchProperties(search, tag.properties, path);
  for (const auto& attribute : tag.attributes) {
    const std::string place = path + "/" + attribute->name;
    if (Holds(search, TextOf(attribute.get()))) Report(search, place, TextOf(attribute.get()));
    SearchProperties(search, attribute->properties, place);
  }
  for (const auto& child : tag.children) SearchTag(search, *child, path + "/" + child->name);
}

int RunFind(const Arguments& arguments) {
  bool isFound = false;
  const int status = ForEachFile(arguments, [&](const Document& document, std::string& out, std::string&) {
    const std::string text = arguments.anyCase ? LowerLetters(arguments.word) : arguments.word;
    Search search{text, arguments.anyCase, arguments.json, document, MacKeyOf(document), ""};
    for (const Section& section : document.sections)
      if (const Tag* root = RootTag(section)) SearchTag(search, *root, root->name);
    isFound = isFound || !search.out.empty();
    out = std::move(search.out);
    return true;
  });
  return status == kSound && !isFound ? kDifferent : status;
}

}  // namespace

const Command kFindCommand = {
    "find",
    RunFind,
    0,
    "Show where a text stands: Mac, path and value, one line each.",
    "The Mac is its serial number, else its UUID, MAC address or host name, else the file.\n"
    "Exit status: 0 found, 1 not found, 2 trouble.\n\n"
    "Examples:\n  quillinv find W80391QXDB7 *.inv\n  quillinv find -i --latest photoshop scans/",
    {{"-i,--ignore-case", &Arguments::anyCase, "Take the letters A to Z and a to z for the same"},
     {"--json", &Arguments::json, "One line of JSON for each place: mac_key, file, path, value"}},
    {Word::Place::BeforeFiles, "TEXT", "What to look for", true}};
