// Compares the trees of two scans pair by pair.
#include "reader/diff.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "reader/diff_pairs.h"
#include "reader/json_writer.h"
#include "reader/meaning.h"
#include "reader/show.h"
#include "reader/text.h"

namespace {

using Kind = Difference::Kind;
using Attributes = std::vector<const Attribute*>;
using Tags = std::vector<const Tag*>;

constexpr std::string_view kVolatileTags[] = {"Processes"};
constexpr std::string_view kVolatileAttributes[] = {"timestamp",     "scan-time",    "first-scan", "last-scan",
                                                    "snapshot-list", "scan-attempt", "uptime",     "free",
                                                    "free%",         "used",         "used%"};
constexpr std::string_view kVolatileProperties[] = {"free", "free%", "used", "used%"};
// What changes with the version of an application or a library.
constexpr std::string_view kVersioned[] = {"inst-date", "info", "descr"};

struct Comparison {
  bool all;
  std::vector<Difference> differences;
};

template <std::size_t size>
bool IsListed(const std::string_view (&list)[size], std::string_view name) {
  return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

Tags TagsOf(const Comparison& comparison, const Tag& parent) {
  Tags tags;
  for (const auto& child : parent.children)
    if (comparison.all || !IsListed(kVolatileTags, child->name)) tags.push_back(child.get());
  return tags;
}

// Without those that only announce a child, which is compared itself.
Attributes AttributesOf(const Comparison& comparison, const Tag& tag) {
  Attributes attributes;
  for (const auto& attribute : tag.attributes)
    if (FindProperty(attribute->properties, "complex") == nullptr &&
        (comparison.all || !IsListed(kVolatileAttributes, attribute->name)))
      attributes.push_back(attribute.get());
  return attributes;
}

// The attribute without the properties that are not compared.
Attribute Compared(const Comparison& comparison, const Attribute& attribute) {
  Attribute result = attribute;
  const auto leaveOut = [&comparison](const Property& property) {
    return !comparison.all && IsListed(kVolatileProperties, property.name);
  };
  auto& list = result.properties;
  list.erase(std::remove_if(list.begin(), list.end(), leaveOut), list.end());
  return result;
}

bool SameProperties(const std::vector<Property>& before, const std::vector<Property>& after) {
  return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                    [](const auto& old, const auto& now) { return old.name == now.name && old.text == now.text; });
}

void CompareAttribute(Comparison& comparison, const Pair<Attribute>& pair, const Tag& tag, const std::string& place) {
  const std::string path = place + "/" + (pair.before != nullptr ? pair.before : pair.after)->name;
  const Attribute old = pair.before != nullptr ? Compared(comparison, *pair.before) : Attribute();
  const Attribute now = pair.after != nullptr ? Compared(comparison, *pair.after) : Attribute();
  if (pair.before == nullptr)
    comparison.differences.push_back({Kind::Appeared, path, "", ResolvedValue(now, tag.name)});
  else if (pair.after == nullptr)
    comparison.differences.push_back({Kind::Vanished, path, ResolvedValue(old, tag.name), ""});
  else if (TextOf(&old) != TextOf(&now) || !SameProperties(old.properties, now.properties))
    comparison.differences.push_back({Kind::Changed, path, ResolvedValue(old, tag.name), ResolvedValue(now, tag.name)});
}

// True for an application or library that only is another version than before.
bool IsUpdate(const Tag& before, const Tag& after) {
  const std::string_view base = BaseName(before.name);
  return (base == "Soft" || base == "library") &&
         TextOf(FindAttribute(before, "version")) != TextOf(FindAttribute(after, "version"));
}

void CompareAttributes(Comparison& comparison, const Tag& before, const Tag& after, const std::string& place) {
  const bool update = IsUpdate(before, after) && !comparison.all;
  for (const auto& pair : PairAttributes(AttributesOf(comparison, before), AttributesOf(comparison, after))) {
    const Attribute& known = *(pair.before != nullptr ? pair.before : pair.after);
    if (!update || !IsListed(kVersioned, known.name)) CompareAttribute(comparison, pair, before, place);
  }
}

void CompareTags(Comparison& comparison, const Tags& before, const Tags& after, const std::string& path) {
  for (const auto& [old, now] : PairTags(before, after)) {
    const std::string place = path + (old != nullptr ? old : now)->name;
    if (old == nullptr) {
      comparison.differences.push_back({Kind::Appeared, place, "", DescribeTag(*now)});
      continue;
    }
    if (now == nullptr) {
      comparison.differences.push_back({Kind::Vanished, place, DescribeTag(*old), ""});
      continue;
    }
    if (TextOf(old) != TextOf(now) || !SameProperties(old->properties, now->properties))
      comparison.differences.push_back({Kind::Changed, place, TagValue(*old), TagValue(*now)});
    CompareAttributes(comparison, *old, *now, place);
    CompareTags(comparison, TagsOf(comparison, *old), TagsOf(comparison, *now), place + "/");
  }
}

// What a document holds: its roots, and its raw data back to back.
std::pair<Tags, std::string> ContentsOf(const Document& document) {
  std::pair<Tags, std::string> contents;
  for (const Section& section : document.sections) {
    if (const Tag* root = RootTag(section)) contents.first.push_back(root);
    if (IsRaw(section)) contents.second += section.body.text;
  }
  return contents;
}

std::string Line(const Difference& difference) {
  const std::string path = Printable(difference.path);
  const auto with = [&path](const std::string& value) { return path + (value.empty() ? "" : ": " + value) + "\n"; };
  switch (difference.kind) {
    case Kind::Appeared:
      return "+ " + with(difference.after);
    case Kind::Vanished:
      return "- " + with(difference.before);
    case Kind::Changed:
      break;
  }
  return "! " + path + ": " + difference.before + " -> " + difference.after + "\n";
}

void TextOrNull(JsonWriter& json, const char* name, const std::string& text, bool isThere) {
  JsonKey(json, name);
  if (isThere)
    JsonText(json, text);
  else
    JsonWord(json, "null");
}

const char* KindWord(Kind kind) {
  switch (kind) {
    case Kind::Appeared:
      return "appeared";
    case Kind::Vanished:
      return "vanished";
    case Kind::Changed:
      break;
  }
  return "changed";
}

}  // namespace

std::vector<Difference> FindDifferences(const Document& before, const Document& after, bool all) {
  const auto [oldRoots, oldRaw] = ContentsOf(before);
  const auto [newRoots, newRaw] = ContentsOf(after);
  Comparison comparison{all, {}};
  CompareTags(comparison, oldRoots, newRoots, "");
  if (oldRaw != newRaw)
    comparison.differences.push_back(
        {Kind::Changed, "raw data", Bytes(oldRaw.size()), Bytes(newRaw.size()) + ", compared as a whole"});
  return std::move(comparison.differences);
}

std::string DiffText(const std::vector<Difference>& differences) {
  std::string text;
  for (const Difference& difference : differences) text += Line(difference);
  return text;
}

std::string DiffJson(const std::vector<Difference>& differences, const DiffFiles& files) {
  std::string lines;
  for (const Difference& difference : differences) {
    JsonWriter json;
    JsonOpen(json, '{');
    TextOrNull(json, "mac_key", files.mac, !files.mac.empty());
    JsonField(json, "change", KindWord(difference.kind));
    TextOrNull(json, "path", difference.path, !difference.path.empty());
    TextOrNull(json, "before", difference.before, difference.kind != Kind::Appeared);
    TextOrNull(json, "after", difference.after, difference.kind != Kind::Vanished);
    TextOrNull(json, "file_before", files.before, !files.before.empty());
    TextOrNull(json, "file_after", files.after, !files.after.empty());
    JsonClose(json, '}');
    lines += json.text + "\n";
  }
  return lines;
}
