// Reads an XML property list in one loop over its tags. What is open lies on a stack of its own, so that no document,
// however deep, takes more of the program's.
#include "platform/portable/plist_xml.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/plist_encoding.h"
#include "platform/plist_limits.h"
#include "platform/portable/plist_scalars.h"
#include "platform/portable/xml_text.h"

namespace {

enum class Element { Key, Text, Dictionary, Date, Integer, Array, True, False, Real, Data, Plist };

struct ElementName {
  std::string_view name;
  Element element;
};

constexpr ElementName kElements[] = {
    {"key", Element::Key},         {"string", Element::Text}, {"dict", Element::Dictionary}, {"date", Element::Date},
    {"integer", Element::Integer}, {"array", Element::Array}, {"true", Element::True},       {"false", Element::False},
    {"real", Element::Real},       {"data", Element::Data},   {"plist", Element::Plist},
};

// Something that is being filled: its values and keys lie on the two stacks from these marks on.
struct Open {
  const ElementName* element;
  std::size_t firstValue, firstKey;
};

struct Reading {
  std::string_view rest;   // of the document
  std::vector<Open> open;  // the innermost last
  std::vector<PropertyList> values;
  std::vector<std::string> keys;
  std::string text;            // of the element at hand
  std::size_t containers = 0;  // how many of what is open are dictionaries and arrays
};

struct Tag {
  const ElementName* element = nullptr;
  bool isEmpty = false;  // "<name/>"
};

bool IsContainer(Element element) { return element == Element::Dictionary || element == Element::Array; }

bool IsIn(const Reading& reading, Element element) {
  return !reading.open.empty() && reading.open.back().element->element == element;
}

std::size_t ValueCount(const Reading& reading) { return reading.values.size() - reading.open.back().firstValue; }

bool KeyIsPending(const Reading& reading) {
  return reading.keys.size() - reading.open.back().firstKey > ValueCount(reading);
}

// Whether the element may stand where the reading is; a key that is no dictionary's counts as a text.
bool Fits(const Reading& reading, Element element) {
  if (IsIn(reading, Element::Dictionary)) return KeyIsPending(reading) != (element == Element::Key);
  return !IsIn(reading, Element::Plist) || ValueCount(reading) == 0;
}

const ElementName* FindElement(std::string_view name) {
  for (const ElementName& known : kElements)
    if (name == known.name) return &known;
  return nullptr;
}

// A tag that opens an element; without an element when it is none. deliberate: a tag ends at its first ">", also within
// the quotes of an attribute
Tag TakeTag(std::string_view& rest) {
  Tag tag;
  const std::size_t end = rest.find('>');
  if (end == std::string_view::npos) return tag;
  std::string_view name = rest.substr(1, end - 1);
  rest.remove_prefix(end + 1);
  tag.element = FindElement(name);
  if (tag.element || name.empty()) return tag;
  tag.isEmpty = name.back() == '/';
  const std::size_t blank = name.find_first_of(" \t\n\r");
  if (blank != std::string_view::npos)
    name = name.substr(0, blank);
  else if (tag.isEmpty)
    name.remove_suffix(1);
  tag.element = FindElement(name);
  return tag;
}

// A comment ends at the first "-->" behind "<!-"; only a document type without an internal subset is taken.
bool SkipDeclaration(Reading& reading) {
  if (reading.rest.substr(0, 4) == "<!--") return SkipPast(reading.rest, "-->", 3);
  if (!reading.open.empty() || reading.rest.substr(0, 9) != "<!DOCTYPE") return false;
  const std::size_t end = reading.rest.find_first_of("[>");
  if (end == std::string_view::npos || reading.rest[end] == '[') return false;
  reading.rest.remove_prefix(end + 1);
  return true;
}

// The number or the moment that a text says. Data is not decoded.
std::optional<PropertyList> ScalarOf(Element element, const std::string& text) {
  switch (element) {
    case Element::Integer:
      return ReadInteger(text);
    case Element::Real:
      return ReadReal(text);
    case Element::Date:
      return ReadDate(text);
    default:
      return text.empty() ? std::nullopt : std::optional(MakeData());
  }
}

// Everything up to the next tag, as it stands.
bool TakeRaw(std::string_view& rest, std::string& text) {
  const std::size_t end = std::min(rest.find('<'), rest.size());
  text = rest.substr(0, end);
  rest.remove_prefix(end);
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool TakeScalar(Reading& reading, Tag tag) {
  const Element element = tag.element->element;
  if (element == Element::True || element == Element::False) {
    reading.values.push_back(MakeBoolean(element == Element::True));
    return tag.isEmpty || TakeClosingTag(reading.rest, tag.element->name);
  }
  const bool isText = element == Element::Text || element == Element::Key;
  reading.text.clear();
  if (tag.isEmpty && !isText) return false;
  if (!tag.isEmpty) {
    const bool hasReferences = isText || element == Element::Real;
    if (!(hasReferences ? TakeText : TakeRaw)(reading.rest, reading.text)) return false;
    if (!TakeClosingTag(reading.rest, tag.element->name)) return false;
  }
  if (element == Element::Key && IsIn(reading, Element::Dictionary)) {
    reading.keys.push_back(reading.text);
    return true;
  }
  if (isText) {
    PropertyList& value = reading.values.emplace_back();
    value.kind = PropertyListKind::Text;
    value.text = reading.text;
    return true;
  }
  std::optional<PropertyList> scalar = ScalarOf(element, reading.text);
  if (scalar) reading.values.push_back(std::move(*scalar));
  return scalar.has_value();
}

// A key that is there twice keeps its first place and takes the last value.
void MergeRepeatedKeys(PropertyList& dictionary) {
  const std::vector<std::string>& keys = dictionary.keys;
  // In order, as the profiler writes them, none can be.
  if (std::adjacent_find(keys.begin(), keys.end(), std::greater_equal<>()) == keys.end()) return;
  std::vector<std::size_t> order(keys.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&keys](std::size_t a, std::size_t b) {
    const int difference = keys[a].compare(keys[b]);
    return difference != 0 ? difference < 0 : a < b;
  });
  std::vector<bool> isRepeated(keys.size());
  bool hasRepeated = false;
  for (std::size_t i = 1, first = 0; i < order.size(); ++i) {
    if (keys[order[i]] != keys[order[first]]) first = i;
    if (first == i) continue;
    dictionary.items[order[first]] = std::move(dictionary.items[order[i]]);
    isRepeated[order[i]] = hasRepeated = true;
  }
  if (!hasRepeated) return;
  PropertyList merged = MakeNode(PropertyListKind::Dictionary);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (isRepeated[i]) continue;
    merged.keys.push_back(std::move(dictionary.keys[i]));
    merged.items.push_back(std::move(dictionary.items[i]));
  }
  dictionary = std::move(merged);
}

// Whether CoreFoundation takes the dictionary for a reference within an archive.
bool IsArchiveReference(const PropertyList& container) {
  return container.keys.size() == 1 && container.keys[0] == "CF$UID" &&
         container.items[0].kind == PropertyListKind::Number;
}

// Takes what was opened last, and what lies on the stacks for it, into one value.
void Close(Reading& reading) {
  const Open open = reading.open.back();
  reading.open.pop_back();
  if (open.element->element == Element::Plist) return;  // its one value stays where it is
  --reading.containers;
  const bool isArray = open.element->element == Element::Array;
  PropertyList container = MakeNode(isArray ? PropertyListKind::Array : PropertyListKind::Dictionary);
  const auto value = reading.values.begin() + static_cast<std::ptrdiff_t>(open.firstValue);
  const auto key = reading.keys.begin() + static_cast<std::ptrdiff_t>(open.firstKey);
  container.items.assign(std::make_move_iterator(value), std::make_move_iterator(reading.values.end()));
  container.keys.assign(std::make_move_iterator(key), std::make_move_iterator(reading.keys.end()));
  reading.values.erase(value, reading.values.end());
  reading.keys.erase(key, reading.keys.end());
  if (!isArray) MergeRepeatedKeys(container);
  reading.values.push_back(IsArchiveReference(container) ? PropertyList() : std::move(container));
}

bool CloseTag(Reading& reading) {
  if (reading.open.empty() || !TakeClosingTag(reading.rest, reading.open.back().element->name)) return false;
  if (IsIn(reading, Element::Dictionary) && KeyIsPending(reading)) return false;
  if (IsIn(reading, Element::Plist) && ValueCount(reading) == 0) return false;
  Close(reading);
  return true;
}

bool OpenTag(Reading& reading) {
  const Tag tag = TakeTag(reading.rest);
  if (!tag.element || !Fits(reading, tag.element->element)) return false;
  const bool isList = tag.element->element == Element::Plist;
  if (!isList && !IsContainer(tag.element->element)) return TakeScalar(reading, tag);
  if (isList && tag.isEmpty) return false;
  reading.open.push_back({tag.element, reading.values.size(), reading.keys.size()});
  if (!isList && ++reading.containers > kMaxOpenContainers) return false;
  if (tag.isEmpty) Close(reading);
  return true;
}

// Reads one tag with the text that belongs to it.
bool TakeNext(Reading& reading) {
  SkipBlanks(reading.rest);
  if (reading.rest.size() < 2 || reading.rest[0] != '<') return false;
  switch (reading.rest[1]) {
    case '?':
      return SkipPast(reading.rest, "?>", 1);
    case '!':
      return SkipDeclaration(reading);
    case '/':
      return CloseTag(reading);
    default:
      return OpenTag(reading);
  }
}

}  // namespace

PropertyList ReadXmlList(std::string_view document) {
  std::string room;
  const std::optional<std::string_view> text = InUtf8(document, room);
  if (!text) return PropertyList();
  Reading reading;
  reading.rest = *text;
  while (!reading.open.empty() || reading.values.empty())
    if (!TakeNext(reading)) return PropertyList();
  return std::move(reading.values.front());
}
