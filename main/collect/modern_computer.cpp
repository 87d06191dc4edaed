// The system, the processor, the memory, applications and printers of newer systems in older keys.
#include <algorithm>
#include <cstddef>
#include <utility>

#include "main/collect/modern_keys.h"
#include "main/collect/modern_steps.h"

namespace {

constexpr std::string_view kSystemPrefix = "macOS ";
constexpr std::string_view kProcessorPrefix = "proc ";
constexpr std::int64_t kMaxVersionNumber = 9999;
constexpr std::int64_t kMaxProcessors = 65535;

struct Release {
  const char* version;
  const char* name;
};

constexpr Release kReleases[] = {
    {"10.12", "Sierra"}, {"10.13", "High Sierra"}, {"10.14", "Mojave"}, {"10.15", "Catalina"}, {"11", "Big Sur"},
    {"12", "Monterey"},  {"13", "Ventura"},        {"14", "Sonoma"},    {"15", "Sequoia"},     {"26", "Tahoe"},
};

bool StartsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

// The numbers at the start of a version such as "11.4 (20F71)", up to the first that is none.
std::vector<std::int64_t> VersionNumbers(std::string_view version) {
  std::vector<std::int64_t> numbers;
  version = version.substr(0, version.find(' '));
  while (!version.empty()) {
    const std::string_view digits = version.substr(0, version.find('.'));
    const std::optional<std::int64_t> number = ReadNumber(digits, 10, kMaxVersionNumber);
    if (!number) break;
    numbers.push_back(*number);
    version.remove_prefix(std::min(digits.size() + 1, version.size()));
  }
  return numbers;
}

// Until 10.15 a release is known by its first two numbers, and its updates by the third.
bool HasTwoNumbers(const std::vector<std::int64_t>& numbers) { return numbers[0] == 10 && numbers.size() > 1; }

std::string SystemName(const std::vector<std::int64_t>& numbers) {
  std::string version = std::to_string(numbers[0]);
  if (HasTwoNumbers(numbers)) version += "." + std::to_string(numbers[1]);
  for (const Release& release : kReleases)
    if (version == release.version) return "macOS " + version + " (" + release.name + ")";
  return "macOS " + version;
}

void AddSystem(PropertyList& item) {
  const std::string& text = TextUnderKey(item, "os_version");
  if (!StartsWith(text, kSystemPrefix)) return;
  const std::string version = text.substr(kSystemPrefix.size());
  const std::vector<std::int64_t> numbers = VersionNumbers(version);
  if (numbers.empty()) return;
  PropertyList system = MakeNode(PropertyListKind::Dictionary);
  AddMissing(system, "name", MakeText(SystemName(numbers)));
  AddMissing(system, "version", MakeText(version));
  const std::size_t update = HasTwoNumbers(numbers) ? 2 : 1;
  if (numbers.size() > update && numbers[update] != 0)  // "11.0" has no update yet
    AddMissing(system, "update", MakeText("Update " + std::to_string(numbers[update])));
  AddMissing(item, kSystemKey, std::move(system));
  AddMissing(item, "64bit_kernel_and_kexts", MakeText("yes"));
}

// The first number of "proc 8:4:4": all cores, of which the others are kinds.
std::optional<std::int64_t> CoresOf(std::string_view processors) {
  if (!StartsWith(processors, kProcessorPrefix)) return std::nullopt;
  processors.remove_prefix(kProcessorPrefix.size());
  return ReadNumber(processors.substr(0, processors.find(':')), 10, kMaxProcessors);
}

// Returns whether a chip is all that is said of the processor.
bool AddChip(PropertyList& item) {
  if (!FindText(&item, "chip_type") || FindKey(&item, "cpu_type")) return false;
  CopyMissing(item, "cpu_type", item, {"chip_type"});
  AddMissing(item, "packages", MakeInteger(1));
  AddMissing(item, kChipKey, MakeText("yes"));
  return true;
}

void SetCores(PropertyList& item) {
  PropertyList* processors = FindKeyToChange(item, "number_processors", PropertyListKind::Text);
  if (!processors) return;
  const std::optional<std::int64_t> cores = CoresOf(processors->text);
  if (cores.value_or(0) > 0) *processors = MakeInteger(*cores);
}

bool IsWide(const std::string& kind) {
  return kind.find("i64") != std::string::npos || kind.find("arm") != std::string::npos;
}

// Where an application comes from, as far as it is known.
const char* StoreAnswer(const std::string& origin) {
  if (origin == "mac_app_store") return "yes";
  return origin == "apple" || origin == "identified_developer" ? "no" : nullptr;
}

}  // namespace

void AddSoftwareKeys(PropertyList& result) {
  for (PropertyList* item : ItemsOf(result)) AddSystem(*item);
}

void AddHardwareKeys(PropertyList& result) {
  for (PropertyList* item : ItemsOf(result)) {
    SetCores(*item);
    if (AddChip(*item) && StartsWith(TextUnderKey(*item, "chip_type"), "Apple"))
      AddToSummary(result, "processor-maker", "Apple");
  }
}

void AddMemoryKeys(PropertyList& result) {
  for (PropertyList* item : ItemsOf(result)) {
    if (!FindText(item, "SPMemoryDataType") || FindKey(item, "_items") || FindKey(item, "dimm_size")) continue;
    AddMissing(*item, "dimm_status", MakeText("ok"));
    CopyMissing(*item, "dimm_size", *item, {"SPMemoryDataType"});
  }
}

void AddApplicationKeys(PropertyList& result) {
  for (PropertyList* item : ItemsOf(result)) {
    const char* answer = StoreAnswer(TextUnderKey(*item, "obtained_from"));
    if (answer) AddMissing(*item, "app_store", MakeText(answer));
    if (!FindText(item, "arch_kind")) continue;
    const bool wide = IsWide(TextUnderKey(*item, "arch_kind"));
    CopyMissing(*item, "runtime_environment", *item, {"arch_kind"});
    AddMissing(*item, "has64BitIntelCode", MakeText(wide ? "yes" : "no"));
  }
}

void AddPrinterKeys(PropertyList& result) {
  for (PropertyList* item : ItemsOf(result)) CopyMissing(*item, "fax", *item, {"Fax Support"});
}
