// Turns the tree of USB devices into two lists: sticks and other disks with removable media go to "Storage" with their
// volumes, every other device at the end of a branch to "Peripherals" / "USB". Hubs and controllers are only walked.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "main/collect/command_runner.h"
#include "sections/inventory_tags.h"
#include "sections/logical_disks.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr std::size_t kDiskutilChunk = 200;  // bytes read at a time
constexpr std::string_view kModelLabel = "Device / Media Name:";
constexpr std::string_view kMedia = " Media";
constexpr char kRemovableMedium[] = "2";  // the media type of every removable disk

constexpr KeyCopy kStickCopies[] = {
    {"bcd_device", "bcd-device"},         {"serial_num", "serial"},
    {"manufacturer", "manufacturer"},     {"bus_power", "bus-power"},
    {"bus_power_used", "bus-power-used"},
};

constexpr KeyCopy kStickVolumeCopies[] = {
    {"file_system", "file-sys"}, {"bsd_name", "bsd-name"}, {"mount_point", "mount-point"}};

constexpr KeyCopy kPeripheralCopies[] = {
    {"product_id", "product-id"},         {"vendor_id", "vendor-id"}, {"bcd_device", "bcd-device"},
    {"serial_num", "serial-number"},      {"manufacturer", "manuf"},  {"bus_power", "bus-power"},
    {"bus_power_used", "bus-power-used"},
};

struct Speed {
  const char* name;
  const char* shown;
  const char* units;  // null for megabits per second
};

constexpr Speed kPeripheralSpeeds[] = {
    {"full_speed", "12", nullptr},
    {"low_speed", "1.5", nullptr},
    {"high_speed", "480", nullptr},
    {"super_speed", "5", "Gbit-s"},
};

// Mac OS X 10.5 puts a letter and an underscore in front of what a device says of itself, as in "a_product_id", but not
// of every key: "bsd_name" is "bsd_name".
std::string_view WithoutLetter(std::string_view key) { return key.size() > 1 && key[1] == '_' ? key.substr(2) : key; }

template <std::size_t N>
void CopyListed(const Attribute& source, Tag& target, const KeyCopy (&copies)[N]) {
  const std::string_view key = WithoutLetter(source.name);
  for (const KeyCopy& copy : copies)
    if (key == copy.key) SetAttribute(target, copy.attribute, CopyValue(source.value));
}

// deliberate: codes, unlike the speeds of peripherals
const char* StickSpeed(const std::string& speed) {
  if (speed == "low_speed") return "0";
  return speed == "full_speed" ? "1" : "2";
}

void SetPeripheralSpeed(Tag& device, const std::string& name) {
  for (const Speed& speed : kPeripheralSpeeds)
    if (name == speed.name)
      SetAttribute(device, "device-speed", MakeTextValue(speed.shown), speed.units ? "units" : nullptr, speed.units);
}

// Cut off to whole gigabytes; above 11 of them a fraction above 0.4 counts as a whole.
double StickGigabytes(const std::string& size) {
  const double gigabytes = ParseSizeGB(size);
  return gigabytes > 11.0 && std::fmod(gigabytes, 1.0) > 0.4 ? gigabytes + 1.0 : gigabytes;
}

void SetStickSize(Tag& stick, const Tag& item, const Attribute& size) {
  if (size.value.kind != ValueKind::String) return;
  Attribute* attribute = SetAttribute(stick, "size", MakeIntValue(TruncateToInt64(StickGigabytes(size.value.text))));
  if (HasKey(item, "size_in_bytes"))
    AddAttributeProperty(*attribute, "base-value", std::to_string(IntegerOfKey(item, "size_in_bytes")));
}

// Where the first " Media" at the end of a line begins.
std::size_t FindMediaAtLineEnd(const std::string& text) {
  std::size_t at = text.find(kMedia);
  while (at != std::string::npos && at + kMedia.size() < text.size() && text[at + kMedia.size()] != '\n')
    at = text.find(kMedia, at + 1);
  return at;
}

// The model in what diskutil says of a disk; no value when it names none.
std::optional<std::string> ModelOf(const std::string& report) {
  const std::size_t label = report.find(kModelLabel);
  if (label == std::string::npos) return std::nullopt;
  const std::string rest = report.substr(label + kModelLabel.size());
  std::size_t end = FindMediaAtLineEnd(rest);
  if (end == std::string::npos) end = rest.find(" Volume Name: ");
  if (end == std::string::npos) end = rest.find('\n');
  return Trimmed(rest.substr(0, end), " \t\r\n");
}

bool IsPlainName(const std::string& name) {
  const auto isPlain = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  };
  return !name.empty() && std::all_of(name.begin(), name.end(), isPlain);
}

void SetStickModel(Tag& stick, const std::string& bsdName) {
  if (!IsPlainName(bsdName)) return;  // the name goes to a shell
  if (std::optional<std::string> model = ModelOf(RunCommand("diskutil info /dev/" + bsdName, kDiskutilChunk)))
    SetAttribute(stick, "model", MakeTextValue(std::move(*model)));
}

void SetStickAttribute(Tag& stick, const Tag& item, const Attribute& source) {
  const std::string_view key = WithoutLetter(source.name);
  if (key == "device_speed")
    SetText(stick, "device-speed", StickSpeed(TextOf(&source)));
  else if (key == "size")
    SetStickSize(stick, item, source);
  else if (key == "bsd_name")
    SetStickModel(stick, TextOf(&source));
  else
    CopyListed(source, stick, kStickCopies);
}

void WriteStickVolume(Tag& partitions, const Tag& volume) {
  const int number = NextFreeNumber(partitions, "partition:");
  Tag* partition = SetNamedChild(partitions, "partition:" + std::to_string(number), volume);
  const VolumeSpace space = ReadVolumeSpace(volume);
  CopyKeys(volume, *partition, kStickVolumeCopies);
  WriteSpaceQuantities(*partition, space);
  WriteSpacePercentages(*partition, space);
}

// The number of mounted volumes, each of which became a partition.
int WriteStickVolumes(TagTree& inventoryTree, const Tag& item) {
  const Tag* volumes = FindChild(item, "volumes");
  if (!volumes) return 0;
  int count = 0;
  for (const auto& volume : volumes->children) {
    if (!HasKey(*volume, "_name") || !HasKey(*volume, "free_space")) continue;
    WriteStickVolume(*GetOrAddInSection(inventoryTree, "Storage", "Logical-disks"), *volume);
    ++count;
  }
  return count;
}

void WriteStick(TagTree& inventoryTree, const Tag& item) {
  Tag* disks = GetOrAddInSection(inventoryTree, "Storage", "Physical-disks");
  Tag* stick = SetNamedChild(*disks, "Removable:" + std::to_string(NextFreeNumber(*disks, "Removable:")), item);
  SetText(*stick, "media-type", kRemovableMedium);
  for (const auto& attribute : item.attributes) SetStickAttribute(*stick, item, *attribute);
  SetText(*stick, "interface", "USB");
  SetNumber(*stick, "partitions", WriteStickVolumes(inventoryTree, item));
}

void WritePeripheral(TagTree& inventoryTree, const Tag& item, int number) {
  Tag* devices = GetOrAddInSection(inventoryTree, "Peripherals", "USB");
  Tag* device = SetNamedChild(*devices, "Device:" + std::to_string(number), item);
  for (const auto& attribute : item.attributes) {
    if (WithoutLetter(attribute->name) == "device_speed")
      SetPeripheralSpeed(*device, TextOf(attribute.get()));
    else
      CopyListed(*attribute, *device, kPeripheralCopies);
  }
}

// `counter` is the number of the last peripheral, over the whole tree of devices.
void WriteUsbItem(TagTree& inventoryTree, const Tag& item, int& counter) {
  const Tag* below = FindChild(item, "_items");
  if (SaysYes(item, "removable_media", OnlyBy("yes"))) {
    WriteStick(inventoryTree, item);
  } else if (!below) {
    WritePeripheral(inventoryTree, item, ++counter);
  } else {
    for (const auto& child : below->children) WriteUsbItem(inventoryTree, *child, counter);
  }
}

}  // namespace

void BuildUsbSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* items = FindItems(rawTree, "SPUSBDataType");
  if (!items) return;
  int counter = 0;
  for (const auto& item : items->children) WriteUsbItem(inventoryTree, *item, counter);
}
