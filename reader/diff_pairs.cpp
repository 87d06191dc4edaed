// Pairs siblings in rounds, one for each way to tell them apart, the surest first: items that were paired in one round
// take no part in the next.
#include "reader/diff_pairs.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "reader/meaning.h"
#include "reader/show.h"

namespace {

constexpr std::string_view kValue = "=";  // stands for the tag's own value
constexpr char kSeparator = '\0';         // no text of a tree holds it

// What tells tags of a name apart. A tag that lacks the first of the two takes no part.
struct Identification {
  std::string_view tag;
  std::string_view first;
  std::string_view second = {};
  bool unique = false;  // of two that have it and differ, nothing else makes the same
};

constexpr Identification kIdentifications[] = {
    {"HDD", "serial", "", true},
    {"HDD", "model"},
    {"Removable", "serial", "", true},
    {"Removable", kValue},
    {"CD", "model"},
    {"partition", "mount-point"},
    {"partition", kValue},
    {"Memory-slot", "bank-label"},
    {"Monitor", "serial", "name", true},
    {"Monitor", "name"},
    {"v-mode", "res"},
    {"net-adapter", "bsd-device-name"},
    {"net-adapter", kValue},
    {"Printer", "uri"},
    {"Printer", kValue},
    {"Scanner", "scanner-uuid"},
    {"Scanner", kValue},
    {"Device", "serial-number", "", true},
    {"Device", kValue},
    {"Soft", kValue, "location"},
    {"library", kValue, "path"},
    {"Profile", kValue},
    {"process", kValue},
    {"service", kValue},
    {"app", kValue},
};

// What describes a tag that has no value, in the order of the description.
constexpr std::string_view kDescriptions[] = {"model", "bank-label", "res", "capacity", "size", "serial"};

// No key: the item takes no part in the round.
using Key = std::optional<std::string>;
template <typename Item>
using KeyOf = std::function<Key(const Item&)>;
// False for two items that are not the same, whatever else they share.
template <typename Item>
using MayBeSame = std::function<bool(const Item&, const Item&)>;

// What was paired so far.
template <typename Item>
struct Pairing {
  std::vector<Pair<Item>> pairs;
  const std::vector<const Item*>& after;
  std::set<const Item*> paired;  // those of `after`
};

template <typename Item>
Pairing<Item> StartPairing(const std::vector<const Item*>& before, const std::vector<const Item*>& after) {
  Pairing<Item> pairing = {{}, after, {}};
  for (const Item* item : before) pairing.pairs.push_back({item, nullptr});
  return pairing;
}

// Of equal keys, those that come first meet.
template <typename Item>
void PairBy(Pairing<Item>& pairing, const KeyOf<Item>& key, const MayBeSame<Item>& mayBeSame) {
  std::multimap<std::string, const Item*> waiting;
  for (const Item* item : pairing.after) {
    const Key text = pairing.paired.count(item) != 0 ? std::nullopt : key(*item);
    if (text) waiting.emplace(*text, item);
  }
  for (Pair<Item>& pair : pairing.pairs) {
    const Key text = pair.after != nullptr ? std::nullopt : key(*pair.before);
    if (!text) continue;
    const auto [first, last] = waiting.equal_range(*text);
    const auto found =
        std::find_if(first, last, [&](const auto& entry) { return mayBeSame(*pair.before, *entry.second); });
    if (found == last) continue;
    pair.after = found->second;
    pairing.paired.insert(found->second);
    waiting.erase(found);
  }
}

template <typename Item>
std::vector<Pair<Item>> EndPairing(Pairing<Item> pairing) {
  for (const Item* item : pairing.after)
    if (pairing.paired.count(item) == 0) pairing.pairs.push_back({nullptr, item});
  return std::move(pairing.pairs);
}

const std::string& TextNamed(const Tag& tag, std::string_view name) {
  return name == kValue ? TextOf(&tag) : TextOf(FindAttribute(tag, name));
}

Key KeyBy(const Tag& tag, const Identification& by) {
  if (BaseName(tag.name) != by.tag || TextNamed(tag, by.first).empty()) return std::nullopt;
  const std::string second = by.second.empty() ? "" : TextNamed(tag, by.second);
  return std::string(by.tag) + kSeparator + TextNamed(tag, by.first) + kSeparator + second;
}

// True when a way to tell the two apart tells them apart; of the ways only those that are `unique`, or any.
bool AreToldApart(const Tag& before, const Tag& after, bool uniqueOnly) {
  return std::any_of(std::begin(kIdentifications), std::end(kIdentifications), [&](const Identification& by) {
    const Key one = uniqueOnly && !by.unique ? std::nullopt : KeyBy(before, by);
    const Key other = one ? KeyBy(after, by) : std::nullopt;
    return one && other && *one != *other;
  });
}

Key KeyByNameAndValue(const Tag& tag) { return tag.name + kSeparator + TextOf(&tag); }

// For a numbered tag with a value: that without the number.
Key KeyByValue(const Tag& tag) {
  const std::string_view base = BaseName(tag.name);
  const bool numbered = base.size() + 1 < tag.name.size() &&
                        tag.name.find_first_not_of("0123456789", base.size() + 1) == std::string::npos;
  if (!numbered || TextOf(&tag).empty()) return std::nullopt;
  return std::string(base) + kSeparator + TextOf(&tag);
}

Key KeyByName(const Tag& tag) { return tag.name; }

// The volume that an attribute such as "disk:1" is about.
Key KeyByMountPoint(const Attribute& attribute) {
  const Property* place = FindProperty(attribute.properties, "mount-point");
  if (place == nullptr || place->text.empty()) return std::nullopt;
  return std::string(BaseName(attribute.name)) + kSeparator + place->text;
}

}  // namespace

std::vector<Pair<Tag>> PairTags(const std::vector<const Tag*>& before, const std::vector<const Tag*>& after) {
  Pairing<Tag> pairing = StartPairing(before, after);
  const auto notOtherThings = [](const Tag& old, const Tag& now) { return !AreToldApart(old, now, true); };
  const auto notToldApart = [](const Tag& old, const Tag& now) { return !AreToldApart(old, now, false); };
  std::set<std::string_view> bases;
  for (const Tag* tag : before) bases.insert(BaseName(tag->name));
  for (const Identification& by : kIdentifications)
    if (bases.count(by.tag) != 0)
      PairBy<Tag>(
          pairing, [&by](const Tag& tag) { return KeyBy(tag, by); }, notOtherThings);
  for (Key (*key)(const Tag&) : {KeyByNameAndValue, KeyByValue, KeyByName}) PairBy<Tag>(pairing, key, notToldApart);
  return EndPairing(std::move(pairing));
}

std::vector<Pair<Attribute>> PairAttributes(const std::vector<const Attribute*>& before,
                                            const std::vector<const Attribute*>& after) {
  Pairing<Attribute> pairing = StartPairing(before, after);
  const auto notToldApart = [](const Attribute& old, const Attribute& now) {
    const Key one = KeyByMountPoint(old);
    const Key other = KeyByMountPoint(now);
    return !one || !other || *one == *other;
  };
  PairBy<Attribute>(pairing, KeyByMountPoint, notToldApart);
  PairBy<Attribute>(
      pairing, [](const Attribute& attribute) -> Key { return attribute.name; }, notToldApart);
  return EndPairing(std::move(pairing));
}

std::string DescribeTag(const Tag& tag) {
  std::string text = TagValue(tag);
  if (!TextOf(&tag).empty()) return text;
  for (const std::string_view name : kDescriptions) {
    const Attribute* attribute = FindAttribute(tag, name);
    if (TextOf(attribute).empty()) continue;
    text += (text.empty() ? "" : ", ") + ResolvedValue(*attribute, tag.name);
  }
  return text;
}
