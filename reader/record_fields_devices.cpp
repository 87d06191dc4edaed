// The fields of memory slots, network adapters, USB devices, printers and scanners.
#include "reader/record_fields.h"

namespace {

constexpr char kNotSaid[] = "the Mac did not say";
constexpr char kFree[] = "a free slot, or the Mac did not say";
constexpr char kNotMulti[] = "not a multi-function device, or the Mac did not say";
constexpr FieldType kText = FieldType::Text, kInteger = FieldType::Integer, kFlag = FieldType::Flag;

// The short view of the slots has the bytes, but counts each group of slots from 1: it serves where it shows as many.
void ReadSlotBytes(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const Tag* slots = FindTag(row.source->snapshot, "System/Mem-slots");
  const Tag* memory = FindTag(row.source->snapshot, "Memory");
  std::size_t count = 0;
  for (const auto& child : memory->children) count += child->name.substr(0, 12) == "Memory-slot:" ? 1 : 0;
  if (slots && slots->children.size() == count) {
    RecordField bytes = field;
    bytes.source = MakeFieldSource("capacity~base-value");
    RecordRow slot = row;
    slot.tag = slots->children[static_cast<std::size_t>(row.place)].get();
    SetInteger(value, WholeNumber(SourceText(bytes.source, slot)));
  }
  const auto megabytes = value.known ? std::nullopt : WholeNumber(SourceText(field, row));
  std::int64_t product = 0;
  if (megabytes && !__builtin_mul_overflow(*megabytes, kMebibyte, &product)) SetInteger(value, product);
}

// "0x046d  (Logitech Inc.)"
void ReadVendorId(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const std::string_view text = SourceText(field, row);
  SetText(value, text.substr(0, text.find(' ')));
}

void ReadVendorName(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const std::string_view text = SourceText(field, row);
  const std::size_t open = text.find('(');
  if (open == text.npos || text.back() != ')') return;
  SetText(value, text.substr(open + 1, text.size() - open - 2));
}

// Megabits, or with the unit "Gbit-s" gigabits.
void ReadSpeed(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const auto speed = RealNumber(SourceText(field, row));
  FieldSource units = field.source;
  units.property = "units";
  constexpr double kMegabit = 1e6, kGigabit = 1e9, kLimit = 1e6;
  if (speed && *speed >= 0 && *speed < kLimit)
    SetInteger(value, static_cast<std::int64_t>(*speed * (SourceText(units, row) == "Gbit-s" ? kGigabit : kMegabit)));
}

constexpr RecordField kSlotFields[] = {
    By(Field(kInteger, "slot", "", "The slot's place in this list, from 0", nullptr), ReadPlace),
    Field(kFlag, "used", "used", "Whether there is a module in it", kNotSaid),
    By(Field(kInteger, "capacity_bytes", "capacity",
             "The module's size; from the bytes in `Snapshot/System/Mem-slots` "
             "where that lists as many slots, otherwise whole megabytes (2^20)",
             kFree),
       ReadSlotBytes),
    Field(kText, "type", "mem-type", "The kind of memory, such as `DDR3`", kFree),
    Field(kInteger, "speed_mhz", "speed", "Its clock", kFree),
    Field(kText, "maker", "manuf", "Who made it, a name or a code such as `0x80AD`", kFree),
    Field(kText, "bank", "bank-label", "The slot's label", kFree),
};

constexpr RecordField kAdapterFields[] = {
    Field(kText, "name", "=", "The network service's name", kNotSaid),
    Field(kText, "device", "bsd-device-name", "The device, such as `en0`", kNotSaid),
    Field(kText, "type", "type", "`Ethernet`, `AirPort`, ...", kNotSaid),
    Field(FieldType::TextList, "ip_addresses", "ip-address", "Its IP addresses", nullptr),
    Field(FieldType::TextList, "subnet_masks", "ip-subnet", "Their masks", nullptr),
    Field(kText, "mac_address", "mac-address", "The MAC address, with dashes", kNotSaid),
    Field(kText, "mac_prefix", "manuf-by-mac", "The first half of it, which tells the maker", kNotSaid),
    Field(kText, "gateway", "default-gateway", "The router's address", "it has none"),
};

constexpr RecordField kUsbFields[] = {
    Field(kText, "name", "=", "The device's name", kNotSaid),
    By(Field(kText, "vendor_id", "vendor-id", "The vendor's number, such as `0x046d`; Apple's is `apple_vendor_id`",
             kNotSaid),
       ReadVendorId),
    By(Field(kText, "vendor_name", "vendor-id", "The vendor's name, which stands there in brackets",
             "no name is known"),
       ReadVendorName),
    Field(kText, "product_id", "product-id", "The product's number, such as `0x8511`", kNotSaid),
    Field(kText, "maker", "manuf", "What the device calls its maker", "it does not say"),
    Field(kText, "serial_number", "serial-number", "The device's serial number", "it has none"),
    Field(kText, "device_version", "bcd-device", "The device's version", kNotSaid),
    By(Field(kInteger, "speed_bits_per_second", "device-speed",
             "The speed of the connection; 1.5, 12 or 480 megabits or 5 "
             "gigabits in the inventory",
             "another speed, or the Mac did not say"),
       ReadSpeed),
    Field(kInteger, "bus_power_ma", "bus-power", "The current that the port offers", kNotSaid),
    Field(kInteger, "bus_power_used_ma", "bus-power-used", "The current that the device takes", kNotSaid),
};

constexpr RecordField kPrinterFields[] = {
    Field(kText, "name", "=", "The printer's name", kNotSaid),
    Field(kFlag, "is_default", "is-default", "Whether it is the usual one", kNotSaid),
    Field(kText, "status", "status", "What it does, such as `idle`", kNotSaid),
    By(Field(kFlag, "multi_function", "~kind", "Whether it scans, too (the property says `MFP`)", nullptr),
       ReadPresent),
    Field(kFlag, "fax", "is-fax", "Whether it is a fax", kNotSaid),
    Field(kText, "driver_version", "driver-version", "The driver's version", kNotSaid),
    Field(kText, "print_server", "print-server", "The server, or `local`", kNotSaid),
    Field(kText, "uri", "uri", "Where it is reached", kNotSaid),
    Field(kText, "ppd", "ppd", "The description's name", kNotSaid),
    Field(kText, "ppd_version", "ppd-file-version", "The description's version", kNotSaid),
    Field(kText, "scanner_uuid", "scanner-uuid", "The UUID of its scanner", kNotMulti),
    Field(kText, "scanner_app_path", "scanner-app-path", "The scanner's application", kNotMulti),
};

constexpr RecordField kScannerFields[] = {
    Field(kText, "name", "=", "The scanner's name", kNotSaid),
    Field(kText, "uuid", "scanner-uuid", "Its UUID", kNotSaid),
    Field(kText, "app_path", "scanner-app-path", "Its application", kNotSaid),
    Field(kText, "app_version", "scanner-app-version", "The application's version", kNotSaid),
};

}  // namespace

void AddDeviceTables(std::vector<RecordTable>& tables) {
  tables.push_back(ListTable("memory_slots", "Snapshot/Memory", "Memory-slot:", "Memory slots", kSlotFields));
  AddStorageTables(tables);
  AddMonitorTables(tables);
  tables.push_back(
      ListTable("network_adapters", "Snapshot/Network/Adapters", "net-adapter:", "Network services", kAdapterFields));
  tables.push_back(ListTable("usb_devices", "Snapshot/Peripherals/USB",
                             "Device:", "USB devices; hubs are left out, USB disks are in `disks`", kUsbFields));
  tables.push_back(ListTable("printers", "Snapshot/Peripherals/Printers", "Printer:", "Printers", kPrinterFields));
  tables.push_back(ListTable("scanners", "Snapshot/Peripherals/Scanners", "Scanner:", "Scanners that are nothing else",
                             kScannerFields));
}
