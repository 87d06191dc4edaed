// Turns the profiler's graphics adapters into the section "Video": first the displays of all adapters, each with what
// its EDID says, then the adapters themselves with their memory.
#include <string>

#include "main/collect/modern_keys.h"
#include "sections/inventory_tags.h"
#include "sections/monitor.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr char kNoDisplay[] = "spdisplays_display_connector";

// Writes the monitor tag of one display. False for a connector that has none: its tag is left to the next display.
bool WriteMonitor(Tag& monitor, const Tag& display) {
  const Attribute* edid = FindAttribute(display, "_spdisplays_edid");
  const bool connectorOnly = TextOfKey(display, "_name") == kNoDisplay;
  if (!connectorOnly) CopyFlag(display, monitor, {"spdisplays_main", "main-monitor"}, OnlyBy("spdisplays_yes"));
  if (edid) WriteMonitorEdid(monitor, *edid);
  if (const Tag* known = FindChild(display, kMonitorKey)) WriteMonitorKeys(monitor, *known);
  return edid || !connectorOnly;
}

void WriteMonitors(TagTree& inventoryTree, const Tag& adapter, int& number) {
  const Tag* displays = FindChild(adapter, "spdisplays_ndrvs");
  if (!displays) return;
  for (const auto& display : displays->children) {
    Tag* monitors = GetOrAddInSection(inventoryTree, "Video", "Monitors");
    if (WriteMonitor(*GetOrAddChild(*monitors, "Monitor:" + std::to_string(number)), *display)) ++number;
  }
}

void WriteAdapter(TagTree& inventoryTree, const Tag& adapter, int number) {
  Tag* devices = GetOrAddInSection(inventoryTree, "Video", "Video-devices");
  Tag* tag = GetOrAddChild(*devices, "Video-adapter:" + std::to_string(number));
  if (HasKey(adapter, "sppci_model")) SetTagValue(*tag, CopyOfKey(adapter, "sppci_model"));
  const Attribute* memory = FindAttribute(adapter, "spdisplays_vram");
  if (!memory) memory = FindAttribute(adapter, "spdisplays_vram_shared");
  if (memory) SetAttribute(*tag, "ram", MakeIntValue(TruncateToInt64(ParseSizeMB(TextOf(memory)))), "units", "MB");
}

}  // namespace

void BuildVideoSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* adapters = FindItems(rawTree, "SPDisplaysDataType");
  if (!adapters) return;
  int monitor = 1;
  for (const auto& adapter : adapters->children) WriteMonitors(inventoryTree, *adapter, monitor);
  int number = 0;
  for (const auto& adapter : adapters->children) WriteAdapter(inventoryTree, *adapter, ++number);
}
