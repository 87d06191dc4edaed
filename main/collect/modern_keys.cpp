// Takes a list of the profiler through the steps, each of which knows one data type.
#include "main/collect/modern_keys.h"

#include <utility>

#include "main/collect/modern_steps.h"

namespace {

struct Step {
  const char* dataType;
  void (*addKeys)(PropertyList& result);
};

constexpr Step kSteps[] = {
    {"SPSoftwareDataType", AddSoftwareKeys}, {"SPHardwareDataType", AddHardwareKeys},
    {"SPMemoryDataType", AddMemoryKeys},     {"SPApplicationsDataType", AddApplicationKeys},
    {"SPPrintersDataType", AddPrinterKeys},  {"SPDisplaysDataType", AddDisplayKeys},
    {"SPNVMeDataType", AddNvmeKeys},         {"SPUSBDataType", AddUsbKeys},
};

// "OS X 10.11.6 (15G31)", and "Mac OS X" before 10.8; from 10.12 on it is "macOS".
bool IsOlderSystem(PropertyList& list) {
  for (PropertyList* result : ResultsOf(list, "SPSoftwareDataType"))
    for (const PropertyList* item : ItemsOf(*result))
      if (TextUnderKey(*item, "os_version").find("OS X") != std::string::npos) return true;
  return false;
}

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 16;
}

}  // namespace

void AddOlderKeys(PropertyList& list) {
  if (IsOlderSystem(list)) return;
  for (const Step& step : kSteps)
    for (PropertyList* result : ResultsOf(list, step.dataType)) step.addKeys(*result);
  AddStorageKeys(list);
  AddNetworkKeys(list);
}

PropertyList MakeInteger(std::int64_t number) {
  PropertyList node = MakeNode(PropertyListKind::Number);
  node.numberType = NumberType::SInt64;
  node.integer = number;
  return node;
}

PropertyList* FindKeyToChange(PropertyList& node, std::string_view key, PropertyListKind kind) {
  return const_cast<PropertyList*>(FindKey(&node, key, kind));
}

std::vector<PropertyList*> ElementsUnder(PropertyList& node, std::string_view key) {
  std::vector<PropertyList*> elements;
  PropertyList* array = FindKeyToChange(node, key, PropertyListKind::Array);
  if (!array) return elements;
  elements.reserve(array->items.size());
  for (PropertyList& element : array->items) elements.push_back(&element);
  return elements;
}

std::vector<PropertyList*> ResultsOf(PropertyList& list, std::string_view dataType) {
  std::vector<PropertyList*> results;
  if (list.kind != PropertyListKind::Array) return results;
  for (PropertyList& result : list.items)
    if (TextUnderKey(result, "_dataType") == dataType) results.push_back(&result);
  return results;
}

void AddMissing(PropertyList& dictionary, const char* key, PropertyList value) {
  if (dictionary.kind != PropertyListKind::Dictionary || FindKey(&dictionary, key)) return;
  dictionary.keys.emplace_back(key);
  dictionary.items.push_back(std::move(value));
}

void CopyMissing(PropertyList& dictionary, const char* key, const PropertyList& item,
                 std::initializer_list<const char*> sources) {
  for (const char* source : sources) {
    const PropertyList* value = FindKey(&item, source);
    if (value) return AddMissing(dictionary, key, PropertyList(*value));
  }
}

void AddToSummary(PropertyList& result, const char* key, std::string text) {
  AddMissing(result, kSummaryKey, MakeNode(PropertyListKind::Dictionary));
  if (PropertyList* summary = FindKeyToChange(result, kSummaryKey, PropertyListKind::Dictionary))
    AddMissing(*summary, key, MakeText(std::move(text)));
}

const std::string& TextUnderKey(const PropertyList& node, std::string_view key) {
  static const std::string empty;
  const std::string* text = FindText(&node, key);
  return text ? *text : empty;
}

std::optional<std::int64_t> ReadNumber(std::string_view digits, int base, std::int64_t limit) {
  std::int64_t number = 0;
  if (digits.empty()) return std::nullopt;
  for (const char c : digits) {
    if (DigitValue(c) >= base) return std::nullopt;
    number = number * base + DigitValue(c);
    if (number > limit) return std::nullopt;
  }
  return number;
}
