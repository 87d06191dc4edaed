// Walks a property list and enters it into a tag tree. A walker is handed the tag that it fills; a container is asked
// beforehand whether it enters anything, so that an empty one leaves no tag.
#include "main/collect/plist_reader.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

namespace {

constexpr std::size_t kMostSegments = 512;  // of a data type's name, as deep as a property list may nest
constexpr char kQuoteLead = '\xE2';         // the first byte of each typographic quotation mark in UTF-8

// Whether a number stands directly under a data type's key or deeper.
enum class Level { DataType, Nested };

// deliberate: a number of 8, 16 or 32 bits is widened with zeros, so that a negative one comes out large and positive
Value WidenedWithZeros(const PropertyList& number) {
  switch (number.numberType) {
    case NumberType::SInt8:
      return MakeIntValue(static_cast<std::uint8_t>(number.integer));
    case NumberType::SInt16:
      return MakeIntValue(static_cast<std::uint16_t>(number.integer));
    default:
      return MakeIntValue(static_cast<std::uint32_t>(number.integer));
  }
}

std::optional<Value> NumberValue(const PropertyList& number, Level level) {
  switch (number.numberType) {
    case NumberType::SInt8:
    case NumberType::SInt16:
    case NumberType::SInt32:
      return WidenedWithZeros(number);
    case NumberType::SInt64:
    case NumberType::LongLong:
      // deliberate: text directly under a data type, a number deeper down
      return level == Level::DataType ? MakeTextValue(std::to_string(number.integer)) : MakeIntValue(number.integer);
    case NumberType::Char:
    case NumberType::Short:
    case NumberType::Int:
    case NumberType::Long:
    case NumberType::CFIndex:
    case NumberType::NSInteger:
      return MakeIntValue(number.integer);
    case NumberType::Float32:
    case NumberType::Float64:
    case NumberType::Float:
    case NumberType::Double:
      return MakeDoubleValue(number.real);
    case NumberType::CGFloat:
      break;
  }
  return std::nullopt;
}

std::optional<Value> ScalarValue(const PropertyList& node, Level level) {
  switch (node.kind) {
    case PropertyListKind::Text:
      return MakeTextValue(node.text);
    case PropertyListKind::Date:
      return MakeTextValue(FormatDate(node.real, DateForm::Full));
    case PropertyListKind::Number:
      return NumberValue(node, level);
    default:
      return std::nullopt;
  }
}

bool IsNamedList(const std::string& key) { return key == "spfirewall_applications" || key == "spfirewall_services"; }

bool IsContainer(const PropertyList& node) {
  return node.kind == PropertyListKind::Dictionary || node.kind == PropertyListKind::Array;
}

bool IsText(const PropertyList& node) { return node.kind == PropertyListKind::Text; }

// Whether entering `node` enters any value.
bool EntersSomething(const PropertyList& node) {
  switch (node.kind) {
    case PropertyListKind::Text:
    case PropertyListKind::Date:
      return true;
    case PropertyListKind::Number:
      return node.numberType != NumberType::CGFloat;
    case PropertyListKind::Array:
      return std::any_of(node.items.begin(), node.items.end(), EntersSomething);
    case PropertyListKind::Dictionary:
      for (std::size_t i = 0; i < node.items.size(); ++i) {
        const PropertyList& item = node.items[i];
        const bool isNamedList = item.kind == PropertyListKind::Dictionary && IsNamedList(node.keys[i]);
        if (isNamedList ? std::any_of(item.items.begin(), item.items.end(), IsText) : EntersSomething(item))
          return true;
      }
      return false;
    default:
      return false;
  }
}

void EnterContainer(const PropertyList& node, Tag& tag) {
  if (node.kind == PropertyListKind::Dictionary)
    EnterDictionary(node, tag);
  else
    EnterArray(node, tag);
}

// Enters one value of `tag`'s container under a name.
void EnterNode(const PropertyList& node, std::string_view name, Tag& tag, Level level) {
  if (!IsContainer(node)) {
    if (std::optional<Value> value = ScalarValue(node, level)) SetAttribute(tag, name, std::move(*value));
  } else if (EntersSomething(node)) {
    EnterContainer(node, *GetOrAddChild(tag, name));
  }
}

bool IsSpecial(char c) { return c == '\'' || c == ' ' || c == '/' || c == ',' || c == kQuoteLead; }

// The key as a name; `room` holds it where it differs from the key.
std::string_view NameOfKey(const std::string& key, std::string& room) {
  if (std::none_of(key.begin(), key.end(), IsSpecial)) return key;
  return room = SanitizeKey(key);
}

bool IsSkippedKey(const std::string& key) {
  return key == "_dataType" || key == "_detailLevel" || key == "_properties";
}

// The data type's name is a path of its own: each "/" in it begins another tag.
Tag& DataTypeTag(TagTree& rawTree, std::string_view dataType) {
  Tag* tag = &RootOf(rawTree);
  for (std::size_t slash = dataType.find('/'); slash != std::string_view::npos; slash = dataType.find('/')) {
    tag = GetOrAddChild(*tag, dataType.substr(0, slash));
    dataType.remove_prefix(slash + 1);
  }
  return *GetOrAddChild(*tag, dataType);
}

void EnterResult(const PropertyList& result, std::string_view dataType, TagTree& rawTree) {
  std::string room;
  Tag* tag = nullptr;
  for (std::size_t i = 0; i < result.items.size(); ++i) {
    if (IsSkippedKey(result.keys[i]) || !EntersSomething(result.items[i])) continue;
    if (!tag) tag = &DataTypeTag(rawTree, dataType);
    EnterNode(result.items[i], NameOfKey(result.keys[i], room), *tag, Level::DataType);
  }
}

// Neither logs nor fonts, nor a name that would nest deeper than any tree that is read.
bool IsWanted(std::string_view dataType) {
  return dataType != "SPLogsDataType" && dataType != "SPFontsDataType" &&
         static_cast<std::size_t>(std::count(dataType.begin(), dataType.end(), '/')) < kMostSegments;
}

// The offset in minutes of a zone such as "+0530" without its sign; digits past the fourth do not count. 0 for a zone
// of anything else.
unsigned ZoneMinutes(std::string_view zone) {
  unsigned digits[4] = {};
  if (zone.size() < std::size(digits)) return 0;
  for (std::size_t i = 0; i < std::size(digits); ++i) {
    if (zone[i] < '0' || zone[i] > '9') return 0;
    digits[i] = static_cast<unsigned>(zone[i] - '0');
  }
  return (digits[0] * 10 + digits[1]) * 60 + digits[2] * 10 + digits[3];
}

struct Entity {
  char character;
  const char* text;
};
constexpr Entity kEntities[] = {{'&', "&amp;"}, {'\'', "&apos;"}, {'<', "&lt;"}, {'>', "&gt;"}};

}  // namespace

void EnterProfilerData(const PropertyList& list, TagTree& rawTree) {
  if (list.kind != PropertyListKind::Array) return;
  for (const PropertyList& result : list.items) {
    const PropertyList* dataType = FindKey(&result, "_dataType", PropertyListKind::Text);
    if (dataType && IsWanted(dataType->text)) EnterResult(result, dataType->text, rawTree);
  }
}

void EnterDictionary(const PropertyList& dictionary, Tag& tag) {
  std::string room;
  for (std::size_t i = 0; i < dictionary.items.size(); ++i) {
    const PropertyList& node = dictionary.items[i];
    const std::string_view name = NameOfKey(dictionary.keys[i], room);
    if (node.kind != PropertyListKind::Dictionary || !IsNamedList(dictionary.keys[i]))
      EnterNode(node, name, tag, Level::Nested);
    else if (std::any_of(node.items.begin(), node.items.end(), IsText))
      EnterNamedList(node, *GetOrAddChild(tag, name));
  }
}

void EnterArray(const PropertyList& array, Tag& tag) {
  const bool isNew = tag.children.empty();  // then no name can be there, and long lists need no search
  for (std::size_t i = 0; i < array.items.size(); ++i) {
    const PropertyList& node = array.items[i];
    const std::string name = "item" + std::to_string(i);
    if (isNew && IsContainer(node) && EntersSomething(node))
      EnterContainer(node, *AppendChild(tag, name));
    else
      EnterNode(node, name, tag, Level::Nested);
  }
}

void EnterNamedList(const PropertyList& dictionary, Tag& tag) {
  for (std::size_t k = 0; k < dictionary.items.size(); ++k) {
    if (!IsText(dictionary.items[k])) continue;
    Tag& item = *GetOrAddChild(tag, "item" + std::to_string(k));
    SetAttribute(item, "_name", MakeTextValue(dictionary.keys[k]));
    SetAttribute(item, "value", MakeTextValue(dictionary.items[k].text));
  }
}

std::string SanitizeKey(std::string_view key) {
  static constexpr std::array<std::string_view, 7> kSpecial = {"'", " ", "/", ",", "\u2018", "\u2019", "\u201B"};
  std::string name;
  while (!key.empty()) {
    std::size_t taken = 0;
    for (const std::string_view special : kSpecial)
      if (key.substr(0, special.size()) == special) taken = special.size();
    name += taken ? '_' : key.front();
    key.remove_prefix(taken ? taken : 1);
  }
  return name;
}

std::string FormatDate(double seconds, DateForm form) {
  std::string text = FormatLocalTime(seconds, form);
  const std::size_t blank = text.rfind(' ');
  if (form == DateForm::Short || blank == std::string::npos || blank + 1 >= text.size()) return text;
  const unsigned minutes = ZoneMinutes(std::string_view(text).substr(blank + 2));
  text.erase(blank, 1);  // the sign takes the blank's place
  text.resize(blank + 1);
  return text += std::to_string(minutes);
}

std::string EscapeXmlText(std::string text) {
  if (text.empty()) return text;
  constexpr char kSpecial[] = "&'<>";
  // deliberate: the first search leaves out the last character
  std::size_t at = std::string_view(text).substr(0, text.size() - 1).find_first_of(kSpecial);
  while (at != std::string::npos) {
    for (const Entity& entity : kEntities) {
      if (text[at] != entity.character) continue;
      text.replace(at, 1, entity.text);
      at += std::string_view(entity.text).size();
      break;
    }
    at = text.find_first_of(kSpecial, at);
  }
  return text;
}
