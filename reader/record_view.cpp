// Looks fields up by their names and writes their values for people.
#include "reader/record_view.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "reader/identity.h"

namespace {

constexpr const char* kSizeUnits[] = {"bytes", "KB", "MB", "GB", "TB", "PB", "EB"};
constexpr std::string_view kMemoryFields[] = {"memory_bytes", "capacity_bytes", "l2_bytes", "l3_bytes"};

// Three digits that count, no zeros behind the point.
std::string ThreeDigits(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", number < 9.995 ? 2 : number < 99.95 ? 1 : 0, number);
  std::string result = text;
  if (result.find('.') == std::string::npos) return result;
  result.erase(result.find_last_not_of('0') + 1);
  if (result.back() == '.') result.pop_back();
  return result;
}

std::string SizeText(std::int64_t bytes, double step) {
  auto size = static_cast<double>(bytes);
  std::size_t unit = 0;
  while (std::fabs(size) >= step - step / 2000 && unit + 1 < std::size(kSizeUnits)) {
    size /= step;
    ++unit;
  }
  if (bytes < 0) return "-" + ThreeDigits(-size) + " " + kSizeUnits[unit];
  return ThreeDigits(size) + " " + kSizeUnits[unit];
}

std::string BytesText(const RecordField& field, std::int64_t bytes) {
  for (const std::string_view name : kMemoryFields)
    if (field.name == name) return MemorySize(bytes);
  return DiskSize(bytes);
}

std::string DurationText(std::int64_t seconds) {
  constexpr std::int64_t kMinute = 60, kHour = 3600, kDay = 86400;
  if (seconds < kMinute) return std::to_string(seconds) + " s";
  std::string minutes = std::to_string(seconds % kHour / kMinute) + " min";
  if (seconds < kHour) return minutes;
  const std::string hours = std::to_string(seconds % kDay / kHour) + " h ";
  if (seconds < kDay) return hours + minutes;
  return Counted(static_cast<std::uint64_t>(seconds / kDay), "day ", "days ") + hours + minutes;
}

// A number with the largest of its units that leaves at least one.
std::string ScaledText(std::int64_t number, const char* const (&units)[4]) {
  auto scaled = static_cast<double>(number);
  std::size_t unit = 0;
  for (; scaled >= 1000 && unit + 1 < std::size(units); ++unit) scaled /= 1000;
  return ThreeDigits(scaled) + " " + units[unit];
}

std::string NumberText(const RecordField& field, std::int64_t number) {
  const std::string_view unit = UnitOf(field);
  if (unit.empty()) return std::to_string(number);
  if (unit == "bytes") return BytesText(field, number);
  if (unit == "seconds") return DurationText(number);
  if (unit == "hz") return ScaledText(number, {"Hz", "kHz", "MHz", "GHz"});
  if (unit == "bits_per_second") return ScaledText(number, {"bit/s", "kbit/s", "Mbit/s", "Gbit/s"});
  if (unit == "minutes") return number == 0 ? "never" : Grouped(number) + " min";  // a setting; 0 switches it off
  const std::string sign = unit == "percent" ? "%" : unit == "mhz" ? "MHz" : unit == "ma" ? "mA" : std::string(unit);
  return Grouped(number) + " " + sign;
}

struct Label {
  std::string_view name;
  const char* label;
};

// Words of names that are no plain words, and names that say more when they are put otherwise.
constexpr Label kWords[] = {
    {"ip", "IP"},   {"mac", "MAC"},     {"uuid", "UUID"},   {"usb", "USB"}, {"uri", "URI"}, {"ppd", "PPD"},
    {"id", "ID"},   {"pid", "PID"},     {"bsd", "BSD"},     {"os", "OS"},   {"cpu", "CPU"}, {"app", "app"},
    {"lan", "LAN"}, {"l2", "L2 cache"}, {"l3", "L3 cache"}, {"ac", "AC"},
};
constexpr Label kLabels[] = {
    {"is_64bit", "64-bit"},          {"is_default", "Default"},         {"modified", "Changed on"},
    {"arch", "Built for"},           {"bus_power_ma", "Power offered"}, {"bus_power_used_ma", "Power drawn"},
    {"h_min_hz", "Horizontal from"}, {"h_max_hz", "Horizontal to"},     {"v_min_hz", "Vertical from"},
    {"v_max_hz", "Vertical to"},     {"scan_seconds", "Scan took"},     {"mac_key_kind", "Told apart by"},
    {"mac_key", "Identity"},
};

// The words that stand for codes have "_" for blanks.
std::string Words(const RecordField& field, std::string text) {
  if (field.codes || field.name == "mac_key_kind") std::replace(text.begin(), text.end(), '_', ' ');
  return text;
}

const char* Find(std::string_view name, const Label* begin, const Label* end) {
  for (; begin != end; ++begin)
    if (begin->name == name) return begin->label;
  return nullptr;
}

FieldValue ReadNamed(const RecordView& view, std::string_view name, const RecordField*& found) {
  FieldValue value;
  for (const RecordField& field : *view.table) {
    if (field.name != name) continue;
    found = &field;
    ReadField(field, view.row, value);
  }
  assert(found);  // the names are written in this program
  return value;
}

}  // namespace

std::vector<RecordView> ViewsOf(std::string_view table, const RecordSource& source) {
  std::vector<RecordView> views;
  const RecordTable* found = FindRecordTable(table);
  for (const RecordRow& row : RowsOf(*found, source)) views.push_back({found, row});
  return views;
}

std::optional<std::int64_t> NumberOf(const RecordView& view, std::string_view field) {
  const RecordField* found = nullptr;
  const FieldValue value = ReadNamed(view, field, found);
  return value.known ? std::optional(value.integer) : std::nullopt;
}

std::optional<bool> FlagOf(const RecordView& view, std::string_view field) {
  const RecordField* found = nullptr;
  const FieldValue value = ReadNamed(view, field, found);
  return value.known ? std::optional(value.flag) : std::nullopt;
}

std::string ShownOf(const RecordView& view, std::string_view field) {
  const RecordField* found = nullptr;
  const FieldValue value = ReadNamed(view, field, found);
  return found ? Shown(*found, value) : "";
}

std::string Shown(const RecordField& field, const FieldValue& value) {
  if (!value.known) return "";
  switch (field.type) {
    case FieldType::Text:
      return Words(field, value.text);
    case FieldType::Day:
      return value.text;
    case FieldType::Moment:
      return value.text.substr(0, 10) + " " + value.text.substr(11, 5) + " UTC";
    case FieldType::Integer:
      return NumberText(field, value.integer);
    case FieldType::Decimal:
      return ThreeDigits(value.real);
    case FieldType::Flag:
      return value.flag ? "yes" : "no";
    case FieldType::TextList:
      break;
  }
  std::string text;
  for (const std::string& item : value.texts) text += (text.empty() ? "" : ", ") + item;
  return text;
}

std::string FieldLabel(const RecordField& field) {
  if (const char* label = Find(field.name, std::begin(kLabels), std::end(kLabels))) return label;
  std::string_view name = field.name;
  if (const std::string_view unit = UnitOf(field); !unit.empty()) name.remove_suffix(unit.size() + 1);
  std::string label;
  while (!name.empty()) {
    const std::size_t end = std::min(name.find('_'), name.size());
    const std::string word(name.substr(0, end));
    const char* known = Find(word, std::begin(kWords), std::end(kWords));
    label += (label.empty() ? "" : " ") + (known ? known : word);
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  if (label[0] >= 'a' && label[0] <= 'z') label[0] = static_cast<char>(label[0] - 'a' + 'A');
  return label;
}

std::string DiskSize(std::int64_t bytes) { return SizeText(bytes, 1000); }

std::string MemorySize(std::int64_t bytes) { return SizeText(bytes, 1024); }

std::string Counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return Grouped(static_cast<std::int64_t>(count)) + " " + std::string(count == 1 ? one : many);
}

std::string Grouped(std::int64_t number) {
  std::string digits = std::to_string(number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t at = digits.size(); at > first + 3;) digits.insert(at -= 3, 1, ',');
  return digits;
}

std::string ShownMoment(std::int64_t moment) {
  const std::string iso = IsoMoment(moment);
  return iso.substr(0, 10) + " " + iso.substr(11, 5) + " UTC";
}
