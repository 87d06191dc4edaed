// The scan driver: the phases of a scan in their order, each with its lines of the progress log.
#include "main/scan.h"

#include <cstdint>
#include <ctime>
#include <string>
#include <utility>

#include "main/collect/asset_summary.h"
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

constexpr std::int64_t kMillisecondsPerSecond = 1000;

// What a scan gathers on its way to the two trees.
struct Findings {
  AssetSummary summary;
  AssetIdentity identity;
  std::string timestamp;
};

void Log(const ScanSettings& settings, const char* text) {
  if (settings.log) LogLine("%s", text);
}

ProfilerData CollectDocuments(const ScanSettings& settings, bool silent) {
  Log(settings, "I. Collecting Data....\n");
  ProfilerData data = CollectProfilerData(silent);
  Log(settings, "done\n");
  return data;
}

// Phases I to III: the raw tree, and what the property list says that the raw tree does not.
TagTree Collect(const ScanSettings& settings, bool silent, Findings& findings) {
  PropertyList list = ParseProfilerData(CollectDocuments(settings, silent));
  if (settings.modern) AddOlderKeys(list);
  CollectAssetSummary(list, findings.summary);

  TagTree rawTree = CreateTree(settings.saveFlag, "Macintosh");
  Log(settings, "II. Parsing Data....");
  EnterProfilerData(list, rawTree);
  Log(settings, "done\n");

  Log(settings, "III. Get Data For AssetInfo....");
  LookupNetworkIdentity(list, findings.identity);
  Log(settings, "33% ");
  findings.identity.serialNumber = ReadSerialNumber(list);
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
  SetAttributeByPath(inventoryTree, "/scan-time", MakeIntValue(seconds * kMillisecondsPerSecond));
  setText("/client-version", kClientVersion);
  setText("/scan-subtype", "sstService");
  setText("/snaptype", "mac:1");
  setText("/hostname", findings.identity.netBiosName);
  setText("/domain", findings.identity.workgroup);
  setText("/user-name", findings.summary.userName);
  setText("/ip-address", findings.identity.currentIp);
}

// Phase IV: every section of the inventory, then the header.
TagTree BuildInventory(const ScanSettings& settings, const TagTree& rawTree, std::time_t start, Findings& findings) {
  TagTree inventoryTree = CreateTree(settings.saveFlag, "Snapshot");
  PostProcess(inventoryTree, rawTree, settings.log);
  const std::time_t end = std::time(nullptr);
  findings.identity.computerName = ComputerName();
  findings.timestamp = MakeTimestamp(DateForm::Full);
  SetHeader(inventoryTree, findings, static_cast<std::int64_t>(end - start));
  return inventoryTree;
}

// Phase V: the container with both trees.
InvFile Pack(const ScanSettings& settings, TagTree inventoryTree, const Findings& findings) {
  Log(settings, "V. Creating AssetInfo Section....");
  TagTree assetInfo =
      BuildAssetInfo(settings.saveFlag, inventoryTree, findings.timestamp, findings.summary, findings.identity);
  Log(settings, "done\n");
  InvFile inv = InitInvFile(settings.saveFlag);
  AddTreeSection(inv, std::move(inventoryTree), InvSectionType::Snapshot, false, true);
  AddTreeSection(inv, std::move(assetInfo), InvSectionType::AssetInfo, false, true);
  return inv;
}

void NormalScan(const ScanSettings& settings, bool silent, AssetIdentity identity) {
  const std::time_t start = std::time(nullptr);
  if (settings.log) LogLine("Agent version: %s\n", kAgentVersion);
  Log(settings, "------Start Log------\n");
  Findings findings;
  findings.identity = std::move(identity);
  const TagTree rawTree = Collect(settings, silent, findings);
  TagTree inventoryTree = BuildInventory(settings, rawTree, start, findings);
  InvFile inv = Pack(settings, std::move(inventoryTree), findings);

  Log(settings, "VI. Generating File name....");
  const ResultPath path = ChooseResultPath(findings.identity);
  Log(settings, "done\n");
  Log(settings, "VII. Saving to file....");
  SaveResult(inv, path, silent);
  Log(settings, "done\n");
  Log(settings, "------End Log------\n");
}

void DebugScan(const ScanSettings& settings, bool silent, AssetIdentity identity) {
  const std::string rawOutput = RunWholeProfiler();
  PropertyList list = ParseProfilerOutput(rawOutput);
  if (settings.modern) AddOlderKeys(list);
  LookupNetworkIdentity(list, identity);
  identity.computerName = ComputerName();
  InvFile inv = InitInvFile(settings.saveFlag);
  AddTreeSection(inv, BuildDebugAssetInfo(settings.saveFlag, MakeTimestamp(DateForm::Full), identity),
                 InvSectionType::AssetInfo, false, true);
  AddRawSection(inv, InvCompress(rawOutput));
  inv.hasRawData = true;
  SaveResult(inv, ChooseResultPath(identity), silent);
}

}  // namespace

void Scan(const ScanSettings& settings, bool silent, bool debug, const std::string& currentIp,
          const std::string& login) {
  if (settings.cancelled) return;
  AssetIdentity identity;
  identity.currentIp = currentIp;
  identity.login = login;
  if (debug)
    DebugScan(settings, silent, std::move(identity));
  else
    NormalScan(settings, silent, std::move(identity));
}
