// A profiler document and the answers of the other tools, through every builder to the texts of both trees.
#include "fuzz/fuzz.h"
#include "fuzz/stand_ins.h"
#include "main/collect/asset_summary.h"
#include "main/collect/host_identity.h"
#include "main/collect/modern_keys.h"
#include "main/collect/plist_reader.h"
#include "main/collect/process_list.h"
#include "main/post_process.h"
#include "zxml/asset_info.h"

void Check(const std::string& input) {
  const std::size_t end = std::min(input.find('\x1E'), input.size());
  SetAnswers(std::string_view(input).substr(std::min(end + 1, input.size())));
  PropertyList list = ParsePropertyList(input.substr(0, end));
  if (input.size() % 2) AddOlderKeys(list);  // half of the scans with the option for newer systems
  AssetSummary summary;
  CollectAssetSummary(list, summary);
  AssetIdentity asset;
  LookupNetworkIdentity(list, asset);
  asset.serialNumber = ReadSerialNumber(list);
  TagTree rawTree = CreateTree(true, "Macintosh"), inventoryTree = CreateTree(true, "Snapshot");
  EnterProfilerData(list, rawTree);
  CollectProcesses(rawTree);
  PostProcess(inventoryTree, rawTree, false);
  CheckText(TextOfTree(inventoryTree));
  CheckText(TextOfTree(BuildAssetInfo(true, inventoryTree, MakeTimestamp(DateForm::Full), summary, asset)));
}
