// The disks of newer systems in older keys: what a USB device holds under "Media", and the volumes of APFS containers,
// which stand in the list of mounted volumes only.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "main/collect/modern_keys.h"
#include "main/collect/modern_steps.h"

namespace {

constexpr std::int64_t kBytesPerDecimalGB = 1000000000;
constexpr std::string_view kSystemVolumes = "/System/Volumes";
constexpr const char* kMediumKeys[] = {"bsd_name", "size", "size_in_bytes", "volumes"};
constexpr std::size_t kMostUnits = 16;  // of one USB device

bool IsYes(const PropertyList& node, const char* key) { return TextUnderKey(node, key) == "yes"; }

bool IsMedium(const PropertyList& medium) {
  return FindText(&medium, "bsd_name") || FindKey(&medium, "size") || FindKey(&medium, "size_in_bytes");
}

// The disks under "Media" of a device that does not describe its disk itself.
std::vector<PropertyList> MediaOf(const PropertyList& device) {
  std::vector<PropertyList> disks;
  const PropertyList* media = FindKey(&device, "Media", PropertyListKind::Array);
  if (!media || (IsYes(device, "removable_media") && IsMedium(device))) return disks;
  for (const PropertyList& medium : media->items)
    if (IsMedium(medium) && disks.size() < kMostUnits) disks.push_back(medium);
  return disks;
}

// What the device says of itself, without what it holds.
PropertyList ScalarsOf(const PropertyList& device) {
  PropertyList copy = MakeNode(PropertyListKind::Dictionary);
  for (std::size_t i = 0; i < device.items.size(); ++i) {
    if (!device.items[i].items.empty()) continue;
    copy.keys.push_back(device.keys[i]);
    copy.items.push_back(device.items[i]);
  }
  return copy;
}

PropertyList DiskOf(PropertyList device, const PropertyList& medium) {
  if (PropertyList* answer = FindKeyToChange(device, "removable_media", PropertyListKind::Text)) answer->text = "yes";
  AddMissing(device, "removable_media", MakeText("yes"));
  for (const char* key : kMediumKeys) CopyMissing(device, key, medium, {key});
  return device;
}

// Each disk becomes a device of its own in the place of the one that holds it; what hangs on that one follows.
void SpreadDisks(PropertyList& holder) {
  PropertyList* devices = FindKeyToChange(holder, "_items", PropertyListKind::Array);
  if (!devices) return;
  std::vector<PropertyList> spread;
  for (PropertyList& device : devices->items) {
    SpreadDisks(device);
    const std::vector<PropertyList> media = MediaOf(device);
    const PropertyList scalars = media.empty() ? PropertyList() : ScalarsOf(device);
    for (const PropertyList& medium : media) spread.push_back(DiskOf(scalars, medium));
    if (media.empty()) {
      spread.push_back(std::move(device));
    } else {
      for (PropertyList* below : ItemsOf(device)) spread.push_back(std::move(*below));
    }
  }
  devices->items = std::move(spread);
}

bool IsSerialDisk(const PropertyList& device) {
  const std::string* status = FindText(&device, "smart_status");
  return status && *status != "Not Supported";
}

struct Bus {
  const char* dataType;
  bool (*listsVolumes)(const PropertyList& device);  // whether the inventory has the volumes of a device
};

constexpr Bus kBuses[] = {
    {"SPSerialATADataType", IsSerialDisk},
    {"SPParallelSCSIDataType", [](const PropertyList&) { return true; }},
    {"SPNVMeDataType", [](const PropertyList&) { return true; }},
    {"SPUSBDataType", [](const PropertyList& device) { return IsYes(device, "removable_media"); }},
};

struct ListedVolumes {
  std::map<std::string, PropertyList*> byDevice;  // its BSD name
  std::set<std::string> names;
};

void CollectVolumes(PropertyList& holder, const Bus& bus, ListedVolumes& listed) {
  if (bus.listsVolumes(holder)) {
    for (PropertyList* volume : ElementsUnder(holder, "volumes")) {
      if (const std::string* device = FindText(volume, "bsd_name")) listed.byDevice.emplace(*device, volume);
      listed.names.insert(TextUnderKey(*volume, "_name"));
    }
  }
  for (PropertyList* below : ItemsOf(holder)) CollectVolumes(*below, bus, listed);
}

ListedVolumes VolumesOfDisks(PropertyList& list) {
  ListedVolumes listed;
  for (const Bus& bus : kBuses)
    for (PropertyList* result : ResultsOf(list, bus.dataType)) CollectVolumes(*result, bus, listed);
  return listed;
}

// Mounted as a volume of its own: what lies in the system's folder of volumes shares the space of "/".
bool IsMounted(const PropertyList& volume) {
  const std::string& place = TextUnderKey(volume, "mount_point");
  const bool systemOwn = place.compare(0, kSystemVolumes.size(), kSystemVolumes) == 0 &&
                         (place.size() == kSystemVolumes.size() || place[kSystemVolumes.size()] == '/');
  return !place.empty() && !systemOwn;
}

// CoreStorage volumes are found by way of the partitions that they lie on.
bool LiesOnPartition(const PropertyList& volume, const ListedVolumes& listed) {
  constexpr char kPhysicalVolumes[] = "com.apple.corestorage.pv";
  const PropertyList* one = FindKey(&volume, kPhysicalVolumes, PropertyListKind::Dictionary);
  if (one) return listed.names.count(TextUnderKey(*one, "_name")) != 0;
  const PropertyList* several = FindKey(&volume, kPhysicalVolumes, PropertyListKind::Array);
  return several && std::any_of(several->items.begin(), several->items.end(), [&](const PropertyList& part) {
           return listed.names.count(TextUnderKey(part, "_name")) != 0;
         });
}

// What a disk's list does not say of a volume that is mounted.
void CompleteVolume(PropertyList& volume, const PropertyList& mounted) {
  for (const char* key : {"_name", "file_system", "mount_point"}) CopyMissing(volume, key, mounted, {key});
  if (!FindKey(&volume, "size") && !FindKey(&volume, "size_in_bytes"))
    CopyMissing(volume, "size_in_bytes", mounted, {"size_in_bytes"});
  if (FindKey(&volume, "free_space") || FindKey(&volume, "free_space_in_bytes")) return;
  CopyMissing(volume, "free_space_in_bytes", mounted, {"free_space_in_bytes"});
  CopyMissing(volume, "free_space", mounted, {"free_space"});
  if (FindKey(&volume, "free_space_in_bytes")) AddMissing(volume, "free_space", MakeText(""));  // tells a mounted one
}

}  // namespace

void AddNvmeKeys(PropertyList& result) {
  std::int64_t capacity = 0;
  for (PropertyList* controller : ItemsOf(result)) {
    for (const PropertyList* disk : ItemsOf(*controller)) {
      const PropertyList* size = FindKey(disk, "size_in_bytes", PropertyListKind::Number);
      if (!size || IsFloating(size->numberType) || IsYes(*disk, "removable_media")) continue;
      capacity += std::max<std::int64_t>(size->integer, 0) / kBytesPerDecimalGB;
    }
  }
  capacity = std::min<std::int64_t>(capacity, std::numeric_limits<std::uint32_t>::max());
  if (capacity > 0) AddToSummary(result, "disk-capacity", std::to_string(capacity));
}

void AddUsbKeys(PropertyList& result) { SpreadDisks(result); }

void AddStorageKeys(PropertyList& list) {
  const ListedVolumes listed = VolumesOfDisks(list);
  for (PropertyList* result : ResultsOf(list, "SPStorageDataType")) {
    for (PropertyList* volume : ItemsOf(*result)) {
      if (!IsMounted(*volume) || LiesOnPartition(*volume, listed)) continue;
      const auto known = listed.byDevice.find(TextUnderKey(*volume, "bsd_name"));
      if (known != listed.byDevice.end())
        CompleteVolume(*known->second, *volume);
      else
        AddMissing(*volume, kVolumeKey, MakeText("yes"));
    }
  }
}
