// Turns the texts of a tree into typed values: every number in the unit that the field's name ends with, every time in
// UTC. A text that is not what its field wants gives null.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "reader/identity.h"
#include "reader/record_fields.h"

namespace {

std::string_view WithoutLineBreaks(std::string_view text) {
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.remove_suffix(1);
  return text;
}

// Takes the step in front of the first "/" off the path.
std::string_view NextStep(std::string_view& path) {
  const std::size_t slash = path.find('/');
  const std::string_view step = path.substr(0, slash);
  path = slash == path.npos ? std::string_view() : path.substr(slash + 1);
  return step;
}

const Tag* SourceTag(const FieldSource& source, const RecordRow& row) {
  if (!source.absolute) return source.path.empty() ? row.tag : FindTag(row.tag, source.path);
  std::string_view path = source.path;
  return FindTag(NextStep(path) == "Snapshot" ? row.source->snapshot : row.source->asset, path);
}

std::string_view PropertyText(const std::vector<Property>& properties, std::string_view name) {
  const Property* property = FindProperty(properties, name);
  return property ? std::string_view(property->text) : std::string_view();
}

std::string_view Word(const RecordField& field, std::string_view code) {
  for (std::size_t i = 0; i < field.codeCount; ++i)
    if (code == field.codes[i].code) return field.codes[i].word;
  return code;
}

void ReadFlag(std::string_view text, FieldValue& value) {
  value.known = text == "0" || text == "1";
  value.flag = text == "1";
}

std::optional<std::int64_t> Product(std::optional<std::int64_t> number, std::int64_t times) {
  std::int64_t product = 0;
  if (!number || __builtin_mul_overflow(*number, times, &product)) return std::nullopt;
  return product;
}

// Comma-separated, as the agent joins them.
void ReadList(std::string_view text, FieldValue& value) {
  value.known = true;
  value.texts.clear();
  while (!text.empty()) {
    const std::size_t comma = text.find(", ");
    if (comma != 0) value.texts.emplace_back(text.substr(0, comma));
    text = comma == text.npos ? std::string_view() : text.substr(comma + 2);
  }
}

// "20121101"
void ReadDay(std::string_view text, FieldValue& value) {
  const auto number = text.size() == 8 ? WholeNumber(text) : std::nullopt;
  if (!number || text[0] < '0') return;
  const std::int64_t year = *number / 10000, month = *number / 100 % 100, day = *number % 100;
  if (year < 1 || month < 1 || month > 12 || day < 1 || day > DaysOfMonth(year, month)) return;
  value.known = true;
  value.text.assign(text.substr(0, 4)).append(1, '-').append(text.substr(4, 2)).append(1, '-').append(text.substr(6));
}

void ReadMoment(std::string_view text, FieldValue& value) {
  if (const auto moment = ParseTimestamp(text)) SetText(value, IsoMoment(*moment));
}

// "2.0" and not "2", so that no engine takes the field for whole numbers.
std::string DecimalText(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.15g", number);
  std::string result = text;
  return result.find_first_of(".e") == result.npos ? result + ".0" : result;
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

}  // namespace

const Tag* FindTag(const Tag* tag, std::string_view path) {
  while (tag && !path.empty()) tag = FindChild(*tag, NextStep(path));
  return tag;
}

std::string_view SourceText(const FieldSource& source, const RecordRow& row) {
  const Tag* tag = SourceTag(source, row);
  if (!tag) return {};
  if (source.attribute == "=") return WithoutLineBreaks(TextOf(tag));
  if (source.attribute.empty()) return WithoutLineBreaks(PropertyText(tag->properties, source.property));
  const Attribute* attribute = FindAttribute(*tag, source.attribute);
  if (!attribute) return {};
  if (source.property.empty()) return WithoutLineBreaks(TextOf(attribute));
  return WithoutLineBreaks(PropertyText(attribute->properties, source.property));
}

std::string_view SourceText(const RecordField& field, const RecordRow& row) {
  const std::string_view text = SourceText(field.source, row);
  const FieldSource& otherwise = field.otherwise;
  const bool other = text.empty() && !(otherwise.attribute.empty() && otherwise.property.empty());
  return other ? SourceText(otherwise, row) : text;
}

std::optional<std::int64_t> WholeNumber(std::string_view text) {
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  std::int64_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    const int digit = negative ? '0' - c : c - '0';
    if (__builtin_mul_overflow(number, 10, &number) || __builtin_add_overflow(number, digit, &number))
      return std::nullopt;
  }
  return text.empty() ? std::nullopt : std::optional(number);
}

std::optional<double> RealNumber(std::string_view text) {
  const std::string copy(text);
  if (copy.empty() || copy.find_first_not_of("0123456789.+-eE") != copy.npos) return std::nullopt;
  char* end = nullptr;
  const double number = std::strtod(copy.c_str(), &end);
  return *end || !std::isfinite(number) ? std::nullopt : std::optional(number);
}

void SetText(FieldValue& value, std::string_view text) {
  value.known = !text.empty();
  value.text.assign(text);
}

void SetInteger(FieldValue& value, std::optional<std::int64_t> number) {
  value.known = number.has_value();
  value.integer = number.value_or(0);
}

void ReadPlace(const RecordField&, const RecordRow& row, FieldValue& value) { SetInteger(value, row.place); }

void ReadHolder(const RecordField&, const RecordRow& row, FieldValue& value) {
  if (row.holder >= 0) SetInteger(value, row.holder);
}

void ReadBytes(const RecordField& field, const RecordRow& row, FieldValue& value) {
  FieldSource property = field.source;
  property.property = "base-value";
  SetInteger(value, WholeNumber(SourceText(property, row)));
  const std::optional<double> shown = value.known ? std::nullopt : RealNumber(SourceText(field.source, row));
  if (!shown) return;
  property.property = "units";
  const double bytes = *shown * static_cast<double>(SourceText(property, row) == "MB" ? kMebibyte : 1024 * kMebibyte);
  constexpr double kLimit = 9.2e18;
  if (bytes > -kLimit && bytes < kLimit) SetInteger(value, std::llround(bytes));
}

void ReadPresent(const RecordField& field, const RecordRow& row, FieldValue& value) {
  value.known = true;
  value.flag = !SourceText(field, row).empty();
}

void ReadTrueOrNull(const RecordField& field, const RecordRow& row, FieldValue& value) {
  value.known = value.flag = !SourceText(field, row).empty();
}

void ReadNonZero(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const auto number = Product(WholeNumber(SourceText(field, row)), field.times);
  if (number.value_or(0) != 0) SetInteger(value, number);
}

void ReadField(const RecordField& field, const RecordRow& row, FieldValue& value) {
  value.known = false;
  if (field.read) return field.read(field, row, value);
  const std::string_view text = SourceText(field, row);
  switch (field.type) {
    case FieldType::Text:
      return SetText(value, Word(field, text));
    case FieldType::TextList:
      return ReadList(text, value);
    case FieldType::Integer:
      return SetInteger(value, Product(WholeNumber(text), field.times));
    case FieldType::Decimal:
      value.real = RealNumber(text).value_or(0);
      value.known = RealNumber(text).has_value();
      return;
    case FieldType::Flag:
      return ReadFlag(text, value);
    case FieldType::Moment:
      return ReadMoment(text, value);
    case FieldType::Day:
      return ReadDay(text, value);
  }
}

std::string ValueText(FieldType type, const FieldValue& value) {
  if (!value.known) return "";
  switch (type) {
    case FieldType::Integer:
      return std::to_string(value.integer);
    case FieldType::Decimal:
      return DecimalText(value.real);
    case FieldType::Flag:
      return value.flag ? "true" : "false";
    case FieldType::TextList:
      return Joined(value.texts);
    case FieldType::Text:
    case FieldType::Moment:
    case FieldType::Day:
      break;
  }
  return value.text;
}
