// Pairs the tags of two trees, first by name and value, then by value without the number in the name, then by name, and
// compares each pair.
#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reader/commands.h"
#include "reader/files.h"
#include "reader/run.h"
#include "reader/show.h"
#include "reader/text.h"

namespace {

constexpr std::string_view kVolatileTags[] = {"Processes"};
constexpr std::string_view kVolatileAttributes[] = {"timestamp",     "scan-time",    "first-scan", "last-scan",
                                                    "snapshot-list", "scan-attempt", "uptime",     "free",
                                                    "free%",         "used",         "used%"};
constexpr std::string_view kVolatileProperties[] = {"free", "free%", "used", "used%"};

struct Comparison {
  bool all;
  std::string out;
};

template <typename Item>
struct Pair {
  const Item* before;  // null: appeared
  const Item* after;   // null: vanished
};

// No key: the item takes no part in this round.
template <typename Item>
using Key = std::function<std::optional<std::string>(const Item&)>;

// Pairs the items of two lists in rounds, one for each key; in a round, items of equal keys meet in their order. The
// pairs come in the order of `before`, then what only `after` has.
template <typename Item>
std::vector<Pair<Item>> PairUp(const std::vector<const Item*>& before, const std::vector<const Item*>& after,
                               const std::vector<Key<Item>>& keys) {
  std::vector<Pair<Item>> pairs;
  for (const Item* item : before) pairs.push_back({item, nullptr});
  std::set<const Item*> paired;
  for (const Key<Item>& key : keys) {
    std::multimap<std::string, const Item*> waiting;  // equal keys keep the order in which they come
    for (const Item* item : after)
      if (const auto text = paired.count(item) ? std::nullopt : key(*item)) waiting.emplace(*text, item);
    for (Pair<Item>& pair : pairs) {
      const auto text = pair.after ? std::nullopt : key(*pair.before);
      const auto found = text ? waiting.lower_bound(*text) : waiting.end();
      if (found == waiting.end() || found->first != *text) continue;
      pair.after = found->second;
      paired.insert(found->second);
      waiting.erase(found);
    }
  }
  for (const Item* item : after)
    if (!paired.count(item)) pairs.push_back({nullptr, item});
  return pairs;
}

// "partition" for "partition:2", no value for a name without a number.
std::optional<std::string> BaseName(const std::string& name) {
  const std::size_t end = name.find_last_not_of("0123456789");
  if (end == std::string::npos || end + 1 == name.size() || name[end] != ':') return std::nullopt;
  return name.substr(0, end);
}

std::vector<Key<Tag>> TagKeys() {
  const std::string separator(1, '\0');
  return {[separator](const Tag& tag) { return tag.name + separator + TextOf(&tag); },
          [separator](const Tag& tag) {
            const auto base = TextOf(&tag).empty() ? std::nullopt : BaseName(tag.name);
            return base ? std::optional<std::string>(*base + separator + TextOf(&tag)) : std::nullopt;
          },
          [](const Tag& tag) { return tag.name; }};
}

template <std::size_t size>
bool IsListed(const std::string_view (&list)[size], std::string_view name) {
  return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

std::vector<const Tag*> TagsOf(const Comparison& comparison, const Tag& parent) {
  std::vector<const Tag*> tags;
  for (const auto& child : parent.children)
    if (comparison.all || !IsListed(kVolatileTags, child->name)) tags.push_back(child.get());
  return tags;
}

// Without those that only announce a child, which is compared itself.
std::vector<const Attribute*> AttributesOf(const Comparison& comparison, const Tag& tag) {
  std::vector<const Attribute*> attributes;
  for (const auto& attribute : tag.attributes)
    if (!FindProperty(attribute->properties, "complex") &&
        (comparison.all || !IsListed(kVolatileAttributes, attribute->name)))
      attributes.push_back(attribute.get());
  return attributes;
}

void Report(Comparison& comparison, const char* mark, const std::string& path, const std::string& text) {
  comparison.out += mark + Printable(path) + (text.empty() ? "" : ": " + text) + "\n";
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

void CompareAttributes(Comparison& comparison, const Tag& before, const Tag& after, const std::string& path) {
  const std::vector<Key<Attribute>> keys = {[](const Attribute& attribute) { return attribute.name; }};
  const auto pairs = PairUp(AttributesOf(comparison, before), AttributesOf(comparison, after), keys);
  for (const auto& pair : pairs) {
    const Attribute old = pair.before ? Compared(comparison, *pair.before) : Attribute();
    const Attribute now = pair.after ? Compared(comparison, *pair.after) : Attribute();
    if (!pair.before) {
      Report(comparison, "+ ", path + "/" + now.name, ResolvedValue(now));
    } else if (!pair.after) {
      Report(comparison, "- ", path + "/" + old.name, ResolvedValue(old));
    } else if (TextOf(&old) != TextOf(&now) || !SameProperties(old.properties, now.properties)) {
      Report(comparison, "! ", path + "/" + old.name, ResolvedValue(old) + " -> " + ResolvedValue(now));
    }
  }
}

void CompareTags(Comparison& comparison, const std::vector<const Tag*>& before, const std::vector<const Tag*>& after,
                 const std::string& path) {
  for (const auto& [old, now] : PairUp(before, after, TagKeys())) {
    const std::string place = path + (old ? old->name : now->name);
    if (!old) Report(comparison, "+ ", place, TagValue(*now));
    if (!now) Report(comparison, "- ", place, TagValue(*old));
    if (!old || !now) continue;
    if (TextOf(old) != TextOf(now) || !SameProperties(old->properties, now->properties))
      Report(comparison, "! ", place, TagValue(*old) + " -> " + TagValue(*now));
    CompareAttributes(comparison, *old, *now, place);
    CompareTags(comparison, TagsOf(comparison, *old), TagsOf(comparison, *now), place + "/");
  }
}

// What a document holds: its roots, and its raw data back to back.
std::pair<std::vector<const Tag*>, std::string> ContentsOf(const Document& document) {
  std::pair<std::vector<const Tag*>, std::string> contents;
  for (const Section& section : document.sections) {
    if (const Tag* root = RootTag(section)) contents.first.push_back(root);
    if (IsRaw(section)) contents.second += section.body.text;
  }
  return contents;
}

}  // namespace

std::string DiffText(const Document& before, const Document& after, bool all) {
  const auto [oldRoots, oldRaw] = ContentsOf(before);
  const auto [newRoots, newRaw] = ContentsOf(after);
  Comparison comparison{all, ""};
  CompareTags(comparison, oldRoots, newRoots, "");
  if (oldRaw != newRaw)
    Report(comparison, "! ", "raw data",
           Bytes(oldRaw.size()) + " -> " + Bytes(newRaw.size()) + ", compared as a whole");
  return comparison.out;
}

namespace {

int RunDiff(const Arguments& arguments) {
  std::vector<std::string> paths;
  if (!ListFiles(arguments, paths)) return kTrouble;
  if (paths.size() != 2) {
    Complain("diff", "takes two files, not " + std::to_string(paths.size()));
    return kTrouble;
  }
  Document before, after;
  const bool sound = LoadSound(paths[0], arguments.limit, before);
  if (!LoadSound(paths[1], arguments.limit, after) || !sound) return kTrouble;
  const std::string text = DiffText(before, after, arguments.all);
  if (!text.empty()) Write("--- " + Printable(before.path) + "\n+++ " + Printable(after.path) + "\n" + text);
  return text.empty() ? kSound : kDifferent;
}

}  // namespace

const Command kDiffCommand = {"diff",
                              RunDiff,
                              2,
                              "Show what appeared (+), vanished (-) and changed (!) between two scans.",
                              "Times, processes, uptime and free space are left out unless --all.\n"
                              "Exit status: 0 no difference, 1 differences, 2 trouble.\n\n"
                              "Example:\n  quillinv diff MYMAC_001EC2AABBCC.inv 'MYMAC_001EC2AABBCC(1).inv'",
                              {{"--all", &Arguments::all, "Also what changes from scan to scan by itself"}}};
