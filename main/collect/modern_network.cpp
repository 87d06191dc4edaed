// The network of newer systems in older keys: sub-nets from the service's IPv4 settings, and hardware addresses, by
// which the active location knows a service, from its Ethernet settings.
#include <cstddef>
#include <map>
#include <set>
#include <utility>

#include "main/collect/modern_keys.h"
#include "main/collect/modern_steps.h"

namespace {

constexpr char kLocations[] = "SPNetworkLocationDataType";
constexpr char kServices[] = "spnetworklocation_services";

struct Interface {
  std::string name;  // BSD
  std::string address;
};

void AddSubNet(PropertyList& service) {
  const PropertyList* masks = FindKey(FindKey(&service, "IPv4"), "SubnetMasks", PropertyListKind::Array);
  if (masks) AddMissing(service, "SubnetMasks", PropertyList(*masks));
}

std::vector<Interface> InterfacesOf(PropertyList& list) {
  std::vector<Interface> interfaces;
  for (PropertyList* result : ResultsOf(list, "SPNetworkDataType")) {
    for (PropertyList* service : ItemsOf(*result)) {
      const std::string* address = FindText(FindKey(service, "Ethernet"), "MAC Address");
      if (address && !address->empty()) interfaces.push_back({TextUnderKey(*service, "interface"), *address});
    }
  }
  return interfaces;
}

// The services of the active location, else of the last one, as they are chosen where addresses are looked up. What is
// missing on the way is made; null when something else is in its place.
PropertyList* LocationServices(PropertyList& list) {
  if (ResultsOf(list, kLocations).empty()) {
    PropertyList result = MakeNode(PropertyListKind::Dictionary);
    AddMissing(result, "_dataType", MakeText(kLocations));
    list.items.insert(list.items.begin(), std::move(result));  // the last one has a meaning of its own
  }
  PropertyList& result = *ResultsOf(list, kLocations).front();
  AddMissing(result, "_items", MakeNode(PropertyListKind::Array));
  PropertyList* locations = FindKeyToChange(result, "_items", PropertyListKind::Array);
  if (!locations) return nullptr;
  if (locations->items.empty()) locations->items.push_back(MakeNode(PropertyListKind::Dictionary));
  PropertyList* location = &locations->items.back();
  for (PropertyList* one : ItemsOf(result)) {
    if (TextUnderKey(*one, "spnetworklocation_isActive") != "yes") continue;
    location = one;
    break;
  }
  AddMissing(*location, kServices, MakeNode(PropertyListKind::Array));
  return FindKeyToChange(*location, kServices, PropertyListKind::Array);
}

// Gives each interface a service with its address: one of the same name that has none yet, else a new one.
void AddHardwareAddresses(std::vector<PropertyList>& services, const std::vector<Interface>& interfaces) {
  std::set<std::string> known;
  std::map<std::string, std::size_t> withoutAddress;  // by BSD name
  for (std::size_t i = 0; i < services.size(); ++i) {
    known.insert(TextUnderKey(services[i], "hardware_address"));
    const std::string* name = FindText(&services[i], "bsd_device_name");
    if (name && !FindKey(&services[i], "hardware_address")) withoutAddress.emplace(*name, i);
  }
  for (const Interface& interface : interfaces) {
    if (!known.insert(interface.address).second) continue;
    const auto place = withoutAddress.find(interface.name);
    const bool isNew = place == withoutAddress.end();
    if (isNew) services.push_back(MakeNode(PropertyListKind::Dictionary));
    AddMissing(isNew ? services.back() : services[place->second], "hardware_address", MakeText(interface.address));
    if (!isNew) withoutAddress.erase(place);
  }
}

}  // namespace

void AddNetworkKeys(PropertyList& list) {
  for (PropertyList* result : ResultsOf(list, "SPNetworkDataType"))
    for (PropertyList* service : ItemsOf(*result)) AddSubNet(*service);
  const std::vector<Interface> interfaces = InterfacesOf(list);
  if (interfaces.empty()) return;
  if (PropertyList* services = LocationServices(list)) AddHardwareAddresses(services->items, interfaces);
}
