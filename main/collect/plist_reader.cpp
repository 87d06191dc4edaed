// Walks a property list and enters it into a tag tree. Each walker holds on to the place that it fills, so that a value
// costs one look at its own tag, however deep the tag lies.
#include "main/collect/plist_reader.h"

#include <algorithm>
#include <array>
#include <deque>
#include <iterator>
#include <optional>

namespace {

constexpr std::size_t kMostUsualValues = 32;
constexpr char kQuoteLead = '\xE2';  // the first byte of each typographic quotation mark in UTF-8

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

// Enters one value under a name; `newName` when nothing else in this walk has that name here.
void EnterNode(const PropertyList& node, std::string_view name, bool newName, EntryPoint& place, Level level) {
  if (!IsContainer(node)) {
    if (std::optional<Value> value = ScalarValue(node, level)) place.SetValue(name, newName, std::move(*value));
    return;
  }
  const auto values =
      std::count_if(node.items.begin(), node.items.end(), [](const auto& item) { return !IsContainer(item); });
  EntryPoint below(place, name, newName, std::min(static_cast<std::size_t>(values), kMostUsualValues));
  if (node.kind == PropertyListKind::Dictionary) return EnterDictionary(node, below);
  EnterArray(node, below);
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

void EnterDataType(const PropertyList& result, EntryPoint& place) {
  std::string room;
  for (std::size_t i = 0; i < result.items.size(); ++i)
    if (!IsSkippedKey(result.keys[i]))
      EnterNode(result.items[i], NameOfKey(result.keys[i], room), false, place, Level::DataType);
}

// The data type's name is a path of its own: each "/" in it begins another tag.
void EnterResult(const PropertyList& result, std::string_view dataType, TagTree& rawTree) {
  std::deque<EntryPoint> path;
  path.emplace_back(RootOf(rawTree));
  for (std::size_t slash = dataType.find('/'); slash != std::string_view::npos; slash = dataType.find('/')) {
    EntryPoint& last = path.back();
    path.emplace_back(last, dataType.substr(0, slash), false);
    dataType.remove_prefix(slash + 1);
  }
  EntryPoint& last = path.back();
  path.emplace_back(last, dataType, false);
  EnterDataType(result, path.back());
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

Tag& EntryPoint::Resolve() {
  if (tag_) return *tag_;
  Tag& parent = parent_->Resolve();
  if (!(newName_ && parent_->made_)) tag_ = FindChild(parent, name_);
  if (!tag_) {
    tag_ = AppendChild(parent, name_);
    tag_->attributes.Reserve(usualValues_);
    made_ = true;
  }
  return *tag_;
}

void EntryPoint::SetValue(std::string_view name, bool newName, Value value) {
  Tag& tag = Resolve();
  if (newName && made_)
    AppendAttribute(tag, name, std::move(value));
  else
    SetPathAttribute(tag, name, std::move(value));
}

void EnterProfilerData(const PropertyList& list, TagTree& rawTree) {
  if (list.kind != PropertyListKind::Array) return;
  for (const PropertyList& result : list.items) {
    const PropertyList* dataType = FindKey(&result, "_dataType", PropertyListKind::Text);
    if (!dataType || dataType->text == "SPLogsDataType" || dataType->text == "SPFontsDataType") continue;
    EnterResult(result, dataType->text, rawTree);
  }
}

void EnterDictionary(const PropertyList& dictionary, EntryPoint& place) {
  std::string room;
  for (std::size_t i = 0; i < dictionary.items.size(); ++i) {
    const PropertyList& node = dictionary.items[i];
    const std::string_view name = NameOfKey(dictionary.keys[i], room);
    if (node.kind == PropertyListKind::Dictionary && IsNamedList(dictionary.keys[i])) {
      EntryPoint below(place, name, false);
      EnterNamedList(node, below);
    } else {
      EnterNode(node, name, false, place, Level::Nested);
    }
  }
}

void EnterArray(const PropertyList& array, EntryPoint& place) {
  for (std::size_t i = 0; i < array.items.size(); ++i)
    EnterNode(array.items[i], "item" + std::to_string(i), true, place, Level::Nested);
}

void EnterNamedList(const PropertyList& dictionary, EntryPoint& place) {
  for (std::size_t k = 0; k < dictionary.items.size(); ++k) {
    if (dictionary.items[k].kind != PropertyListKind::Text) continue;
    const std::string name = "item" + std::to_string(k);
    EntryPoint entry(place, name, true);
    entry.SetValue("_name", false, MakeTextValue(dictionary.keys[k]));
    entry.SetValue("value", false, MakeTextValue(dictionary.items[k].text));
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
