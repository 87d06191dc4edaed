// The fields of disks and volumes.
#include "reader/record_fields.h"

namespace {

constexpr char kNotSaid[] = "the Mac did not say";
constexpr char kUsbOnly[] = "not a USB disk, or the Mac did not say";
constexpr char kNotMounted[] = "not mounted, or the Mac did not say";
constexpr FieldType kText = FieldType::Text, kInteger = FieldType::Integer, kFlag = FieldType::Flag;

constexpr FieldCode kSpeeds[] = {{"0", "low"}, {"1", "full"}, {"2", "high or more"}};

struct DiskKind {
  std::string_view base;
  const char* kind;
};

constexpr DiskKind kDiskKinds[] = {{"HDD:", "disk"}, {"CD:", "drive"}, {"Removable:", "removable"}};

void ReadDiskKind(const RecordField&, const RecordRow& row, FieldValue& value) {
  for (const DiskKind& kind : kDiskKinds)
    if (std::string_view(row.tag->name).substr(0, kind.base.size()) == kind.base) SetText(value, kind.kind);
}

constexpr RecordField kDiskFields[] = {
    By(Field(kInteger, "disk", "", "The disk's place in this list, from 0", nullptr), ReadPlace),
    By(Field(kText, "kind", "",
             "`disk` for `HDD:N`, `drive` for `CD:N` (optical and others that hold no disk of their "
             "own), `removable` for `Removable:N` (USB)",
             "another tag"),
       ReadDiskKind),
    Or(Field(kText, "model", "model", "The model", kNotSaid), "="),
    Field(kText, "maker", "manufacturer", "Who made it", kUsbOnly),
    Field(kText, "interface", "interface", "`SATA`, `SCSI`, `PCI-Express` or `USB`", "a drive"),
    By(Field(kInteger, "size_bytes", "size",
             "How much it holds; where a USB disk does not give its bytes, whole "
             "gigabytes (2^30)",
             kNotSaid),
       ReadBytes),
    Field(kText, "serial_number", "serial", "The disk's serial number", kNotSaid),
    Or(Field(kText, "firmware", "fw-rev", "The firmware's version", kNotSaid), "bcd-device"),
    Field(kInteger, "partitions", "partitions", "How many of its volumes are in `volumes`", "a drive"),
    Coded(Field(kText, "usb_speed", "device-speed", "The speed of the connection", kUsbOnly), kSpeeds),
    Field(kInteger, "bus_power_ma", "bus-power", "The current that the port offers", kUsbOnly),
    Field(kInteger, "bus_power_used_ma", "bus-power-used", "The current that the disk takes", kUsbOnly),
};

constexpr RecordField kVolumeFields[] = {
    By(Field(kInteger, "volume", "", "The volume's place in this list, from 0", nullptr), ReadPlace),
    By(Field(kInteger, "disk", "",
             "Its disk's place in `disks`: the first volumes are those that the fixed disks count as `partitions`, one "
             "disk after the other, and the last those of the removable ones",
             "no disk counts it, or the counts make no sense"),
       ReadHolder),
    Field(kText, "name", "=", "The volume's name", "it has none"),
    Field(kText, "bsd_name", "bsd-name", "The device, such as `disk2s1`", "not on a USB disk"),
    Or(Field(kText, "file_system", "~file-sys", "The file system", "it has none that is known"), "file-sys"),
    Field(kText, "mount_point", "mount-point", "Where it is mounted", "not mounted"),
    By(Field(kInteger, "size_bytes", "size", "How much it holds", kNotSaid), ReadBytes),
    By(Field(kInteger, "free_bytes", "free", "How much of that is free", kNotMounted), ReadBytes),
    By(Field(kInteger, "used_bytes", "used", "How much is not", kNotMounted), ReadBytes),
    Field(kInteger, "free_percent", "free%", "100 less `used_percent`", kNotMounted),
    Field(kInteger, "used_percent", "used%", "Used of the whole, the fraction cut off", kNotMounted),
    By(Field(kFlag, "encrypted", "~kind", "True for an encrypted CoreStorage volume",
             "not known: other encryption is "
             "not told"),
       ReadTrueOrNull),
};

bool IsRemovable(const Tag& disk) { return std::string_view(disk.name).substr(0, 10) == "Removable:"; }

// How many of the volumes are the disk's.
std::size_t VolumesOf(const Tag& disk, std::size_t most) {
  const std::int64_t count = WholeNumber(TextOf(FindAttribute(disk, "partitions"))).value_or(0);
  return count < 0 || static_cast<std::uint64_t>(count) > most ? most + 1 : static_cast<std::size_t>(count);
}

// The first volumes are those of the fixed disks, the last those of the removable ones; between them may stand volumes
// that no disk counts. Without sense in the counts no volume has a disk.
void AssignDisks(const Tag& disks, std::vector<RecordRow>& rows) {
  std::size_t next[2] = {};  // of the fixed disks, of the removable ones
  for (const auto& disk : disks.children) next[IsRemovable(*disk) ? 1 : 0] += VolumesOf(*disk, rows.size());
  if (next[0] + next[1] > rows.size()) return;
  next[1] = rows.size() - next[1];
  next[0] = 0;
  for (std::size_t i = 0; i < disks.children.size(); ++i) {
    const Tag& disk = *disks.children[i];
    for (std::size_t left = VolumesOf(disk, rows.size()); left > 0; --left)
      rows[next[IsRemovable(disk) ? 1 : 0]++].holder = static_cast<std::int64_t>(i);
  }
}

void VolumeRows(const RecordSource& source, std::vector<RecordRow>& rows) {
  const Tag* volumes = FindTag(source.snapshot, "Storage/Logical-disks");
  if (!volumes) return;
  for (const auto& volume : volumes->children)
    rows.push_back({&source, volume.get(), static_cast<std::int64_t>(rows.size())});
  if (const Tag* disks = FindTag(source.snapshot, "Storage/Physical-disks")) AssignDisks(*disks, rows);
}

}  // namespace

void AddStorageTables(std::vector<RecordTable>& tables) {
  tables.push_back(ListTable("disks", "Snapshot/Storage/Physical-disks", "", "Disks and drives", kDiskFields));
  tables.push_back(ListTable("volumes", "Snapshot/Storage/Logical-disks", "partition:", "Volumes and other partitions",
                             kVolumeFields));
  tables.back().rows = VolumeRows;
}
