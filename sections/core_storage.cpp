// A disk's own list of volumes knows a CoreStorage partition by its BSD name only; the list of all volumes knows on
// which partitions each one lies. This finds the volume and describes it in the partition's place.
#include "sections/core_storage.h"

#include <algorithm>
#include <string>

#include "sections/logical_disks.h"
#include "sections/raw_items.h"

namespace {

bool IsNamed(const Tag& physicalVolume, const std::string& name) {
  const Attribute* attribute = FindAttribute(physicalVolume, "_name");
  return attribute && attribute->value.kind == ValueKind::String && attribute->value.text == name;
}

// A volume lies on one partition or on several.
bool LiesOn(const Tag& volume, const std::string& partition) {
  const Tag* physical = FindChild(volume, "com.apple.corestorage.pv");
  if (!physical) return false;
  if (IsNamed(*physical, partition)) return true;
  return std::any_of(physical->children.begin(), physical->children.end(),
                     [&](const auto& one) { return IsNamed(*one, partition); });
}

const Tag* FindVolumeOn(const TagTree& rawTree, const std::string& partition) {
  const Tag* volumes = FindItems(rawTree, "SPStorageDataType");
  if (!volumes) return nullptr;
  for (const auto& volume : volumes->children)
    if (LiesOn(*volume, partition)) return volume.get();
  return nullptr;
}

bool IsEncrypted(const Tag& volume) {
  const Tag* logical = FindChild(volume, "com.apple.corestorage.lv");
  return logical && TextOfKey(*logical, "com.apple.corestorage.lv.encrypted") == "yes";
}

}  // namespace

bool WriteCoreStorageVolume(const TagTree& rawTree, Tag& partitionTag) {
  if (!partitionTag.value || partitionTag.value->kind != ValueKind::String) return false;
  const Tag* volume = FindVolumeOn(rawTree, partitionTag.value->text);
  if (!volume) return false;
  if (HasKey(*volume, "_name")) SetTagValue(partitionTag, CopyOfKey(*volume, "_name"));
  WriteLogicalDisk(partitionTag, *volume);
  if (IsEncrypted(*volume)) AddTagProperty(partitionTag, "kind", "encrypted");
  return true;
}
