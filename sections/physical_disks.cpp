// Turns the drives of four buses into "Storage" / "Physical-disks", and the volumes of each disk into "Logical-disks".
// Disks, other drives and partitions are numbered in the order in which the buses list them.
#include "sections/core_storage.h"
#include "sections/items.h"
#include "sections/logical_disks.h"
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
void AddSize(const Tag& device, Tag& disk) {
  std::int64_t bytes = 0;
  double gigabytes = 0;
  if (HasKey(device, "size_in_bytes")) {
    bytes = IntegerOfKey(device, "size_in_bytes");
    gigabytes = static_cast<double>(static_cast<std::uint64_t>(bytes)) / 1000 / 10000000 * 10;
  } else if (HasKey(device, "size")) {
    bytes = ParseSizeBytes(TextOfKey(device, "size"));
    gigabytes = SizeToDecimalGB(TextOfKey(device, "size"), true);
  } else {
    return;
  }
  SetAttribute(disk, "size", MakeIntValue(TruncateToInt64(gigabytes)), "base-value", std::to_string(bytes).c_str());
}

void AddPartition(Walk& walk, const Tag& volume) {
  Tag* partitions = GetOrAddInSection(walk.inventoryTree, "Storage", "Logical-disks");
  Tag* partition = SetNamedChild(*partitions, "partition:" + std::to_string(walk.partition++), volume);
  if (TextOfKey(volume, "iocontent") == "Apple_CoreStorage") {
    if (ResolveCoreStorage(walk.rawTree, *partition)) return;
    AddTagProperty(*partition, "kind", "encrypted");
  }
  FillLogicalDisk(*partition, volume);
}

// The number of partitions that the disk's volumes became.
int AddPartitions(Walk& walk, const Tag& device) {
  const Tag* volumes = FindChild(device, "volumes");
  if (!volumes) return 0;
  const int first = walk.partition;
  for (const auto& volume : volumes->children)
    if (HasKey(*volume, "_name")) AddPartition(walk, *volume);
  return walk.partition - first;
}

void AddDisk(Walk& walk, const Bus& bus, const Tag& device) {
  Tag* disk = AddDriveTag(walk, "HDD:", walk.disk);
  CopyKey(device, *disk, {"device_model", "model"});
  SetAttribute(*disk, "interface", MakeTextValue(bus.interface));
  SetAttribute(*disk, "mediatype", bus.mediaType == MediaType::Number ? MakeIntValue(3) : MakeTextValue("3"), "type",
               "media-type");
  AddSize(device, *disk);
  CopyKey(device, *disk, {"device_serial", "serial"});
  CopyKey(device, *disk, {"device_revision", "fw-rev"});
  SetAttribute(*disk, "partitions", MakeIntValue(AddPartitions(walk, device)));
}

void AddDrive(Walk& walk, const Bus& bus, const Tag& device) {
  if (IsDisk(device, bus)) return AddDisk(walk, bus, device);
  CopyKey(device, *AddDriveTag(walk, "CD:", walk.other), {"device_model", "model"});
}

void AddDrivesBelow(Walk& walk, const Bus& bus, const Tag* holder, int levels) {
  const Tag* items = FindItems(holder);
  if (!items) return;
  for (const auto& item : items->children) {
    if (levels > 0)
      AddDrivesBelow(walk, bus, item.get(), levels - 1);
    else
      AddDrive(walk, bus, *item);
  }
}

}  // namespace

void BuildPhysicalDisksSection(TagTree& inventoryTree, const TagTree& rawTree) {
  Walk walk{inventoryTree, rawTree};
  for (const Bus& bus : kBuses) AddDrivesBelow(walk, bus, FindChild(RootOf(rawTree), bus.dataType), bus.levels);
}
