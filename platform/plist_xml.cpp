// Reads plain XML property lists with expat. Whatever is not entirely plain is given up at once, so that there is one
// judge of doubtful documents.
#include "platform/plist_xml.h"

#include <expat.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

#include "platform/plist_limits.h"

namespace {

enum class Element { None, Plist, Dictionary, Array, Key, Text, Integer, Real, Date, Data, True, False };

struct ElementName {
  const char* name;
  Element element;
};

constexpr ElementName kElements[] = {
    {"key", Element::Key},         {"string", Element::Text}, {"dict", Element::Dictionary}, {"date", Element::Date},
    {"integer", Element::Integer}, {"array", Element::Array}, {"true", Element::True},       {"false", Element::False},
    {"real", Element::Real},       {"data", Element::Data},   {"plist", Element::Plist},
};

Element ElementOf(const char* name) {
  for (const ElementName& known : kElements)
    if (std::strcmp(known.name, name) == 0) return known.element;
  return Element::None;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

// A decimal number of up to 18 digits, which every reader takes alike.
bool ReadInteger(const std::string& text, PropertyList& number) {
  const std::size_t sign = text[0] == '-' ? 1 : 0;
  const std::size_t digits = text.size() - sign;
  if (digits == 0 || digits > 18 || text.find_first_not_of("0123456789", sign) != std::string::npos) return false;
  if (text[sign] == '0' && text.size() > 1) return false;
  number.kind = PropertyListKind::Number;
  number.integer = std::strtoll(text.c_str(), nullptr, 10);
  number.numberType = KeptWholeNumber(number.integer) ? NumberType::SInt32 : NumberType::SInt64;
  return true;
}

bool ReadReal(const std::string& text, PropertyList& number) {
  if (text.empty() || text.find_first_not_of("0123456789.eE+-") != std::string::npos) return false;
  char* end = nullptr;
  number.kind = PropertyListKind::Number;
  number.numberType = NumberType::Float64;
  number.real = std::strtod(text.c_str(), &end);
  return *end == '\0';
}

// Days from 2001-01-01 to a date of the Gregorian calendar.
int DaysFrom2001(int year, int month, int day) {
  const int y = month > 2 ? year : year - 1;  // the year that began in March
  const int dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  return 365 * y + y / 4 - y / 100 + y / 400 + dayOfYear - 730791;
}

int DaysInMonth(int year, int month) {
  const int next = month == 12 ? DaysFrom2001(year + 1, 1, 1) : DaysFrom2001(year, month + 1, 1);
  return next - DaysFrom2001(year, month, 1);
}

// "2015-01-02T03:04:05Z" between 1970 and 2037.
bool ReadDate(const std::string& text, PropertyList& date) {
  constexpr char kShape[] = "dddd-dd-ddTdd:dd:ddZ";
  if (text.size() != sizeof kShape - 1) return false;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (kShape[i] == 'd' ? text[i] < '0' || text[i] > '9' : text[i] != kShape[i]) return false;
  const auto number = [&text](std::size_t at) { return (text[at] - '0') * 10 + (text[at + 1] - '0'); };
  const int year = number(0) * 100 + number(2), month = number(5), day = number(8);
  const int hour = number(11), minute = number(14), second = number(17);
  if (year < 1970 || year > 2037 || month < 1 || month > 12) return false;
  if (day < 1 || day > DaysInMonth(year, month)) return false;
  if (hour > 23 || minute > 59 || second > 59) return false;
  date.kind = PropertyListKind::Date;
  date.real = DaysFrom2001(year, month, day) * 86400.0 + hour * 3600 + minute * 60 + second;
  return true;
}

class PlainXmlReader {
 public:
  PlainXmlReader() : parser_(XML_ParserCreate("UTF-8"), XML_ParserFree) {
    XML_Parser parser = parser_.get();
    if (!parser) return;
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetStartDoctypeDeclHandler(parser, OnDoctype);
    XML_SetSkippedEntityHandler(parser, OnEntity);
    XML_SetCommentHandler(parser, OnComment);
    XML_SetProcessingInstructionHandler(parser, OnInstruction);
    XML_SetStartCdataSectionHandler(parser, GiveUp);
  }

  std::optional<PropertyList> Read(std::string_view document) {
    if (!parser_ || document.size() > INT_MAX) return std::nullopt;
    document_ = document;
    const auto status = XML_Parse(parser_.get(), document.data(), static_cast<int>(document.size()), XML_TRUE);
    if (tooDeep_) return PropertyList();
    if (status != XML_STATUS_OK || gaveUp_ || !hasRoot_) return std::nullopt;
    return std::move(values_.front());
  }

 private:
  static PlainXmlReader& Self(void* data) { return *static_cast<PlainXmlReader*>(data); }
  // The parser may still report the end of an empty element, and text, before it stops.
  static void GiveUp(void* data) {
    Self(data).gaveUp_ = true;
    XML_StopParser(Self(data).parser_.get(), XML_FALSE);
  }
  static void OnComment(void* data, const char*) { GiveUp(data); }
  static void OnInstruction(void* data, const char*, const char*) { GiveUp(data); }
  static void OnEntity(void* data, const char*, int) { GiveUp(data); }
  static void OnDoctype(void* data, const char*, const char*, const char*, int hasInternalSubset) {
    if (hasInternalSubset) GiveUp(data);
  }
  static void OnStart(void* data, const char* name, const char** attributes) {
    if (Self(data).gaveUp_) return;
    const Element element = ElementOf(name);
    if ((*attributes && element != Element::Plist) || !Self(data).Start(element)) GiveUp(data);
  }
  static void OnEnd(void* data, const char*) {
    if (!Self(data).gaveUp_ && !Self(data).End()) GiveUp(data);
  }
  static void OnText(void* data, const char* text, int size) {
    const std::string_view piece(text, static_cast<std::size_t>(size));
    if (!Self(data).gaveUp_ && !Self(data).Append(piece)) GiveUp(data);
  }

  // A container that is being filled: its values and keys lie on the two stacks from these marks on.
  struct Open {
    PropertyListKind kind;
    std::size_t firstValue, firstKey;
  };

  std::size_t ValueCount() const { return values_.size() - open_.back().firstValue; }
  std::size_t KeyCount() const { return keys_.size() - open_.back().firstKey; }
  bool InDictionary() const { return !open_.empty() && open_.back().kind == PropertyListKind::Dictionary; }
  bool KeyIsPending() const { return KeyCount() > ValueCount(); }

  // Whether an element of that kind may stand here.
  bool Fits(Element element) const {
    if (element == Element::None || leaf_ != Element::None) return false;
    if (element == Element::Plist) return !inPlist_;
    if (!inPlist_ || (open_.empty() && hasRoot_)) return false;
    return InDictionary() ? (element == Element::Key) != KeyIsPending() : element != Element::Key;
  }

  bool Start(Element element) {
    if (!Fits(element)) return false;
    if (element == Element::Plist) {
      inPlist_ = true;
    } else if (element == Element::Dictionary || element == Element::Array) {
      tooDeep_ = open_.size() == kMaxOpenContainers;
      if (tooDeep_) return false;
      const auto kind = element == Element::Array ? PropertyListKind::Array : PropertyListKind::Dictionary;
      open_.push_back({kind, values_.size(), keys_.size()});
    } else {
      leaf_ = element;
      text_.clear();
    }
    return true;
  }

  // Whether the text at hand is written as a reference such as "&#10;".
  bool IsReference() const {
    const auto at = static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_.get()));
    return at < document_.size() && document_[at] == '&';
  }

  bool Append(std::string_view text) {
    if (leaf_ == Element::None) return !IsReference() && std::all_of(text.begin(), text.end(), IsBlank);
    text_.append(text);
    return true;
  }

  // The parser sees to it that what ends is what was opened last.
  bool End() {
    const Element leaf = leaf_;
    leaf_ = Element::None;
    if (leaf == Element::Key) {
      keys_.push_back(text_);
      return !text_.empty();
    }
    if (leaf == Element::None && open_.empty()) return true;  // the property list itself
    if (leaf == Element::None) return Close();
    values_.emplace_back();
    hasRoot_ = hasRoot_ || open_.empty();
    return ReadScalar(leaf, values_.back());
  }

  // Takes the innermost container and what lies on the stacks for it.
  bool Close() {
    if (InDictionary() && (KeyIsPending() || HasKeyTwice())) return false;
    const auto value = values_.begin() + static_cast<std::ptrdiff_t>(open_.back().firstValue);
    const auto key = keys_.begin() + static_cast<std::ptrdiff_t>(open_.back().firstKey);
    PropertyList container;
    container.kind = open_.back().kind;
    container.items.assign(std::make_move_iterator(value), std::make_move_iterator(values_.end()));
    container.keys.assign(std::make_move_iterator(key), std::make_move_iterator(keys_.end()));
    values_.erase(value, values_.end());
    keys_.erase(key, keys_.end());
    values_.push_back(std::move(container));
    open_.pop_back();
    hasRoot_ = hasRoot_ || open_.empty();
    return true;
  }

  bool ReadScalar(Element element, PropertyList& value) {
    switch (element) {
      case Element::Text:
        value.kind = PropertyListKind::Text;
        value.text = text_;
        return true;
      case Element::Integer:
        return ReadInteger(text_, value);
      case Element::Real:
        return ReadReal(text_, value);
      case Element::Date:
        return ReadDate(text_, value);
      case Element::Data:
        value.kind = PropertyListKind::Data;
        return !text_.empty();
      default:
        value.kind = PropertyListKind::Boolean;
        value.integer = element == Element::True ? 1 : 0;
        return text_.empty();
    }
  }

  // Long dictionaries are given up as if they did.
  bool HasKeyTwice() const {
    if (KeyCount() > 300) return true;
    for (auto key = keys_.begin() + static_cast<std::ptrdiff_t>(open_.back().firstKey); key != keys_.end(); ++key)
      if (std::find(key + 1, keys_.end(), *key) != keys_.end()) return true;
    return false;
  }

  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
  std::string_view document_;
  std::vector<Open> open_;  // the innermost last
  std::vector<PropertyList> values_;
  std::vector<std::string> keys_;
  std::string text_;  // of the leaf element that is open
  Element leaf_ = Element::None;
  bool inPlist_ = false;
  bool hasRoot_ = false;
  bool tooDeep_ = false;
  bool gaveUp_ = false;
};

}  // namespace

std::optional<PropertyList> ReadPlainXml(std::string_view document) {
  if (document.empty() || document.front() != '<' || document.find('\r') != std::string_view::npos) return std::nullopt;
  return PlainXmlReader().Read(document);
}
