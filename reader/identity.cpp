// Takes the identity from the AssetInfo tree, which is small, so that a file's snapshot need not be read for it; and
// counts days by the Gregorian calendar, which asks no clock and no time zone.
#include "reader/identity.h"

#include <algorithm>
#include <cstdio>

#include "reader/text.h"

namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;
constexpr std::int64_t kDaysTo1970 = 719162;  // from 0001-01-01
constexpr std::size_t kClockSize = 14;        // yyyyMMddHHmmss
constexpr std::int64_t kFirstYear = 1601;
constexpr std::int64_t kMostZoneMinutes = kDay / kMinute;

bool IsLeap(std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

// Days from 1970-01-01 to the first of January of that year.
std::int64_t DaysToYear(std::int64_t year) {
  const std::int64_t before = year - 1;
  return before * 365 + before / 4 - before / 100 + before / 400 - kDaysTo1970;
}

// The digits of `text` from `at` on as a number, -1 when they are not all digits.
std::int64_t Digits(std::string_view text, std::size_t at, std::size_t count) {
  const auto number = ParseNumber(text.substr(at, count));
  return number ? static_cast<std::int64_t>(*number) : -1;
}

std::optional<std::int64_t> LocalSeconds(std::string_view clock) {
  const std::int64_t year = Digits(clock, 0, 4);
  const std::int64_t month = Digits(clock, 4, 2);
  const std::int64_t day = Digits(clock, 6, 2);
  const std::int64_t hour = Digits(clock, 8, 2);
  const std::int64_t minute = Digits(clock, 10, 2);
  const std::int64_t second = Digits(clock, 12, 2);
  if (year < kFirstYear || month < 1 || month > 12 || day < 1 || day > DaysOfMonth(year, month)) return std::nullopt;
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60) return std::nullopt;
  std::int64_t days = DaysToYear(year) + day - 1;
  for (std::int64_t earlier = 1; earlier < month; ++earlier) days += DaysOfMonth(year, earlier);
  return days * kDay + hour * kHour + minute * kMinute + second;
}

const std::string& AssetText(const Document& document, std::string_view name) {
  const Tag* asset = FindRoot(document, "AssetInfo");
  return TextOf(asset != nullptr ? FindAttribute(*asset, name) : nullptr);
}

}  // namespace

std::int64_t DaysOfMonth(std::int64_t year, std::int64_t month) {
  constexpr std::int64_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

MacKey MacKeyOf(const Document& document) {
  constexpr struct {
    const char* attribute;
    const char* kind;
  } kKeys[] = {
      {"serial-number", "serial_number"}, {"uuid", "uuid"}, {"mac-address", "mac_address"}, {"hostname", "hostname"}};
  for (const auto& [attribute, kind] : kKeys) {
    const std::string& text = AssetText(document, attribute);
    const std::size_t end = text.find_last_not_of(" \r\t") + 1;
    if (end > 0) return {text.substr(0, end), kind};
  }
  return {};
}

std::optional<std::int64_t> ScanMoment(const Document& document) {
  for (const InvRecord& record : document.container.records)
    if (const auto moment = ParseTimestamp(record.timestamp)) return moment;
  for (const char* name : {"last-scan", "scan-attempt"})
    if (const auto moment = ParseTimestamp(AssetText(document, name))) return moment;
  return std::nullopt;
}

bool IsDebugScan(const Document& document) {
  const auto holds = [&document](InvSectionType type) {
    const auto& records = document.container.records;
    return std::any_of(records.begin(), records.end(), [type](const InvRecord& record) { return record.type == type; });
  };
  return holds(InvSectionType::RawData) && !holds(InvSectionType::Snapshot);
}

std::optional<std::int64_t> ParseTimestamp(std::string_view text) {
  const std::size_t sign = text.find_first_of("+-");
  if (text.size() < kClockSize || sign == std::string_view::npos) return std::nullopt;
  const auto seconds = LocalSeconds(text);
  if (!seconds) return std::nullopt;
  const auto zone = ParseNumber(text.substr(sign + 1));
  if (!zone || *zone > static_cast<std::uint64_t>(kMostZoneMinutes)) return std::nullopt;
  const std::int64_t distance = static_cast<std::int64_t>(*zone) * kMinute;
  return text[sign] == '+' ? *seconds - distance : *seconds + distance;
}

std::string IsoMoment(std::int64_t moment) {
  std::int64_t days = moment / kDay;
  std::int64_t rest = moment % kDay;
  if (rest < 0) {
    rest += kDay;
    --days;
  }
  std::int64_t year = 1970 + days / 366;  // never beyond the year that is looked for, when that is after 1970
  if (days < 0) year = 1970 + days / 365 - 1;
  while (DaysToYear(year + 1) <= days) ++year;
  std::int64_t day = days - DaysToYear(year);
  std::int64_t month = 1;
  for (; day >= DaysOfMonth(year, month); ++month) day -= DaysOfMonth(year, month);
  const auto whole = [](std::int64_t number) { return static_cast<int>(number); };
  char text[80];  // six numbers of eleven characters at most
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", whole(year), whole(month), whole(day + 1),
                whole(rest / kHour), whole(rest % kHour / kMinute), whole(rest % kMinute));
  return text;
}
