// "System": the computer's model, its chassis, a short view of its memory slots, and its power profiles.
#include <cstddef>
#include <string>

#include "main/collect/command_runner.h"
#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/maker.h"
#include "zxml/value_text.h"

namespace {

Value PlatformUuid(const Tag& hardware) {
  if (HasKey(hardware, "platform_UUID")) return CopyOfKey(hardware, "platform_UUID");
  return MakeTextValue(RunCommand(kPlatformUuidCommand, kPlatformUuidChunk));
}

void WriteComputer(TagTree& inventoryTree, const Tag& hardware) {
  Tag* computer = GetOrAddInSection(inventoryTree, "System", "Computer-system");
  SetText(*computer, "model", "");
  CopyKey(hardware, *computer, {"machine_model", "model"});
  SetAttribute(*computer, "uuid", PlatformUuid(hardware));
}

void WriteChassis(TagTree& inventoryTree, const Tag& hardware) {
  Tag* chassis = GetOrAddInSection(inventoryTree, "System", "Chassis");
  SetText(*chassis, "manuf", kMaker);
  CopyKey(hardware, *chassis, {"serial_number", "serial"});
}

void WriteSlot(TagTree& inventoryTree, const Tag& slot, std::size_t number) {
  Tag* slots = GetOrAddInSection(inventoryTree, "System", "Mem-slots");
  Tag* tag = AddComplexChild(*slots, "mem-slot:" + std::to_string(number));
  const bool used = TextOfKey(slot, "dimm_status") == "ok";
  SetFlag(*tag, "used", used);
  if (!used) return;
  const std::string& size = TextOfKey(slot, "dimm_size");
  SetAttribute(*tag, "capacity", MakeIntValue(TruncateToInt64(ParseSizeMB(size))), "base-value",
               std::to_string(ParseSizeBytes(size)).c_str());
}

void WriteSlots(TagTree& inventoryTree, const Tag& items) {
  for (std::size_t i = 0; i < items.children.size(); ++i) {
    const Tag* group = FindChild(*items.children[i], "_items");
    if (!group) {
      WriteSlot(inventoryTree, *items.children[i], i + 1);
      continue;
    }
    // deliberate: every group counts from 1 again, so that a later group's slots overwrite an earlier one's
    for (std::size_t k = 0; k < group->children.size(); ++k) WriteSlot(inventoryTree, *group->children[k], k + 1);
  }
}

constexpr KeyCopy kTimers[] = {
    {"System_Sleep_Timer", "system-sleep-timer"},
    {"Disk_Sleep_Timer", "disk-sleep-timer"},
    {"Display_Sleep_Timer", "display-sleep-timer"},
};

constexpr KeyCopy kPowerFlags[] = {
    {"Sleep_On_Power_Button", "sleep-on-power-button"},
    {"Automatic_Restart_On_Power_Loss", "auto-restart-on-power-loss"},
    {"Wake_On_LAN", "wake-on-lan"},
    {"Wake_On_AC_Change", "wake-on-ac-change"},
    {"Wake_On_Clamshell_Open", "wake-on-clamshell-open"},
    {"ReduceBrightness", "reduce-brightness"},
    {"Display_Sleep_Uses_Dim", "display-sleep-uses-dim"},
};

void WritePowerSettings(const Tag& profile, Tag& target) {
  CopyKeys(profile, target, kTimers);
  CopyFlags(profile, target, kPowerFlags, OnlyBy("Yes"));
}

void WriteProfile(TagTree& inventoryTree, const Tag& profile, std::size_t number) {
  Tag* power = GetOrAddInSection(inventoryTree, "System", "PowerManagement");
  const bool mains = profile.name == "AC_Power";
  Tag* tag = SetChildValue(*power, "Profile:" + std::to_string(number),
                           MakeTextValue(mains ? std::string("AC Power") : profile.name));
  WritePowerSettings(profile, *tag);
  if (mains) WritePowerSettings(profile, *power);
}

const Tag* FindPowerInformation(const TagTree& rawTree) {
  const Tag* items = FindItems(rawTree, "SPPowerDataType");
  if (!items) return nullptr;
  for (const auto& item : items->children)
    if (TextOfKey(*item, "_name") == "sppower_information") return item.get();
  return nullptr;
}

}  // namespace

void BuildSystemSection(TagTree& inventoryTree, const TagTree& rawTree) {
  if (const Tag* hardware = FirstItem(rawTree, "SPHardwareDataType")) {
    WriteComputer(inventoryTree, *hardware);
    WriteChassis(inventoryTree, *hardware);
  }
  if (const Tag* memory = FindItems(rawTree, "SPMemoryDataType")) WriteSlots(inventoryTree, *memory);
  const Tag* power = FindPowerInformation(rawTree);
  if (!power) return;
  std::size_t number = 0;
  for (const auto& profile : power->children) WriteProfile(inventoryTree, *profile, ++number);
}
