// Turns the profiler's graphics adapters into the section "Video": first the displays of all adapters, each with what
// its EDID says, then the adapters themselves with their memory.
#include "sections/items.h"
#include "sections/monitor.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr char kNoDisplay[] = "spdisplays_display_connector";

// Fills the monitor tag from one display. False for a connector that has none: its tag is left to the next display.
bool FillMonitor(Tag& monitor, const Tag& display) {
  const Attribute* edid = FindAttribute(display, "_spdisplays_edid");
  const bool connectorOnly = TextOfKey(display, "_name") == kNoDisplay;
  if (!connectorOnly && HasKey(display, "spdisplays_main"))
    SetAttribute(monitor, "main-monitor", FlagValue(TextOfKey(display, "spdisplays_main") == "spdisplays_yes"));
  if (edid) AddMonitorEdidAttributes(monitor, *edid);
  return edid || !connectorOnly;
}

void AddMonitors(TagTree& inventoryTree, const Tag& adapter, int& number) {
  const Tag* displays = FindChild(adapter, "spdisplays_ndrvs");
  if (!displays) return;
  for (const auto& display : displays->children) {
    Tag* monitors = GetOrAddInSection(inventoryTree, "Video", "Monitors");
    if (FillMonitor(*GetOrAddChild(*monitors, "Monitor:" + std::to_string(number)), *display)) ++number;
  }
}

void AddAdapter(TagTree& inventoryTree, const Tag& adapter, int number) {
  Tag* devices = GetOrAddInSection(inventoryTree, "Video", "Video-devices");
  Tag* tag = GetOrAddChild(*devices, "Video-adapter:" + std::to_string(number));
  if (const Attribute* model = FindAttribute(adapter, "sppci_model")) SetTagValue(*tag, CopyValue(model->value));
  const Attribute* memory = FindAttribute(adapter, "spdisplays_vram");
  if (!memory) memory = FindAttribute(adapter, "spdisplays_vram_shared");
  if (memory) SetAttribute(*tag, "ram", MakeIntValue(TruncateToInt64(ParseSizeMB(TextOf(memory)))), "units", "MB");
}

}  // namespace

void BuildVideoSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* adapters = FindItems(rawTree, "SPDisplaysDataType");
  if (!adapters) return;
  int monitor = 1;
  for (const auto& adapter : adapters->children) AddMonitors(inventoryTree, *adapter, monitor);
  int number = 0;
  for (const auto& adapter : adapters->children) AddAdapter(inventoryTree, *adapter, ++number);
}
