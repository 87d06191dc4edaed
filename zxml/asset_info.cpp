// Writes the AssetInfo tree from the identity, the asset summary and a few values of the inventory tree.
#include "zxml/asset_info.h"

#include "zxml/maker.h"
#include "zxml/value_text.h"

namespace {

constexpr char kAssetTag[] = "1234567890000";  // deliberate: the same for every asset

void Set(TagTree& tree, const char* path, const std::string& text) {
  SetAttributeByPath(tree, path, MakeTextValue(text));
}

const char* VirtualType(const std::string& machineModel) {
  const std::string model = LowerCase(machineModel);
  if (model.find("vmware") != std::string::npos) return "nvtVMware";
  if (model.find("virtualbox") != std::string::npos) return "nvtVirtualBox";
  if (model.find("parallels") != std::string::npos) return "nvtParallels";
  return "nvtPhysical";
}

// The tag at root / `section` / `name`; null when either is missing.
const Tag* FindInSection(const TagTree& inventoryTree, const char* section, const char* name) {
  const Tag* tag = FindChild(RootOf(inventoryTree), section);
  return tag ? FindChild(*tag, name) : nullptr;
}

void SetFromAttribute(TagTree& tree, const char* path, const Tag& source, const char* name) {
  if (const Attribute* attribute = FindAttribute(source, name)) Set(tree, path, TextOf(attribute));
}

void SetOperatingSystem(TagTree& tree, const TagTree& inventoryTree) {
  const Tag* os = FindInSection(inventoryTree, "OS", "os:1");
  if (!os) return;
  SetFromAttribute(tree, "/control/os-name", *os, "name");
  SetFromAttribute(tree, "/control/os-sp", *os, "update");
  SetFromAttribute(tree, "/control/os-ver", *os, "version");
  Set(tree, "/control/os-manuf", kMaker);
  SetFromAttribute(tree, "/control/os-arch", *os, "architecture");
}

void SetDisk(TagTree& tree, int number, const Tag& partition, const Attribute& free) {
  const std::string path = "/control/disk:" + std::to_string(number);
  Attribute* disk = SetAttributeByPath(tree, path, MakeTextValue(TextOf(FindAttribute(partition, "size"))));
  if (const Property* bytes = FindProperty(free.properties, "base-value"))
    AddAttributeProperty(*disk, "free", bytes->text);
  const Attribute* percent = FindAttribute(partition, "free%");
  if (percent && percent->value.kind == ValueKind::Int)
    AddAttributeProperty(*disk, "free%", std::to_string(percent->value.integer));
  const Attribute* mountPoint = FindAttribute(partition, "mount-point");
  if (!mountPoint) return;
  AddAttributeProperty(*disk, "mount-point", TextOf(mountPoint));
  if (TextOf(mountPoint) == "/") AddAttributeProperty(*disk, "sys", "1");
}

void SetDisks(TagTree& tree, const TagTree& inventoryTree) {
  const Tag* partitions = FindInSection(inventoryTree, "Storage", "Logical-disks");
  if (!partitions) return;
  int number = 0;
  for (const auto& partition : partitions->children)
    if (const Attribute* free = FindAttribute(*partition, "free")) SetDisk(tree, ++number, *partition, *free);
}

void SetControl(TagTree& tree, const TagTree& inventoryTree, const AssetSummary& summary,
                const std::string& workgroup) {
  Set(tree, "/control/domain", workgroup);
  SetOperatingSystem(tree, inventoryTree);
  Set(tree, "/control/cpu-count", summary.packages);
  Set(tree, "/control/cpu-count-virtual", summary.logicalProcessors);
  Set(tree, "/control/cpu-speed", summary.processorSpeed);
  Set(tree, "/control/cpu-model", summary.processorType);
  Set(tree, "/control/cpu-manuf", summary.processorMaker);
  Set(tree, "/control/system-model", summary.machineModel);
  Set(tree, "/control/system-manuf", summary.systemMaker);
  Set(tree, "/control/chassis-manuf", kMaker);
  Set(tree, "/control/mb-manuf", kMaker);
  Set(tree, "/control/phys-memory", summary.physicalMemory);
  Set(tree, "/control/video-ram", summary.videoMemory);
  Set(tree, "/control/video-res", summary.displayResolution);
  const Tag* monitors = FindInSection(inventoryTree, "Video", "Monitors");
  Set(tree, "/control/monitor-count", std::to_string(monitors ? monitors->children.size() : 0));
  Set(tree, "/control/monitor-diag", summary.displayDiagonal);
  Set(tree, "/control/hdd-capacity", summary.diskCapacity);
  SetDisks(tree, inventoryTree);
  Set(tree, "/control/fw-status", "5");
}

// `name` is the computer's on the network, `computerName` its own.
void SetNames(TagTree& tree, const std::string& name, const std::string& computerName, const AssetIdentity& identity) {
  Set(tree, "/hostname", name);
  Set(tree, "/ip-address", identity.currentIp);
  Set(tree, "/static-ip", identity.manual ? "1" : "0");
  Set(tree, "/int-name", computerName);
  Set(tree, "/alias", computerName);
  Set(tree, "/description", "");
  Set(tree, "/comment", "");
  Set(tree, "/inv-number", "");
}

void SetKinds(TagTree& tree, const char* virtualType, const char* scanType, const char* scanSubtype) {
  Set(tree, "/asset-type", "natMacOS");
  Set(tree, "/virtual-type", virtualType);
  Set(tree, "/scan-type", scanType);
  Set(tree, "/scan-subtype", scanSubtype);
  Set(tree, "/auto-icon-type", "nitMacDesktop");
  Set(tree, "/icon-type", "nitMacDesktop");
}

}  // namespace

const std::string& NameOf(const AssetIdentity& identity) {
  return identity.netBiosName.empty() ? identity.computerName : identity.netBiosName;
}

TagTree BuildAssetInfo(bool saveFlag, const TagTree& inventoryTree, const std::string& timestamp,
                       const AssetSummary& summary, const AssetIdentity& identity) {
  TagTree tree = CreateTree(saveFlag, "AssetInfo");
  SetNames(tree, identity.netBiosName, identity.computerName, identity);
  Set(tree, "/login", identity.login);
  Set(tree, "/user-name", summary.userName);
  SetKinds(tree, VirtualType(summary.machineModel), "nstSSH", "sstService");
  Set(tree, "/first-scan", timestamp);
  Set(tree, "/last-scan", timestamp);
  Set(tree, "/snapshot-list", timestamp);
  Set(tree, "/snapshot-types", "mac:1");
  Set(tree, "/mac-address", identity.macAddress);
  Set(tree, "/uuid", summary.platformUuid);
  Set(tree, "/serial-number", identity.serialNumber);
  Set(tree, "/asset-tag", kAssetTag);
  SetControl(tree, inventoryTree, summary, identity.workgroup);
  return tree;
}

TagTree BuildDebugAssetInfo(bool saveFlag, const std::string& timestamp, const AssetIdentity& identity) {
  TagTree tree = CreateTree(saveFlag, "AssetInfo");
  SetNames(tree, NameOf(identity), NameOf(identity), identity);
  SetKinds(tree, "nvtPhysical", "nstNone", "sstNone");
  Set(tree, "/scan-attempt", timestamp);
  Set(tree, "/mac-address", identity.macAddress);
  Set(tree, "/asset-tag", kAssetTag);
  Set(tree, "/error-message", "Debug scan");
  return tree;
}
