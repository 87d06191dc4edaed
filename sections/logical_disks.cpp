// Turns a volume's byte counts into shown numbers: sizes in megabytes or gigabytes that keep the byte count as a
// property, and percentages of the whole.
#include "sections/logical_disks.h"

#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>

#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "zxml/value_text.h"

namespace {

std::string Fixed(double number, int digits) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", digits, number);
  return text;
}

// The nearest limit when the difference is out of range.
std::int64_t Difference(std::int64_t a, std::int64_t b) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (b > 0 && a < Limits::min() + b) return Limits::min();
  if (b < 0 && a > Limits::max() + b) return Limits::max();
  return a - b;
}

std::optional<std::int64_t> ReadBytes(const Tag& volume, const char* bytesKey, const char* textKey) {
  if (HasKey(volume, bytesKey)) return IntegerOfKey(volume, bytesKey);
  if (HasKey(volume, textKey)) return ParseSizeBytes(TextOfKey(volume, textKey));
  return std::nullopt;
}

void WriteQuantity(Tag& partition, const char* name, std::int64_t bytes) {
  const double gigabytes = static_cast<double>(bytes) / kBytesPerGB;
  const bool small = gigabytes < 1;
  const std::string shown = small ? Fixed(gigabytes * 1024, 1) : Fixed(gigabytes, 2);
  Attribute* quantity =
      SetAttribute(partition, name, MakeTextValue(shown), "base-value", std::to_string(bytes).c_str());
  if (small) AddAttributeProperty(*quantity, "units", "MB");
}

}  // namespace

VolumeSpace ReadVolumeSpace(const Tag& volumeItem) {
  return {ReadBytes(volumeItem, "size_in_bytes", "size"), ReadBytes(volumeItem, "free_space_in_bytes", "free_space")};
}

void WriteSpaceQuantities(Tag& partitionTag, const VolumeSpace& space) {
  if (space.size) WriteQuantity(partitionTag, "size", *space.size);
  if (space.free) WriteQuantity(partitionTag, "free", *space.free);
  if (space.size && space.free) WriteQuantity(partitionTag, "used", Difference(*space.size, *space.free));
}

void WriteSpacePercentages(Tag& partitionTag, const VolumeSpace& space) {
  if (!space.free || space.size.value_or(0) == 0) return;
  const double size = static_cast<double>(*space.size) / kBytesPerGB;
  const double used = size - static_cast<double>(*space.free) / kBytesPerGB;
  const std::int64_t percent = TruncateToInt64(used / size * 100);
  SetNumber(partitionTag, "free%", Difference(100, percent));
  Attribute* attribute = SetAttribute(partitionTag, "used%", MakeIntValue(percent), "pos", Fixed(used, 2).c_str());
  AddAttributeProperty(*attribute, "max", Fixed(size, 2));
  AddAttributeProperty(*attribute, "val-units", "GB");
}

void WriteLogicalDisk(Tag& partitionTag, const Tag& volumeItem) {
  const VolumeSpace space = ReadVolumeSpace(volumeItem);
  AddTagProperty(partitionTag, "file-sys", TextOfKey(volumeItem, "file_system"));
  WriteSpaceQuantities(partitionTag, space);
  CopyKey(volumeItem, partitionTag, {"mount_point", "mount-point"});
  WriteSpacePercentages(partitionTag, space);
}
