// Counts what is open in an XML property list without parsing it, as the parser that comes next would count.
#include "platform/plist_limits.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/plist_encoding.h"

namespace {

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

constexpr char kBlanks[] = " \t\r\n";

// What is open so far.
struct Depth {
  std::size_t containers = 0, lists = 0;  // dictionaries and arrays; property lists, which a parser enters as deep
  std::size_t most = 0;                   // of either
};

// Where the tag or declaration at the start of `text` ends. No value when that depends on whether quotes count.
std::optional<std::size_t> EndOfTag(std::string_view text) {
  const std::size_t end = text.find('>');
  char quote = 0;
  for (std::size_t at = 0; at < std::min(end, text.size()); ++at) {
    const char c = text[at];
    if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == quote) {
      quote = 0;
    }
  }
  if (end == std::string_view::npos) return text.size();
  return quote == 0 ? std::optional<std::size_t>(end + 1) : std::nullopt;
}

void CountTag(std::string_view tag, Depth& depth) {
  const bool closes = StartsWith(tag, "/");
  if (closes) tag.remove_prefix(1);
  const bool isEmpty = !closes && !tag.empty() && tag.back() == '/';
  std::string_view name = tag.substr(0, tag.find_first_of(kBlanks));
  if (isEmpty && name.size() == tag.size()) name.remove_suffix(1);
  const bool isList = name == "plist";
  if (!isList && name != "dict" && name != "array") return;
  std::size_t& open = isList ? depth.lists : depth.containers;
  if (!closes) depth.most = std::max(depth.most, ++open);
  if ((closes || isEmpty) && open > 0) --open;
}

// The length of what begins at the start of `text`, which is a "<". No value when parsers differ about it.
std::optional<std::size_t> MeasureMarkup(std::string_view text) {
  const auto endOf = [text](std::string_view end, std::size_t from) {
    const std::size_t found = text.find(end, from);
    return found == std::string_view::npos ? text.size() : found + end.size();
  };
  if (StartsWith(text, "<!--")) {
    for (const std::string_view unclear : {"<!-->", "<!--->", "<!---->"})
      if (StartsWith(text, unclear)) return std::nullopt;
    return endOf("-->", 4);
  }
  if (StartsWith(text, "<![CDATA[")) return endOf("]]>", 9);
  if (StartsWith(text, "<?")) return StartsWith(text, "<?>") ? std::nullopt : std::optional(endOf("?>", 2));
  const std::optional<std::size_t> end = EndOfTag(text);
  const bool hasSubset = end && StartsWith(text, "<!") && text.substr(0, *end).find('[') != std::string_view::npos;
  return hasSubset ? std::nullopt : end;
}

std::size_t DepthOfMarkup(std::string_view text) {
  Depth depth;
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
    const std::string_view rest = text.substr(at);
    const std::optional<std::size_t> length = MeasureMarkup(rest);
    if (!length) return SIZE_MAX;
    if (rest.size() > 1 && rest[1] != '!' && rest[1] != '?' && rest[*length - 1] == '>')
      CountTag(rest.substr(1, *length - 2), depth);
    at += *length;
  }
  return depth.most;
}

}  // namespace

bool IsBinaryPropertyList(std::string_view document) { return document.substr(0, 6) == "bplist"; }

std::size_t XmlDepth(std::string_view document) {
  std::string room;
  const std::optional<std::string_view> text = InUtf8(document, room);
  if (!text) return SIZE_MAX;
  const std::size_t start = std::min(text->find_first_not_of(kBlanks), text->size());
  if (StartsWith(text->substr(start), "<")) return DepthOfMarkup(*text);
  const auto opens = std::count_if(text->begin(), text->end(), [](char c) { return c == '(' || c == '{'; });
  return static_cast<std::size_t>(opens);
}

bool XmlNestingIsSafe(std::string_view document) { return XmlDepth(document) <= kMaxOpenContainers; }

std::size_t CountValues(const PropertyList& list) {
  std::size_t values = 1 + list.text.size() / kBytesPerValue;
  for (const std::string& key : list.keys) values += key.size() / kBytesPerValue;
  for (const PropertyList& item : list.items) values += CountValues(item);
  return values;
}
