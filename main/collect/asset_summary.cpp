// Reads the asset summary from the profiler's property list: one small group of fields a function.
#include "main/collect/asset_summary.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "main/collect/command_runner.h"
#include "main/collect/host_identity.h"
#include "main/collect/modern_keys.h"
#include "main/collect/release_names.h"
#include "zxml/maker.h"
#include "zxml/value_text.h"

namespace {

// A whole number; of a fraction the part before the point.
std::optional<double> NumberUnder(const PropertyList* dictionary, const char* key) {
  const PropertyList* number = FindKey(dictionary, key, PropertyListKind::Number);
  if (!number) return std::nullopt;
  return IsFloating(number->numberType) ? std::trunc(number->real) : static_cast<double>(number->integer);
}

void CopyText(const PropertyList* dictionary, const char* key, std::string& field) {
  if (const std::string* text = FindText(dictionary, key)) field = *text;
}

std::string Unsigned(double number) { return std::to_string(TruncateToUint32(number)); }

// Whole megabytes in a size text, by way of single precision.
std::string Megabytes(const std::string& size) { return Unsigned(static_cast<float>(ParseSizeGB(size)) * 1024.0f); }

std::string OneDecimal(double number) {
  char text[DBL_MAX_10_EXP + sizeof "-1.0"];
  std::snprintf(text, sizeof text, "%.1f", number);
  return text;
}

// "Ann Lee (ann)" gives "ann".
std::string ShortUserName(const std::string& userName) {
  const std::size_t open = userName.find('(');
  const std::size_t start = open == std::string::npos ? 0 : open + 1;
  return userName.substr(start, userName.find(')', start) - start);
}

// deliberate: fixed positions that fit "Mac OS X 10.6.8 (10K549)", whatever the text says
constexpr std::size_t kVersionAt = 9, kReleaseDigitAt = 12, kUpdateAt = 14;

void SplitSystemVersion(const std::string& version, AssetSummary& summary) {
  const char digit = version.size() > kReleaseDigitAt ? version[kReleaseDigitAt] : '\0';
  const bool named = digit >= '0' && digit <= '7';
  summary.osName = named ? kReleaseNames[static_cast<std::size_t>(digit - '0')] : version;
  if (version.size() >= kUpdateAt)
    summary.osUpdate = "Update " + version.substr(kUpdateAt, version.find(' ', kUpdateAt) - kUpdateAt);
  if (version.size() >= kVersionAt) summary.osVersion = version.substr(kVersionAt);
}

void CollectSoftware(const PropertyList& list, AssetSummary& summary) {
  const PropertyList* software = FirstElement(FindItemArray(list, "SPSoftwareDataType"));
  CopyText(software, "local_host_name", summary.localHostName);
  if (const std::string* userName = FindText(software, "user_name")) summary.userName = ShortUserName(*userName);
  if (const std::string* version = FindText(software, "os_version")) SplitSystemVersion(*version, summary);
}

void CollectProcessor(const PropertyList* hardware, AssetSummary& summary) {
  const std::optional<double> packages = NumberUnder(hardware, "packages");
  const std::optional<double> processors = NumberUnder(hardware, "number_processors");
  if (packages) summary.packages = Unsigned(*packages);
  if (packages && processors) summary.logicalProcessors = Unsigned(*processors * *packages);
  if (const std::string* speed = FindText(hardware, "current_processor_speed")) {
    const auto gigahertz = static_cast<float>(NumberAtStart(speed->substr(0, speed->find(' '))));
    summary.processorSpeed = Unsigned(1000.0 * TruncateToUint32(gigahertz));  // deliberate: 2.66 GHz gives 2000
  }
  if (const std::string* type = FindText(hardware, "cpu_type")) {
    summary.processorType = *type;
    if (type->find("Intel") != std::string::npos) summary.processorMaker = "GenuineIntel";
  }
}

void CollectHardware(const PropertyList& list, AssetSummary& summary) {
  const PropertyList* hardware = FirstElement(FindItemArray(list, "SPHardwareDataType"));
  summary.platformUuid = RunCommand(kPlatformUuidCommand, kPlatformUuidChunk);
  if (summary.platformUuid.empty()) CopyText(hardware, "platform_UUID", summary.platformUuid);
  CollectProcessor(hardware, summary);
  if (const std::string* model = FindText(hardware, "machine_model")) {
    summary.machineModel = *model;
    summary.systemMaker = kMaker;
  }
  if (const std::string* memory = FindText(hardware, "physical_memory")) summary.physicalMemory = Megabytes(*memory);
}

// The display marked as main, else the first one.
const PropertyList* MainDisplay(const PropertyList* adapter) {
  const PropertyList* displays = FindKey(adapter, "spdisplays_ndrvs", PropertyListKind::Array);
  if (!displays) return nullptr;
  for (const PropertyList& display : displays->items) {
    const std::string* main = FindText(&display, "spdisplays_main");
    if (main && *main == "spdisplays_yes") return &display;
  }
  return FirstElement(displays);
}

// The digits of the EDID's bytes 21 and 22, the image size in centimetres, behind "0x".
constexpr std::size_t kImageSizeAt = 2 + 2 * 21, kImageSizeDigits = 4;

// Unreadable digits make both lengths 0.
std::string DiagonalOfEdid(const std::string& edid) {
  const std::string digits = edid.size() > kImageSizeAt ? edid.substr(kImageSizeAt, kImageSizeDigits) : std::string();
  unsigned width = 0, height = 0;
  const bool readable = std::sscanf(digits.c_str(), "%2x%2x", &width, &height) == 2;
  return Unsigned(readable ? static_cast<double>(DiagonalInches(width, height)) : 0.0);
}

void CollectDisplay(const PropertyList& list, AssetSummary& summary) {
  const PropertyList* adapter = FirstElement(FindItemArray(list, "SPDisplaysDataType"));
  if (const std::string* memory = FindText(adapter, "spdisplays_vram")) summary.videoMemory = Megabytes(*memory);
  const PropertyList* display = MainDisplay(adapter);
  CopyText(display, "spdisplays_resolution", summary.displayResolution);
  if (const std::string* edid = FindText(display, "_spdisplays_edid")) summary.displayDiagonal = DiagonalOfEdid(*edid);
}

constexpr std::int64_t kBytesPerDecimalGB = 1000000000;

struct DiskTotals {
  std::int64_t capacity = 0;  // decimal GB
  double volumes = 0.0, free = 0.0;
};

double SizeUnder(const PropertyList* dictionary, const char* key) {
  const std::string* size = FindText(dictionary, key);
  return size ? ParseSizeGB(*size) : 0.0;
}

void AddDisk(const PropertyList& device, DiskTotals& totals) {
  if (const std::string* size = FindText(&device, "size"))
    totals.capacity += std::max<std::int64_t>(ParseSizeBytes(*size), 0) / kBytesPerDecimalGB;
  const PropertyList* volumes = FindKey(&device, "volumes", PropertyListKind::Array);
  if (!volumes) return;
  for (const PropertyList& volume : volumes->items) {
    totals.volumes += SizeUnder(&volume, "size");
    totals.free += SizeUnder(&volume, "free_space");
  }
}

void CollectDisks(const PropertyList& list, AssetSummary& summary) {
  DiskTotals totals;
  if (const PropertyList* controllers = FindItemArray(list, "SPSerialATADataType"))
    for (const PropertyList& controller : controllers->items)
      if (const PropertyList* devices = FindKey(&controller, "_items", PropertyListKind::Array))
        for (const PropertyList& device : devices->items) AddDisk(device, totals);
  summary.diskCapacity = Unsigned(static_cast<double>(totals.capacity));
  summary.volumeCapacity = OneDecimal(totals.volumes);
  summary.volumeFree = OneDecimal(totals.free);
}

// What newer systems say where the usual keys say nothing.
void CollectModernKeys(const PropertyList& list, AssetSummary& summary) {
  for (const PropertyList& result : list.items) {
    const PropertyList* known = FindKey(&result, kSummaryKey);
    CopyText(known, "processor-maker", summary.processorMaker);
    CopyText(known, "resolution", summary.displayResolution);
    const std::string* memory = FindText(known, "video-memory");
    if (memory) summary.videoMemory = memory->empty() ? std::string() : Megabytes(*memory);
    if (summary.diskCapacity == "0") CopyText(known, "disk-capacity", summary.diskCapacity);
  }
}

}  // namespace

void CollectAssetSummary(const PropertyList& list, AssetSummary& summary) {
  CollectSoftware(list, summary);
  CollectHardware(list, summary);
  CollectDisplay(list, summary);
  CollectDisks(list, summary);
  CollectModernKeys(list, summary);
}
