// "Processors": one child for each processor package, all of them described by the same hardware data.
#include <cstdint>
#include <string>
#include <utility>

#include "main/collect/modern_keys.h"
#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr std::int64_t kMaxPackages = 4096;  // above it the number is not believed

// Of a chip, unlike the usual processors, nothing is written that is not known.
bool IsChip(const Tag& hardware) { return HasKey(hardware, kChipKey); }

// 0 when it is not known; the usual processors have at least one core.
std::int64_t CoreCount(const Tag& hardware) {
  for (const char* key : {"number_processors", "number_cpus"})
    if (HasKey(hardware, key)) return IntegerOfKey(hardware, key);
  return IsChip(hardware) ? 0 : 1;
}

enum class CacheShare { Whole, PerPackage, CoresPerPackage };

struct CacheKey {
  const char* key;
  const char* attribute;
  CacheShare share;
};

// In this order: the last key that is present decides.
constexpr CacheKey kCacheKeys[] = {
    {"l2_cache", "l2-cache-size", CacheShare::PerPackage},
    {"l2_cache_core", "l2-cache-size", CacheShare::CoresPerPackage},
    {"l2_cache_size", "l2-cache-size", CacheShare::CoresPerPackage},
    {"l2_cache_share", "l2-cache-size", CacheShare::Whole},
    {"l3_cache", "l3-cache-size", CacheShare::PerPackage},
    {"l3_cache_core", "l3-cache-size", CacheShare::CoresPerPackage},
    {"l3_cache_size", "l3-cache-size", CacheShare::CoresPerPackage},
};

std::int64_t CacheKilobytes(double kilobytes, CacheShare share, std::int64_t cores, std::int64_t packages) {
  switch (share) {
    case CacheShare::Whole:
      break;
    case CacheShare::PerPackage:
      return TruncateToInt64(kilobytes) / packages;
    case CacheShare::CoresPerPackage:
      return TruncateToInt64(static_cast<double>(cores) * kilobytes / static_cast<double>(packages));
  }
  return TruncateToInt64(kilobytes);
}

// deliberate: single precision, so that 2.3 GHz gives the single-precision product
std::int64_t Megahertz(const std::string& speed) {
  return TruncateToInt64(static_cast<float>(NumberAtStart(FirstWord(speed))) * 1000.0f);
}

void WriteProcessor(Tag& processors, const Tag& hardware, std::int64_t number, std::int64_t packages) {
  const std::string n = std::to_string(number);
  Value type = HasKey(hardware, "cpu_type") ? CopyOfKey(hardware, "cpu_type") : MakeTextValue("CPU #" + n);
  Tag* processor = SetChildValue(processors, "Processor:" + n, std::move(type));
  const std::int64_t cores = CoreCount(hardware);
  if (cores != 0 || !IsChip(hardware)) SetNumber(*processor, "core-count", cores);
  for (const CacheKey& cache : kCacheKeys) {
    if (!HasKey(hardware, cache.key)) continue;
    const double kilobytes = ParseSizeKB(TextOfKey(hardware, cache.key));
    SetNumber(*processor, cache.attribute, CacheKilobytes(kilobytes, cache.share, cores, packages));
  }
  if (HasKey(hardware, "current_processor_speed") || !IsChip(hardware))
    SetNumber(*processor, "current-clock-speed", Megahertz(TextOfKey(hardware, "current_processor_speed")));
}

}  // namespace

void BuildProcessorsSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* hardware = FirstItem(rawTree, "SPHardwareDataType");
  if (!hardware) return;
  const std::int64_t packages = HasKey(*hardware, "packages") ? IntegerOfKey(*hardware, "packages") : 1;
  if (packages < 1 || packages > kMaxPackages) return;
  Tag* processors = GetOrAddChild(RootOf(inventoryTree), "Processors");
  for (std::int64_t n = 1; n <= packages; ++n) WriteProcessor(*processors, *hardware, n, packages);
}
