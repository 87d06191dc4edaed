// Turns the firewall's settings into "Security" / "Firewall": its state, and for each service and application whether
// it may be reached.
#include <string>

#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"

namespace {

struct State {
  const char* name;
  const char* status;
};

constexpr State kStates[] = {
    {"spfirewall_globalstate_allow_all", "0"},
    {"spfirewall_globalstate_limit_connections", "1"},
    {"spfirewall_globalstate_block_all", "2"},
};

struct RuleList {
  const char* key;
  const char* tag;
  const char* entry;
};

constexpr RuleList kRuleLists[] = {
    {"spfirewall_services", "Services", "service:"},
    {"spfirewall_applications", "Apps", "app:"},
};

constexpr KeyCopy kSwitches[] = {
    {"spfirewall_stealthenabled", "stealth-mode"},
    {"spfirewall_loggingenabled", "fw-log"},
};

void SetState(Tag& firewall, const std::string& name) {
  for (const State& state : kStates)
    if (name == state.name) SetText(firewall, "status", state.status);
}

void WriteRule(Tag& rule, const Tag& entry) {
  if (HasKey(entry, "_name")) SetTagValue(rule, CopyOfKey(entry, "_name"));
  SetFlag(rule, "status", SaysYes(entry, "value", Unless("spfirewall_block_all")));
}

void WriteRules(Tag& firewall, const Tag& item, const RuleList& list) {
  const Tag* entries = FindChild(item, list.key);
  if (!entries) return;
  Tag* rules = GetOrAddChild(firewall, list.tag);
  int number = 0;
  for (const auto& entry : entries->children)
    WriteRule(*AddComplexChild(*rules, list.entry + std::to_string(++number)), *entry);
}

}  // namespace

void BuildFirewallSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* items = FindItems(rawTree, "SPFirewallDataType");
  if (!items) return;
  for (const auto& item : items->children) {
    Tag* firewall = GetOrAddInSection(inventoryTree, "Security", "Firewall");
    SetState(*firewall, TextOfKey(*item, "spfirewall_globalstate"));
    for (const RuleList& list : kRuleLists) WriteRules(*firewall, *item, list);
    CopyFlags(*item, *firewall, kSwitches, Unless("No"));
  }
}
