// Turns the drives of four buses into "Storage" / "Physical-disks", and the volumes of each disk into "Logical-disks".
// Disks, other drives and partitions are numbered in the order in which the buses list them.
#include <cstdint>
#include <string>
#include <utility>

#include "main/collect/modern_keys.h"
#include "sections/core_storage.h"
#include "sections/inventory_tags.h"
#include "sections/logical_disks.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

enum class Drives { Disks, Others, BySmartStatus };
enum class MediaType { Number, Text };

struct Bus {
  const char* dataType;
  int levels;  // of items above a device
  Drives drives;
  const char* interface;  // of its disks
  MediaType mediaType;    // deliberate: a number on some buses, text on another
};

constexpr int kFixedMedium = 3;  // the media type of every disk

constexpr Bus kBuses[] = {
    {"SPSerialATADataType", 1, Drives::BySmartStatus, "SATA", MediaType::Number},
    {"SPParallelSCSIDataType", 2, Drives::Disks, "SCSI", MediaType::Text},
    {"SPParallelATADataType", 1, Drives::Others, "", MediaType::Number},
    {"SPNVMeDataType", 1, Drives::Disks, "PCI-Express", MediaType::Number},
};

struct Walk {
  TagTree& inventoryTree;
  const TagTree& rawTree;
  int disk = 1;
  int other = 1;
  int partition = 1;
};

// A drive without a medium of its own reports no S.M.A.R.T. status.
bool IsDisk(const Tag& device, const Bus& bus) {
  if (bus.drives != Drives::BySmartStatus) return bus.drives == Drives::Disks;
  return HasKey(device, "smart_status") && TextOfKey(device, "smart_status") != "Not Supported";
}

Tag* AddDriveTag(Walk& walk, const char* base, int& number) {
  Tag* drives = GetOrAddInSection(walk.inventoryTree, "Storage", "Physical-disks");
  return GetOrAddChild(*drives, base + std::to_string(number++));
}

// Whole decimal gigabytes, cut off from a byte count but rounded from a text; the bytes as a property.
void SetSize(const Tag& device, Tag& disk) {
  std::int64_t bytes = 0;
  double gigabytes = 0;
  if (HasKey(device, "size_in_bytes")) {
    bytes = IntegerOfKey(device, "size_in_bytes");
    gigabytes = static_cast<double>(static_cast<std::uint64_t>(bytes)) / 1000 / 10000000 * 10;  // in these steps
  } else if (HasKey(device, "size")) {
    bytes = ParseSizeBytes(TextOfKey(device, "size"));
    gigabytes = SizeToDecimalGB(TextOfKey(device, "size"), true);
  } else {
    return;
  }
  SetAttribute(disk, "size", MakeIntValue(TruncateToInt64(gigabytes)), "base-value", std::to_string(bytes).c_str());
}

void WritePartition(Walk& walk, const Tag& volume) {
  Tag* partitions = GetOrAddInSection(walk.inventoryTree, "Storage", "Logical-disks");
  Tag* partition = SetNamedChild(*partitions, "partition:" + std::to_string(walk.partition++), volume);
  if (TextOfKey(volume, "iocontent") == "Apple_CoreStorage") {
    if (WriteCoreStorageVolume(walk.rawTree, *partition)) return;
    AddTagProperty(*partition, "kind", "encrypted");
  }
  WriteLogicalDisk(*partition, volume);
}

// The number of partitions that the disk's volumes became.
int WritePartitions(Walk& walk, const Tag& device) {
  const Tag* volumes = FindChild(device, "volumes");
  if (!volumes) return 0;
  const int first = walk.partition;
  for (const auto& volume : volumes->children)
    if (HasKey(*volume, "_name")) WritePartition(walk, *volume);
  return walk.partition - first;
}

void SetMediaType(Tag& disk, MediaType type) {
  Value value = type == MediaType::Number ? MakeIntValue(kFixedMedium) : MakeTextValue(std::to_string(kFixedMedium));
  SetAttribute(disk, "mediatype", std::move(value), "type", "media-type");
}

void WriteDisk(Walk& walk, const Bus& bus, const Tag& device) {
  Tag* disk = AddDriveTag(walk, "HDD:", walk.disk);
  CopyKey(device, *disk, {"device_model", "model"});
  SetText(*disk, "interface", bus.interface);
  SetMediaType(*disk, bus.mediaType);
  SetSize(device, *disk);
  CopyKey(device, *disk, {"device_serial", "serial"});
  CopyKey(device, *disk, {"device_revision", "fw-rev"});
  SetNumber(*disk, "partitions", WritePartitions(walk, device));
}

void WriteDrive(Walk& walk, const Bus& bus, const Tag& device) {
  if (IsDisk(device, bus)) return WriteDisk(walk, bus, device);
  CopyKey(device, *AddDriveTag(walk, "CD:", walk.other), {"device_model", "model"});
}

// `levels`: how many of items lie between these and the devices.
void WriteDrives(Walk& walk, const Bus& bus, const Tag& items, int levels) {
  for (const auto& item : items.children) {
    const Tag* below = FindChild(*item, "_items");
    if (levels == 0)
      WriteDrive(walk, bus, *item);
    else if (below)
      WriteDrives(walk, bus, *below, levels - 1);
  }
}

// Volumes of containers that share the space of a disk.
void WriteMountedVolumes(Walk& walk) {
  const Tag* volumes = FindItems(walk.rawTree, "SPStorageDataType");
  if (!volumes) return;
  for (const auto& volume : volumes->children)
    if (HasKey(*volume, kVolumeKey)) WritePartition(walk, *volume);
}

}  // namespace

void BuildPhysicalDisksSection(TagTree& inventoryTree, const TagTree& rawTree) {
  Walk walk{inventoryTree, rawTree};
  for (const Bus& bus : kBuses)
    if (const Tag* items = FindItems(rawTree, bus.dataType)) WriteDrives(walk, bus, *items, bus.levels);
  WriteMountedVolumes(walk);
}
