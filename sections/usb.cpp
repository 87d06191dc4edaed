// Turns the tree of USB devices into two lists: sticks and other disks with removable media go to "Storage" with their
// volumes, every other device at the end of a branch to "Peripherals" / "USB". Hubs and controllers are only walked.
#include <algorithm>
#include <cmath>
#include <optional>

#include "main/collect/command_runner.h"
#include "sections/items.h"
#include "sections/logical_disks.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr std::size_t kDiskutilChunk = 200;
constexpr char kModelLabel[] = "Device / Media Name:";

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

// Mac OS X 10.5 puts a letter and an underscore in front of each key.
std::string_view WithoutLetter(std::string_view key) { return key.size() > 1 && key[1] == '_' ? key.substr(2) : key; }

template <std::size_t N>
void CopyListed(const Attribute& source, Tag& target, const KeyCopy (&copies)[N]) {
  const std::string_view key = WithoutLetter(source.name);
  for (const KeyCopy& copy : copies)
    if (key == copy.key) SetAttribute(target, copy.attribute, CopyValue(source.value));
}

const char* StickSpeed(const std::string& speed) {  // deliberate: codes, unlike the speeds of peripherals
  if (speed == "full_speed") return "1";
  return speed == "low_speed" ? "0" : "2";
}

void SetPeripheralSpeed(Tag& device, const std::string& name) {
  for (const Speed& speed : kPeripheralSpeeds)
    if (name == speed.name)
      SetAttribute(device, "device-speed", MakeTextValue(speed.shown), speed.units ? "units" : nullptr, speed.units);
}

void SetStickSize(Tag& stick, const Tag& item, const Attribute& size) {
  if (size.value.kind != ValueKind::String) return;
  double gigabytes = ParseSizeGB(size.value.text);
  if (gigabytes > 11.0 && std::fmod(gigabytes, 1.0) > 0.4) gigabytes += 1.0;  // deliberate: small sticks stay cut off
  Attribute* attribute = SetAttribute(stick, "size", MakeIntValue(TruncateToInt64(gigabytes)));
  if (HasKey(item, "size_in_bytes"))
    AddAttributeProperty(*attribute, "base-value", std::to_string(IntegerOfKey(item, "size_in_bytes")));
}

// Where the first " Media" at the end of a line begins.
std::size_t FindMediaAtLineEnd(const std::string& text) {
  constexpr std::string_view kMedia = " Media";
  std::size_t at = text.find(kMedia);
  while (at != std::string::npos && at + kMedia.size() < text.size() && text[at + kMedia.size()] != '\n')
    at = text.find(kMedia, at + 1);
  return at;
}

// The model in what diskutil says of a disk; no value when it names none.
std::optional<std::string> ModelOf(const std::string& report) {
  const std::size_t label = report.find(kModelLabel);
  if (label == std::string::npos) return std::nullopt;
  const std::string rest = report.substr(label + sizeof kModelLabel - 1);
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
    SetAttribute(stick, "device-speed", MakeTextValue(StickSpeed(TextOf(&source))));
  else if (key == "size")
    SetStickSize(stick, item, source);
  else if (key == "bsd_name")
    SetStickModel(stick, TextOf(&source));
  else
    CopyListed(source, stick, kStickCopies);
}

void AddStickVolume(Tag& partitions, const Tag& volume) {
  const int number = NextFreeNumber(partitions, "partition:");
  Tag* partition = SetNamedChild(partitions, "partition:" + std::to_string(number), volume);
  const VolumeSpace space = ReadVolumeSpace(volume);
  CopyKeys(volume, *partition, kStickVolumeCopies);
  AddSpaceQuantities(*partition, space);
  AddSpacePercentages(*partition, space);
}

// The number of mounted volumes, each of which became a partition.
int AddStickVolumes(TagTree& inventoryTree, const Tag& item) {
  const Tag* volumes = FindChild(item, "volumes");
  if (!volumes) return 0;
  int count = 0;
  for (const auto& volume : volumes->children) {
    if (!HasKey(*volume, "_name") || !HasKey(*volume, "free_space")) continue;
    AddStickVolume(*GetOrAddInSection(inventoryTree, "Storage", "Logical-disks"), *volume);
    ++count;
  }
  return count;
}

void AddStick(TagTree& inventoryTree, const Tag& item) {
  Tag* disks = GetOrAddInSection(inventoryTree, "Storage", "Physical-disks");
  Tag* stick = SetNamedChild(*disks, "Removable:" + std::to_string(NextFreeNumber(*disks, "Removable:")), item);
  SetAttribute(*stick, "media-type", MakeTextValue("2"));
  for (const auto& attribute : item.attributes) SetStickAttribute(*stick, item, *attribute);
  SetAttribute(*stick, "interface", MakeTextValue("USB"));
  SetAttribute(*stick, "partitions", MakeIntValue(AddStickVolumes(inventoryTree, item)));
}

void AddPeripheral(TagTree& inventoryTree, const Tag& item, int number) {
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
void AddUsbItem(TagTree& inventoryTree, const Tag& item, int& counter) {
  if (TextOfKey(item, "removable_media") == "yes") return AddStick(inventoryTree, item);
  const Tag* below = FindChild(item, "_items");
  if (!below) return AddPeripheral(inventoryTree, item, ++counter);
  for (const auto& child : below->children) AddUsbItem(inventoryTree, *child, counter);
}

}  // namespace

void BuildUsbSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* items = FindItems(rawTree, "SPUSBDataType");
  if (!items) return;
  int counter = 0;
  for (const auto& item : items->children) AddUsbItem(inventoryTree, *item, counter);
}
