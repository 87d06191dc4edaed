// Looks up who the computer is: its address, hardware address, workgroup, NetBIOS name and serial number.
#include "main/collect/host_identity.h"

#include "main/collect/plist_reader.h"
#include "zxml/value_text.h"

namespace {

const std::string& TextUnder(const PropertyList* dictionary, const char* key) {
  static const std::string empty;
  const std::string* text = FindText(dictionary, key);
  return text ? *text : empty;
}

// The first address of a network service; null when it has none that is text.
const std::string* FirstAddress(const PropertyList& service) {
  const PropertyList* address = FirstElement(FindKey(&service, "ip_address"));
  return address && address->kind == PropertyListKind::Text ? &address->text : nullptr;
}

bool IsEthernetLike(const PropertyList& service) { return TextUnder(&service, "interface").substr(0, 2) == "en"; }

// The service that has `currentIp`, or the first "en" interface with an address when that is empty.
const PropertyList* ChooseService(const PropertyList& list, const std::string& currentIp) {
  const PropertyList* services = FindItemArray(list, "SPNetworkDataType");
  if (!services) return nullptr;
  for (const PropertyList& service : services->items) {
    const std::string* address = FirstAddress(service);
    if (!address) continue;
    if (currentIp.empty() ? IsEthernetLike(service) : *address == currentIp) return &service;
  }
  return nullptr;
}

// The active network location; when none is, the last one.
const PropertyList* ChooseLocation(const PropertyList& list) {
  const PropertyList* locations = FindItemArray(list, "SPNetworkLocationDataType");
  if (!locations || locations->items.empty()) return nullptr;
  for (const PropertyList& location : locations->items)
    if (TextUnder(&location, "spnetworklocation_isActive") == "yes") return &location;
  return &locations->items.back();
}

// The service of the chosen location with exactly that hardware address.
const PropertyList* FindLocationService(const PropertyList& list, const std::string& hardwareAddress) {
  const PropertyList* services = FindKey(ChooseLocation(list), "spnetworklocation_services", PropertyListKind::Array);
  if (!services || hardwareAddress.empty()) return nullptr;
  for (const PropertyList& service : services->items)
    if (TextUnder(&service, "hardware_address") == hardwareAddress) return &service;
  return nullptr;
}

}  // namespace

const PropertyList* FindDataType(const PropertyList& list, const char* name) {
  if (list.kind != PropertyListKind::Array || list.items.empty()) return nullptr;
  for (const PropertyList& result : list.items)
    if (TextUnder(&result, "_dataType") == name) return &result;
  return &list.items.back();  // deliberate: without a match the last element serves
}

const PropertyList* FindItemArray(const PropertyList& list, const char* name) {
  return FindKey(FindDataType(list, name), "_items", PropertyListKind::Array);
}

void LookupNetworkIdentity(const PropertyList& list, AssetIdentity& identity) {
  const PropertyList* service = ChooseService(list, identity.currentIp);
  if (!service) return;
  identity.currentIp = *FirstAddress(*service);
  identity.manual = TextUnder(FindKey(service, "IPv4"), "ConfigMethod") == "Manual";
  const std::string& hardwareAddress = TextUnder(FindKey(service, "Ethernet"), "MAC Address");

  const PropertyList* known = FindLocationService(list, hardwareAddress);
  if (!known) return;
  const PropertyList* smb = FindKey(known, "SMB");
  identity.macAddress = DashedHardwareAddress(hardwareAddress);
  identity.workgroup = UpperCase(TextUnder(smb, "Workgroup"));
  identity.netBiosName = TextUnder(smb, "NetBIOSName");
}

std::string ReadSerialNumber(const PropertyList& list) {
  return TextUnder(FirstElement(FindItemArray(list, "SPHardwareDataType")), "serial_number");
}

std::string MakeTimestamp(DateForm form) { return FormatDate(CurrentTime(), form); }
