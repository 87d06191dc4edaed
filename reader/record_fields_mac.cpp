// The fields of the record itself and of its objects: who the Mac is, its system, processor and firewall.
#include "reader/identity.h"
#include "reader/record_fields.h"

namespace {

constexpr char kNotSaid[] = "the Mac did not say";
constexpr char kDebug[] = "a debug scan, or the Mac did not say";

constexpr char kOsVersion[] = "Snapshot/OS/os:1/version";

constexpr FieldCode kVirtualTypes[] = {
    {"nvtPhysical", "physical"},
    {"nvtVMware", "vmware"},
    {"nvtVirtualBox", "virtualbox"},
    {"nvtParallels", "parallels"},
};

constexpr FieldCode kFirewallStates[] = {{"0", "off"}, {"1", "limited"}, {"2", "block_all"}};

void ReadMacKey(const RecordField&, const RecordRow& row, FieldValue& value) {
  SetText(value, MacKeyOf(*row.source->document).text);
}

void ReadMacKeyKind(const RecordField&, const RecordRow& row, FieldValue& value) {
  SetText(value, MacKeyOf(*row.source->document).kind);
}

void ReadScanMoment(const RecordField&, const RecordRow& row, FieldValue& value) {
  if (const auto moment = ScanMoment(*row.source->document)) SetText(value, IsoMoment(*moment));
}

void ReadFile(const RecordField&, const RecordRow& row, FieldValue& value) {
  SetText(value, row.source->document->path);
}

void ReadFaults(const RecordField&, const RecordRow& row, FieldValue& value) {
  SetInteger(value, static_cast<std::int64_t>(row.source->document->faults.size()));
}

void ReadScanSeconds(const RecordField& field, const RecordRow& row, FieldValue& value) {
  if (const auto milliseconds = WholeNumber(SourceText(field, row))) SetInteger(value, *milliseconds / 1000);
}

bool IsDigit(std::string_view text, std::size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '9'; }

// "10.6.8 (10K549)". Newer systems leave a piece of their name in front of it, as in "S 12.6 (21G115)".
std::string_view VersionAndBuild(std::string_view text) {
  const std::size_t digit = text.find_first_of("0123456789");
  return digit == text.npos || text.substr(0, digit).find('(') != text.npos ? text : text.substr(digit);
}

std::string_view VersionOf(std::string_view text) {
  text = VersionAndBuild(text);
  return text.substr(0, text.find(' '));
}

void ReadOsVersion(const RecordField& field, const RecordRow& row, FieldValue& value) {
  SetText(value, VersionOf(SourceText(field, row)));
}

void ReadOsBuild(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const std::string_view text = SourceText(field, row);
  const std::size_t open = text.rfind('('), close = text.rfind(')');
  if (open != text.npos && close != text.npos && open < close) SetText(value, text.substr(open + 1, close - open - 1));
}

std::string_view OsVersionText(const RecordRow& row) {
  constexpr FieldSource kVersion = MakeFieldSource(kOsVersion);
  constexpr FieldSource kAssetVersion = MakeFieldSource("AssetInfo/control/os-ver");
  return SourceText(row.source->snapshot ? kVersion : kAssetVersion, row);
}

// True for a newer system that the agent read as if it were an old one.
bool IsMisread(const RecordRow& row) {
  const std::string_view version = OsVersionText(row);
  return version.substr(0, 2) == "S " && IsDigit(version, 2);
}

void ReadOsName(const RecordField& field, const RecordRow& row, FieldValue& value) {
  if (IsMisread(row))
    SetText(value, "macOS " + std::string(VersionOf(OsVersionText(row))));
  else
    SetText(value, SourceText(field, row));
}

void ReadArchitecture(const RecordField& field, const RecordRow& row, FieldValue& value) {
  if (!IsMisread(row)) SetText(value, SourceText(field, row));
}

// "00000012032741.000000:000": days, and two digits each of hours, minutes and seconds.
void ReadUptime(const RecordField& field, const RecordRow& row, FieldValue& value) {
  std::string_view text = SourceText(field, row);
  text = text.substr(0, text.find('.'));
  if (text.size() < 8) return;
  const std::size_t end = text.size();
  const auto days = WholeNumber(text.substr(0, end - 6)), hours = WholeNumber(text.substr(end - 6, 2));
  const auto minutes = WholeNumber(text.substr(end - 4, 2)), seconds = WholeNumber(text.substr(end - 2, 2));
  constexpr std::int64_t kManyDays = 100000000;
  if (days && hours && minutes && seconds && *days >= 0 && *days < kManyDays)
    SetInteger(value, ((*days * 24 + *hours) * 60 + *minutes) * 60 + *seconds);
}

// "CPU #1" is what stands for a processor that the Mac did not name.
void ReadProcessor(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const std::string_view text = SourceText(field, row);
  if (text.substr(0, 5) != "CPU #") SetText(value, text);
}

void ReadPackages(const RecordField&, const RecordRow& row, FieldValue& value) {
  const Tag* processors = row.source->snapshot ? FindTag(row.source->snapshot, "Processors") : nullptr;
  if (processors) SetInteger(value, static_cast<std::int64_t>(processors->children.size()));
}

constexpr FieldType kText = FieldType::Text, kInteger = FieldType::Integer, kFlag = FieldType::Flag;

constexpr RecordField kMacFields[] = {
    By(Field(kText, "mac_key", "",
             "What tells this Mac from others: the first of serial number, UUID, MAC address and "
             "host name that is there",
             "it has none of them"),
       ReadMacKey),
    By(Field(kText, "mac_key_kind", "",
             "Which of them `mac_key` is: `serial_number`, `uuid`, `mac_address` or "
             "`hostname`",
             "there is no key"),
       ReadMacKeyKind),
    By(Field(kText, "file", "", "The file, as it was named on the command line", nullptr), ReadFile),
    By(Field(kInteger, "faults", "",
             "How much is wrong with the file (`quillinv check` names it); 0 for a sound one, "
             "otherwise lists may be shorter than they should be",
             nullptr),
       ReadFaults),
    By(Or(Field(FieldType::Moment, "scanned_at", "Snapshot/timestamp",
                "The end of the scan; of a debug scan "
                "`AssetInfo/scan-attempt`",
                "the time cannot be read"),
          "AssetInfo/last-scan"),
       ReadScanMoment),
    By(Field(kInteger, "scan_seconds", "Snapshot/scan-time", "How long the scan took; milliseconds in the inventory",
             kDebug),
       ReadScanSeconds),
    Field(kText, "client_version", "Snapshot/client-version", "The agent's version", "a debug scan"),
    Field(kText, "error_message", "AssetInfo/error-message", "`Debug scan` for a debug scan", "a normal scan"),
    Or(Field(kText, "serial_number", "AssetInfo/serial-number", "The Mac's serial number", kDebug),
       "Snapshot/System/Chassis/serial"),
    Or(Field(kText, "uuid", "AssetInfo/uuid", "The hardware's UUID", kDebug), "Snapshot/System/Computer-system/uuid"),
    Field(kText, "mac_address", "AssetInfo/mac-address", "The MAC address of the network service in use, with dashes",
          "no service of the active location has it"),
    Or(Field(kText, "hostname", "AssetInfo/hostname",
             "The NetBIOS name, or in a debug scan perhaps the computer's name", "the network service has none"),
       "Snapshot/hostname"),
    Field(kText, "computer_name", "AssetInfo/int-name", "The name that its owner gave it", kNotSaid),
    Or(Field(kText, "domain", "AssetInfo/control/domain", "The workgroup, in capitals", "it is in none"),
       "Snapshot/domain"),
    Or(Field(kText, "user_name", "AssetInfo/user-name", "The short name of the user who ran the scan", kDebug),
       "Snapshot/user-name"),
    Field(kText, "login", "AssetInfo/login", "What the scan was given with `-login:`", "nothing was given"),
    Or(Field(kText, "ip_address", "AssetInfo/ip-address", "The IP address in use", "it has none"),
       "Snapshot/ip-address"),
    Field(kFlag, "static_ip", "AssetInfo/static-ip", "Whether that address was configured by hand", kNotSaid),
    Coded(Field(kText, "virtual_type", "AssetInfo/virtual-type",
                "What kind of machine it is; a debug scan always says `physical`", kNotSaid),
          kVirtualTypes),
    Or(Field(kText, "model", "Snapshot/System/Computer-system/model", "The model's identifier, such as `MacBook8,1`",
             kDebug),
       "AssetInfo/control/system-model"),
    Or(Times(Field(kInteger, "memory_bytes", "Snapshot/Memory/General-info/physical-memory",
                   "Physical memory; whole megabytes (2^20) in the inventory", kDebug),
             kMebibyte),
       "AssetInfo/control/phys-memory"),
};

constexpr RecordField kOsFields[] = {
    By(Or(Field(kText, "name", "Snapshot/OS/os:1/name",
                "The system's name. Where `version` begins with `S`, as a newer system's \"S 12.6 (21G115)\" does, "
                "the name there is not its own, and this is `macOS` and the version",
                kDebug),
          "AssetInfo/control/os-name"),
       ReadOsName),
    By(Or(Field(kText, "version", kOsVersion, "The version's number, such as `10.11.6`", kDebug),
          "AssetInfo/control/os-ver"),
       ReadOsVersion),
    By(Or(Field(kText, "build", kOsVersion, "The build, which stands there in brackets, such as `15G31`", kDebug),
          "AssetInfo/control/os-ver"),
       ReadOsBuild),
    Field(kText, "kernel", "Snapshot/OS/os:1/kernel", "The kernel's name and version", kDebug),
    By(Or(Field(kText, "architecture", "Snapshot/OS/os:1/architecture", "`32-bit` or `64-bit`, the kernel's",
                "a debug scan, or a version that begins with `S`: what stands there is then as wrong as the name"),
          "AssetInfo/control/os-arch"),
       ReadArchitecture),
    By(Field(kInteger, "uptime_seconds", "Snapshot/OS/os:1/uptime", "Time since the system started", kDebug),
       ReadUptime),
};

constexpr RecordField kCpuFields[] = {
    By(Or(Field(kText, "model", "Snapshot/Processors/Processor:1/=", "The processor's name",
                "the Mac did not say (\"CPU #1\" in the inventory)"),
          "AssetInfo/control/cpu-model"),
       ReadProcessor),
    By(Field(kInteger, "packages", "", "Processors: the number of tags `Snapshot/Processors/Processor:N`", kDebug),
       ReadPackages),
    By(Field(kInteger, "cores", "Snapshot/Processors/Processor:1/core-count", "Cores of the whole Mac",
             "the Mac did not say (0 in the inventory)"),
       ReadNonZero),
    By(Field(kInteger, "speed_mhz", "Snapshot/Processors/Processor:1/current-clock-speed",
             "Clock of the first processor", "the Mac did not say (0 in the inventory)"),
       ReadNonZero),
    By(Times(Field(kInteger, "l2_bytes", "Snapshot/Processors/Processor:1/l2-cache-size",
                   "Level 2 cache of one processor; kilobytes (1024) in the inventory", kNotSaid),
             kKibibyte),
       ReadNonZero),
    By(Times(Field(kInteger, "l3_bytes", "Snapshot/Processors/Processor:1/l3-cache-size",
                   "Level 3 cache of one processor; kilobytes (1024) in the inventory", kNotSaid),
             kKibibyte),
       ReadNonZero),
};

constexpr RecordField kFirewallFields[] = {
    Coded(Field(kText, "state", "Snapshot/Security/Firewall/status",
                "What the firewall lets in: everything, what its lists allow, or nothing", kNotSaid),
          kFirewallStates),
    Field(kFlag, "stealth", "Snapshot/Security/Firewall/stealth-mode", "Whether it leaves probes unanswered", kNotSaid),
    Field(kFlag, "logging", "Snapshot/Security/Firewall/fw-log", "Whether it keeps a log", kNotSaid),
};

constexpr RecordField kRuleFields[] = {
    Field(kText, "name", "=", "Its name, or its bundle's identifier", kNotSaid),
    Field(kFlag, "allowed", "status", "Whether it may be reached", kNotSaid),
};

template <std::size_t N>
RecordTable ObjectTable(std::string_view name, const char* meaning, const RecordField (&fields)[N]) {
  return {name, "", name, TableShape::Object, false, "", "", meaning, fields, N};
}

RecordTable RuleTable(std::string_view name, std::string_view key, std::string_view path, std::string_view base,
                      const char* meaning) {
  return {name, "firewall", key, TableShape::List, false, path, base, meaning, kRuleFields, std::size(kRuleFields)};
}

}  // namespace

void AddMacTables(std::vector<RecordTable>& tables) {
  tables.push_back({"macs", "", "", TableShape::Mac, false, "", "", "The Mac, its scan and its file", kMacFields,
                    std::size(kMacFields)});
  tables.push_back(ObjectTable("os", "The operating system", kOsFields));
  tables.push_back(ObjectTable("cpu", "The processors", kCpuFields));
  tables.push_back(ObjectTable("firewall", "The firewall", kFirewallFields));
  tables.push_back(RuleTable("firewall_apps", "apps", "Snapshot/Security/Firewall/Apps",
                             "app:", "Applications that the firewall has a rule for"));
  tables.push_back(RuleTable("firewall_services", "services", "Snapshot/Security/Firewall/Services",
                             "service:", "Services that the firewall has a rule for"));
}
