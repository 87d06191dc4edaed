// Turns the profiler's network services into the section "Network": for each its device, addresses, hardware address
// with the vendor's prefix, and gateway.
#include "sections/items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr std::size_t kVendorPrefixLength = 8;  // three bytes and their separators
constexpr KeyCopy kServiceCopies[] = {{"interface", "bsd-device-name"}, {"type", "type"}};

// The texts of a list, separated by a comma and a blank; nothing without a list or with an empty one.
void AddJoined(const Tag& service, const char* key, Tag& adapter, const char* name) {
  const Tag* list = FindChild(service, key);
  if (!list || list->attributes.empty()) return;
  std::string joined;
  for (const auto& element : list->attributes) {
    if (element != list->attributes.front()) joined += ", ";
    joined += TextOf(element.get());
  }
  SetAttribute(adapter, name, MakeTextValue(std::move(joined)));
}

void AddHardwareAddress(const Tag& service, Tag& adapter) {
  const Tag* ethernet = FindChild(service, "Ethernet");
  if (!ethernet || !HasKey(*ethernet, "MAC_Address")) return;
  const std::string address = DashedHardwareAddress(TextOfKey(*ethernet, "MAC_Address"));
  SetAttribute(adapter, "manuf-by-mac", MakeTextValue(address.substr(0, kVendorPrefixLength)));
  SetAttribute(adapter, "mac-address", MakeTextValue(address));
}

void AddAdapter(const Tag& service, Tag& adapter) {
  CopyKeys(service, adapter, kServiceCopies);
  AddJoined(service, "ip_address", adapter, "ip-address");
  AddJoined(service, "SubnetMasks", adapter, "ip-subnet");
  AddHardwareAddress(service, adapter);
  if (const Tag* ipv4 = FindChild(service, "IPv4")) CopyKey(*ipv4, adapter, {"Router", "default-gateway"});
}

}  // namespace

void BuildNetworkSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* services = FindItems(rawTree, "SPNetworkDataType");
  if (!services) return;
  Tag* adapters = GetOrAddInSection(inventoryTree, "Network", "Adapters");
  int number = 0;
  for (const auto& service : services->children)
    AddAdapter(*service, *SetNamedChild(*adapters, "net-adapter:" + std::to_string(++number), *service));
}
