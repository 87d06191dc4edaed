// Turns the text of an XML element into a number or a moment.
#include "platform/portable/plist_scalars.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

PropertyList MakeInteger(std::int64_t number, NumberType type) {
  PropertyList list = MakeNode(PropertyListKind::Number);
  list.numberType = type;
  list.integer = number;
  return list;
}

// No value for no digits, for other characters and from 2^64 on.
std::optional<std::uint64_t> ReadDigits(std::string_view digits, unsigned base) {
  std::uint64_t number = 0;
  if (digits.empty()) return std::nullopt;
  for (const char c : digits) {
    const unsigned digit = DigitValue(c);
    if (digit >= base || number > (UINT64_MAX - digit) / base) return std::nullopt;
    number = number * base + digit;
  }
  return number;
}

// Removes a sign; whether it was "-".
bool TakeSign(std::string_view& text) {
  if (text.empty() || (text[0] != '-' && text[0] != '+')) return false;
  const bool negative = text[0] == '-';
  text.remove_prefix(1);
  return negative;
}

// Days from 2001-01-01 to a date of the Gregorian calendar; month 13 is the next January.
std::int64_t DaysFrom2001(std::int64_t year, int month, int day) {
  constexpr int kMarch = 3, kMonths = 12;
  // A year that begins in March ends with its leap day, and its months have 153 days in every five.
  const int monthsFromMarch = month - kMarch + kMonths;
  const std::int64_t y = year - 1 + monthsFromMarch / kMonths;
  const int dayOfYear = (153 * (monthsFromMarch % kMonths) + 2) / 5 + day - 1;
  const auto quotient = [y](std::int64_t by) { return (y >= 0 ? y : y - by + 1) / by; };  // rounded down
  constexpr std::int64_t kDaysTo2001 = 730791;  // from the first of March of the year 0
  return 365 * y + quotient(4) - quotient(100) + quotient(400) + dayOfYear - kDaysTo2001;
}

// Takes `count` digits and the character behind them; -1 when they are not there.
int TakeNumber(std::string_view& text, std::size_t count, char end) {
  if (text.size() <= count || text[count] != end) return -1;
  const std::optional<std::uint64_t> number = ReadDigits(text.substr(0, count), 10);
  text.remove_prefix(count + 1);
  return number ? static_cast<int>(*number) : -1;
}

}  // namespace

PropertyList MakeReal(double number) {
  PropertyList list = MakeNode(PropertyListKind::Number);
  list.numberType = NumberType::Float64;
  list.real = number;
  return list;
}

PropertyList MakeDate(double seconds) {
  PropertyList list = MakeNode(PropertyListKind::Date);
  list.real = seconds;
  return list;
}

PropertyList MakeBoolean(bool flag) {
  PropertyList list = MakeNode(PropertyListKind::Boolean);
  list.integer = flag ? 1 : 0;
  return list;
}

PropertyList MakeData() { return MakeNode(PropertyListKind::Data); }

PropertyList MakeWholeNumber(std::int64_t number) {
  return MakeInteger(number, number >= -1 && number <= 12 ? NumberType::SInt32 : NumberType::SInt64);
}

PropertyList MakeLargeNumber(std::uint64_t number) {
  return MakeInteger(static_cast<std::int64_t>(number), NumberType::SInt64);
}

unsigned DigitValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
  return 16;
}

std::optional<PropertyList> ReadInteger(std::string_view text) {
  const bool negative = TakeSign(text);
  const bool hexadecimal = text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const std::optional<std::uint64_t> number = ReadDigits(text.substr(hexadecimal ? 2 : 0), hexadecimal ? 16 : 10);
  if (!number || (negative && *number > kSignBit)) return std::nullopt;
  if (!negative && *number >= kSignBit) return MakeLargeNumber(*number);
  return MakeWholeNumber(static_cast<std::int64_t>(negative ? 0 - *number : *number));
}

std::optional<PropertyList> ReadReal(const std::string& text) {
  const char* const end = text.c_str() + text.size();
  char* stop = nullptr;
  const double number = std::strtod(text.c_str(), &stop);
  if (text.empty() || stop != end) return std::nullopt;
  // What else strtod takes: blanks in front, hexadecimal numbers, "nan(...)", a signed "nan".
  if (text.find_first_of("xX( \t\n\v\f\r") != std::string::npos) return std::nullopt;
  const bool isSigned = text[0] == '-' || text[0] == '+';
  if (isSigned && (text[1] == 'n' || text[1] == 'N')) return std::nullopt;
  return MakeReal(number);
}

std::optional<PropertyList> ReadDate(std::string_view text) {
  constexpr std::size_t kMostYearDigits = 9;
  const bool negative = !text.empty() && text[0] == '-';
  if (negative) text.remove_prefix(1);
  const int year = TakeNumber(text, std::min(text.find('-'), kMostYearDigits), '-');
  const int month = TakeNumber(text, 2, '-'), day = TakeNumber(text, 2, 'T');
  const int hour = TakeNumber(text, 2, ':'), minute = TakeNumber(text, 2, ':'), second = TakeNumber(text, 2, 'Z');
  for (const int number : {year, month, day, hour, minute, second})
    if (number < 0) return std::nullopt;
  if (!text.empty()) return std::nullopt;
  const double days = static_cast<double>(DaysFrom2001(negative ? -year : year, month, day));
  return MakeDate(days * 86400 + hour * 3600 + minute * 60 + second);
}
