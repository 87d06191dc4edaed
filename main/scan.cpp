// The scan driver: the phases of a scan in their order, each with its lines of the progress log.
#include "main/scan.h"

#include <cstdint>
#include <cstdio>
#include <ctime>

#include "main/collect/host_identity.h"
#include "main/collect/modern_keys.h"
#include "main/collect/plist_reader.h"
#include "main/collect/process_list.h"
#include "main/collect/profiler.h"
#include "main/console/console_log.h"
#include "main/options.h"
#include "main/post_process.h"
#include "main/result_file.h"
#include "platform/platform.h"
#include "zxml/INVfile.h"
#include "zxml/asset_info.h"

namespace {

// What a normal scan gathers on its way to the two trees.
struct Findings {
  AssetSummary summary;
  NetworkIdentity network;
  AssetIdentity asset;
  std::string timestamp;
};

void Log(const ScanSettings& settings, const char* text) {
  if (settings.log) LogLine("%s", text);
}

// Phases I to III: the raw tree, and what the property list says that the raw tree does not.
TagTree Collect(const ScanSettings& settings, bool silent, const std::string& currentIp, Findings& findings) {
  Log(settings, "I. Collecting Data....\n");
  std::string document = CollectProfilerData(silent);
  Log(settings, "done\n");
  PropertyList list = ParsePropertyList(std::move(document));
  if (settings.modern) AddOlderKeys(list);
  CollectAssetSummary(list, findings.summary);

  TagTree rawTree = CreateTree(settings.saveFlag, "Macintosh");
  Log(settings, "II. Parsing Data....");
  EnterProfilerData(list, rawTree);
  Log(settings, "done\n");

  Log(settings, "III. Get Data For AssetInfo....");
  findings.asset.currentIp = currentIp;
  findings.network = LookupNetworkIdentity(list, findings.asset.currentIp);
  Log(settings, "33% ");
  findings.asset.serialNumber = ReadSerialNumber(list);
  Log(settings, "66% ");
  list = PropertyList();
  CollectProcesses(rawTree);
  Log(settings, "100% done\n");
  return rawTree;
}

void SetHeader(TagTree& inventoryTree, const Findings& findings, std::int64_t seconds) {
  const auto setText = [&inventoryTree](const char* path, const std::string& text) {
    SetAttributeByPath(inventoryTree, path, MakeTextValue(text));
  };
  setText("/timestamp", findings.timestamp);
  SetAttributeByPath(inventoryTree, "/scan-time", MakeIntValue(seconds * 1000));
  setText("/client-version", kClientVersion);
  setText("/scan-subtype", "sstService");
  setText("/snaptype", "mac:1");
  setText("/hostname", findings.network.netBiosName);
  setText("/domain", findings.network.workgroup);
  setText("/user-name", findings.summary.userName);
  setText("/ip-address", findings.asset.currentIp);
}

// Phase IV: every section of the inventory, then the header.
TagTree BuildInventory(const ScanSettings& settings, const TagTree& rawTree, std::time_t start, Findings& findings) {
  TagTree inventoryTree = CreateTree(settings.saveFlag, "Snapshot");
  PostProcess(inventoryTree, rawTree, settings.log);
  const std::time_t end = std::time(nullptr);
  findings.asset.computerName = ComputerName();
  findings.timestamp = MakeTimestamp(DateForm::Full);
  SetHeader(inventoryTree, findings, static_cast<std::int64_t>(end - start));
  return inventoryTree;
}

// Phase V: the container with both trees.
InvFile Pack(const ScanSettings& settings, TagTree inventoryTree, Findings& findings, const std::string& login) {
  Log(settings, "V. Creating AssetInfo Section....");
  findings.asset.workgroup = findings.network.workgroup;
  findings.asset.netBiosName = findings.network.netBiosName;
  findings.asset.macAddress = findings.network.macAddress;
  findings.asset.manual = findings.network.manual;
  findings.asset.login = login;
  TagTree assetInfo = BuildAssetInfo(settings, inventoryTree, findings.timestamp, findings.summary, findings.asset);
  Log(settings, "done\n");
  InvFile inv = InitInvFile(settings.saveFlag);
  AddTreeSection(inv, std::move(inventoryTree), InvSectionType::Snapshot, false, true);
  AddTreeSection(inv, std::move(assetInfo), InvSectionType::AssetInfo, false, true);
  return inv;
}

const std::string& FileNameSource(const NetworkIdentity& network, const std::string& computerName) {
  return network.netBiosName.empty() ? computerName : network.netBiosName;
}

void NormalScan(const ScanSettings& settings, bool silent, const std::string& currentIp, const std::string& login) {
  const std::time_t start = std::time(nullptr);
  if (settings.log) LogLine("Agent version: %s\n", kAgentVersion);
  Log(settings, "------Start Log------\n");
  Findings findings;
  const TagTree rawTree = Collect(settings, silent, currentIp, findings);
  TagTree inventoryTree = BuildInventory(settings, rawTree, start, findings);
  InvFile inv = Pack(settings, std::move(inventoryTree), findings, login);

  Log(settings, "VI. Generating File name....");
  const ResultPath path =
      ChooseResultPath(FileNameSource(findings.network, findings.asset.computerName), findings.network.macAddress);
  Log(settings, "done\n");
  Log(settings, "VII. Saving to file....");
  SaveResult(inv, path, silent);
  Log(settings, "done\n");
  Log(settings, "------End Log------\n");
}

void DebugScan(const ScanSettings& settings, bool silent, std::string currentIp) {
  const std::string rawOutput = RunWholeProfiler();
  PropertyList list = ParsePropertyList(rawOutput);
  if (settings.modern) AddOlderKeys(list);
  const NetworkIdentity network = LookupNetworkIdentity(list, currentIp);
  InvFile inv = InitInvFile(settings.saveFlag);
  const std::string computerName = ComputerName();
  const std::string& name = FileNameSource(network, computerName);
  AddDebugSections(inv, name, currentIp, network.macAddress, network.manual, rawOutput, MakeTimestamp(DateForm::Full));
  SaveResult(inv, ChooseResultPath(name, network.macAddress), silent);
}

}  // namespace

void Scan(const ScanSettings& settings, bool silent, bool debug, std::string currentIp, const std::string& login) {
  if (settings.cancelled) return;
  if (debug)
    DebugScan(settings, silent, std::move(currentIp));
  else
    NormalScan(settings, silent, currentIp, login);
}
