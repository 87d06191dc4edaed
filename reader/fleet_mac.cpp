// Turns one file into what the fleet's page tells of its Mac, and keeps the newest scan of each.
#include <algorithm>
#include <set>

#include "reader/fleet.h"
#include "reader/html.h"
#include "reader/identity.h"
#include "reader/record_view.h"
#include "reader/report.h"
#include "reader/report_drawings.h"

namespace {

constexpr std::size_t kLongestText = 160;  // bytes of a text; 5,000 Macs have to fit 10 MB
constexpr std::size_t kLongestGroup = 60;  // bytes of a group's name
constexpr std::size_t kMostTexts = 24;     // of one fact
constexpr std::size_t kMostVolumes = 24;
constexpr std::int64_t kDay = 86400;

// One line, cut between two characters when it is very long.
std::string Brief(const std::string& whole, std::size_t longest = kLongestText) {
  std::string text = PlainLine(whole.substr(0, 4 * longest));
  if (text.size() <= longest) return text;
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "…";
}

// A list of a fact: the fields of each row that are known, joined; those after the first in the order given.
struct FactList {
  const char* name;
  const char* table;
  std::vector<const char*> fields;
};

const std::vector<FactList>& FactLists() {
  static const std::vector<FactList> lists = {
      {"File", "macs", {"file"}},
      {"Scanned", "macs", {"scanned_at"}},
      {"UUID", "macs", {"uuid"}},
      {"Host name", "macs", {"hostname", "domain"}},
      {"Address in use", "macs", {"ip_address", "mac_address"}},
      {"Agent", "macs", {"client_version", "error_message"}},
      {"System", "os", {"name", "build", "kernel", "architecture"}},
      {"Processor", "cpu", {"model", "cores", "speed_mhz"}},
      {"Firewall", "firewall", {"state"}},
      {"Memory modules", "memory_slots", {"capacity_bytes", "type", "speed_mhz"}},
      {"Disks", "disks", {"model", "size_bytes", "serial_number"}},
      {"Graphics", "gpus", {"name", "memory_bytes"}},
      {"Monitors", "monitors", {"model", "diagonal_in", "serial_number"}},
      {"Network", "network_adapters", {"name", "device", "ip_addresses", "mac_address"}},
      {"Printers", "printers", {"name", "ppd"}},
      {"Users", "users", {"name", "full_name"}},
  };
  return lists;
}

std::vector<std::string> FactTexts(const FactList& list, const RecordSource& source) {
  std::vector<std::string> texts;
  for (const RecordView& view : ViewsOf(list.table, source)) {
    std::vector<std::string> parts;
    for (const char* field : list.fields) parts.push_back(ShownOf(view, field));
    std::string text = Joined(parts);
    if (text.empty() && list.table == std::string_view("memory_slots")) text = "empty";
    if (!text.empty()) texts.push_back(Brief(text));
    if (texts.size() < kMostTexts) continue;
    texts.push_back("…");
    break;
  }
  return texts;
}

std::vector<std::vector<std::string>> FactsOf(const RecordSource& source) {
  std::vector<std::vector<std::string>> facts;
  for (const FactList& list : FactLists()) facts.push_back(FactTexts(list, source));
  for (const char* table : {"usb_devices", "software"}) {
    const std::size_t count = ViewsOf(table, source).size();
    facts.emplace_back(count == 0 ? 0 : 1, Grouped(static_cast<std::int64_t>(count)));
  }
  return facts;
}

struct Space {
  std::int64_t free = -1;  // of the start-up volume, else of the first that tells; -1 when none does
  std::int64_t size = 0;
  int percent = 0;  // of it that is free
};

int Percent(std::int64_t part, std::int64_t whole) {
  const double share = whole > 0 ? static_cast<double>(part) * 100 / static_cast<double>(whole) : 0;
  return static_cast<int>(std::clamp(share, 0.0, 100.0));
}

Space AddVolumes(const RecordSource& source, std::vector<FleetVolume>& volumes) {
  Space space;
  for (const RecordView& view : ViewsOf("volumes", source)) {
    const auto size = NumberOf(view, "size_bytes");
    const auto free = NumberOf(view, "free_bytes");
    if (!size || !free || *size <= 0 || *free < 0 || volumes.size() == kMostVolumes) continue;
    const std::string mount = ShownOf(view, "mount_point");
    volumes.push_back(
        {Brief(Joined({ShownOf(view, "name"), mount})) + ": " + DiskSize(*free) + " of " + DiskSize(*size) + " free",
         100 - Percent(*free, *size), *free < *size / 10});
    if (space.free < 0 || mount == "/") space = {*free, *size, Percent(*free, *size)};
  }
  return space;
}

std::string AgeGroup(const FleetMac& mac, std::int64_t now) {
  if (!mac.moment) return "not known";
  const std::int64_t days = (now - *mac.moment) / kDay;
  return days < 1     ? "1 day or less"
         : days < 7   ? "2 to 7 days"
         : days <= 30 ? "8 to 30 days"
         : days <= 90 ? "31 to 90 days"
                      : "more than 90 days";
}

std::string FreeGroup(const Space& space) {
  if (space.free < 0) return "not known";
  return space.percent < 10   ? "under 10 %"
         : space.percent < 25 ? "10 to 25 %"
         : space.percent < 50 ? "25 to 50 %"
                              : "50 % and more";
}

std::string Known(const std::string& text) { return text.empty() ? "not known" : Brief(text, kLongestGroup); }

std::vector<std::string> AddressesOf(const RecordSource& source) {
  std::set<std::string> addresses;
  for (const char* table : {"macs", "network_adapters"})
    for (const RecordView& view : ViewsOf(table, source)) addresses.insert(ShownOf(view, "mac_address"));
  for (const char* nobody : {"", "00-00-00-00-00-00", "FF-FF-FF-FF-FF-FF"}) addresses.erase(nobody);
  return {addresses.begin(), addresses.end()};
}

std::vector<std::uint32_t> SoftwareOf(const RecordSource& source, FleetTitles& titles) {
  std::set<std::uint32_t> numbers;
  for (const RecordView& view : ViewsOf("software", source)) {
    const std::string name = ShownOf(view, "name");
    const std::string title = (name.empty() ? "without a name" : Brief(name)) + '\0' + Brief(ShownOf(view, "version"));
    numbers.insert(titles.emplace(title, static_cast<std::uint32_t>(titles.size())).first->second);
  }
  return {numbers.begin(), numbers.end()};
}

// A serial number alone is not enough: where two Macs share one, the page has to show both.
std::string KeyOf(const RecordSource& source) {
  const MacKey key = MacKeyOf(*source.document);
  const std::string uuid = ShownOf(ViewsOf("macs", source).front(), "uuid");
  return key.text.empty()
             ? ""
             : std::string(key.kind) + ' ' + key.text + ' ' + (key.kind == std::string_view("hostname") ? "" : uuid);
}

}  // namespace

const std::vector<std::string>& FleetFactNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    for (const FactList& list : FactLists()) all.emplace_back(list.name);
    all.emplace_back("USB devices");
    all.emplace_back("Applications");
    return all;
  }();
  return names;
}

FleetMac MakeFleetMac(const Document& document, std::int64_t now, FleetTitles& titles) {
  const RecordSource source = SourceOf(document);
  const RecordView view = ViewsOf("macs", source).front();
  FleetMac mac;
  mac.key = KeyOf(source);
  mac.inventory = source.snapshot != nullptr;
  mac.moment = ScanMoment(document);
  mac.addresses = AddressesOf(source);
  mac.alarms = AlarmsOf(source, now);
  for (Alarm& alarm : mac.alarms) alarm.text = Brief(alarm.text);
  mac.facts = FactsOf(source);
  mac.software = SoftwareOf(source, titles);
  const Space space = AddVolumes(source, mac.volumes);
  const std::int64_t memory = NumberOf(view, "memory_bytes").value_or(-1);
  mac.cells[kNameColumn].text = Brief(MacName(source));
  mac.cells[kModelColumn].text = Brief(ShownOf(view, "model"));
  mac.cells[kSystemColumn].text = Brief(SystemName(source));
  mac.cells[kUserColumn].text = Brief(ShownOf(view, "user_name"));
  mac.cells[kSerialColumn].text = Brief(ShownOf(view, "serial_number"));
  mac.cells[kMemoryColumn] = {ShownOf(view, "memory_bytes"), memory};
  if (space.free >= 0)
    mac.cells[kFreeColumn] = {DiskSize(space.free) + " (" + std::to_string(space.percent) + " %)", space.free};
  if (mac.moment) mac.cells[kScannedColumn] = {ShownMoment(*mac.moment).substr(0, 10), *mac.moment};
  const auto serious =
      std::count_if(mac.alarms.begin(), mac.alarms.end(), [](const Alarm& alarm) { return alarm.serious; });
  const auto notices = static_cast<std::int64_t>(mac.alarms.size()) - serious;
  std::string attention = serious ? std::to_string(serious) + " serious" : "";
  if (notices) attention += (serious ? ", " : "") + Counted(static_cast<std::uint64_t>(notices), "notice", "notices");
  mac.cells[kAlarmsColumn] = {attention, static_cast<std::int64_t>(serious) * 1000 + notices};
  mac.groups = {Known(SystemName(source)),
                Known(ShownOf(view, "model")),
                AgeGroup(mac, now),
                FreeGroup(space),
                Known(ShownOf(view, "memory_bytes")),
                Known(ShownOf(ViewsOf("firewall", source).front(), "state"))};
  return mac;
}

void AddToFleet(const Document& document, std::int64_t now, Fleet& fleet) {
  ++fleet.files;
  FleetMac mac = MakeFleetMac(document, now, fleet.titles);
  if (mac.key.empty()) {
    fleet.macs.push_back(std::move(mac));
    return;
  }
  const auto [place, isNew] = fleet.places.emplace(mac.key, fleet.macs.size());
  if (isNew) {
    fleet.macs.push_back(std::move(mac));
    return;
  }
  FleetMac& known = fleet.macs[place->second];
  const auto rank = [](const FleetMac& scan) { return std::pair(scan.inventory, scan.moment); };
  if (rank(mac) > rank(known)) known = std::move(mac);
}
