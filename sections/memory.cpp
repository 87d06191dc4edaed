// "Memory": every slot with what is in it, and the total.
#include <string>

#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

void WriteSlot(Tag& memory, const Tag& slot, int number) {
  Tag* tag = GetOrAddChild(memory, "Memory-slot:" + std::to_string(number));
  const bool used = TextOfKey(slot, "dimm_status") == "ok";
  SetFlag(*tag, "used", used);
  if (!used) return;
  CopyKey(slot, *tag, {"dimm_manufacturer", "manuf"});
  if (HasKey(slot, "dimm_size")) {
    // deliberate: rounded to single precision before it is truncated
    const auto megabytes = static_cast<float>(ParseSizeMB(TextOfKey(slot, "dimm_size")));
    SetNumber(*tag, "capacity", TruncateToInt64(megabytes));
  }
  CopyKey(slot, *tag, {"dimm_type", "mem-type"});
  if (HasKey(slot, "dimm_speed")) SetText(*tag, "speed", FirstWord(TextOfKey(slot, "dimm_speed")));
  CopyKey(slot, *tag, {"_name", "bank-label"});
}

// Slots are counted through all memory groups.
void WriteSlots(TagTree& inventoryTree, const Tag& items) {
  Tag* memory = GetOrAddChild(RootOf(inventoryTree), "Memory");
  int number = 0;
  for (const auto& item : items.children) {
    const Tag* group = FindChild(*item, "_items");
    if (!group) {
      WriteSlot(*memory, *item, ++number);
      continue;
    }
    for (const auto& slot : group->children) WriteSlot(*memory, *slot, ++number);
  }
}

}  // namespace

void BuildMemorySection(TagTree& inventoryTree, const TagTree& rawTree) {
  // deliberate: without the memory data there is no total either
  if (!FindChild(RootOf(rawTree), "SPMemoryDataType")) return;
  if (const Tag* items = FindItems(rawTree, "SPMemoryDataType")) WriteSlots(inventoryTree, *items);
  const Tag* hardware = FirstItem(rawTree, "SPHardwareDataType");
  if (!hardware) return;
  const double megabytes = ParseSizeMB(TextOfKey(*hardware, "physical_memory"));
  SetNumber(*GetOrAddInSection(inventoryTree, "Memory", "General-info"), "physical-memory", TruncateToInt64(megabytes));
}
