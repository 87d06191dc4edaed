// Turns the profiler's network services into the section "Network": for each its device, addresses, hardware address
// with the vendor's prefix, and gateway.
#include <cstddef>
#include <string>

#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr std::size_t kVendorPrefixLength = 8;  // three bytes and their separators
constexpr KeyCopy kServiceCopies[] = {{"interface", "bsd-device-name"}, {"type", "type"}};

// Sets the attribute to the texts of a list, separated by a comma and a blank; nothing without a list or with an empty
// one.
void SetJoined(const Tag& service, const char* key, Tag& adapter, const char* name) {
  const Tag* list = FindChild(service, key);
  if (!list || list->attributes.empty()) return;
  std::string joined = TextOf(AttributeAt(*list, 0));
  for (std::size_t i = 1; i < list->attributes.size(); ++i) joined += ", " + TextOf(AttributeAt(*list, i));
  SetText(adapter, name, joined);
}

void SetHardwareAddress(const Tag& service, Tag& adapter) {
  const Tag* ethernet = FindChild(service, "Ethernet");
  if (!ethernet || !HasKey(*ethernet, "MAC_Address")) return;
  const std::string address = DashedHardwareAddress(TextOfKey(*ethernet, "MAC_Address"));
  SetText(adapter, "manuf-by-mac", address.substr(0, kVendorPrefixLength));
  SetText(adapter, "mac-address", address);
}

void WriteAdapter(const Tag& service, Tag& adapter) {
  CopyKeys(service, adapter, kServiceCopies);
  SetJoined(service, "ip_address", adapter, "ip-address");
  SetJoined(service, "SubnetMasks", adapter, "ip-subnet");
  SetHardwareAddress(service, adapter);
  if (const Tag* ipv4 = FindChild(service, "IPv4")) CopyKey(*ipv4, adapter, {"Router", "default-gateway"});
}

}  // namespace

void BuildNetworkSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* services = FindItems(rawTree, "SPNetworkDataType");
  if (!services) return;
  Tag* adapters = GetOrAddInSection(inventoryTree, "Network", "Adapters");
  int number = 0;
  for (const auto& service : services->children)
    WriteAdapter(*service, *SetNamedChild(*adapters, "net-adapter:" + std::to_string(++number), *service));
}
