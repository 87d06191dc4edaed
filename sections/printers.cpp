// Turns the profiler's printing devices into "Peripherals": printers, some of which also scan or fax, and scanners that
// are nothing else.
#include "sections/items.h"
#include "sections/sections.h"

namespace {

constexpr KeyCopy kDriverCopies[] = {
    {"driverversion", "driver-version"},    {"printserver", "print-server"}, {"uri", "uri"}, {"ppd", "ppd"},
    {"ppdfileversion", "ppd-file-version"},
};

constexpr KeyCopy kScannerCopies[] = {
    {"scannerUUID", "scanner-uuid"},
    {"scannerapppath", "scanner-app-path"},
    {"scannerappversion", "scanner-app-version"},
};

// Anything but the word "no" is a yes.
bool IsNotNo(const Tag& item, const char* key) { return TextOfKey(item, key) != "no"; }

void AddScannerOfPrinter(const Tag& item, Tag& printer) {
  if (!HasKey(item, "scanner") || !IsNotNo(item, "scanner")) return;
  AddTagProperty(printer, "kind", "MFP");
  CopyKey(item, printer, {"scannerUUID", "scanner-uuid"});
  const char* path = HasKey(item, "scannerapppath") ? "scannerapppath" : "scannerappbundlepath";
  CopyKey(item, printer, {path, "scanner-app-path"});
}

void AddPrinter(const Tag& item, Tag& printer) {
  SetAttribute(printer, "is-default", FlagValue(IsNotNo(item, "default")));
  CopyKey(item, printer, {"status", "status"});
  AddScannerOfPrinter(item, printer);
  if (HasKey(item, "fax")) SetAttribute(printer, "is-fax", FlagValue(IsNotNo(item, "fax")));
  CopyKeys(item, printer, kDriverCopies);
}

// The tag of the next device of a kind.
Tag& AddDevice(TagTree& inventoryTree, const char* list, const std::string& name, const Tag& item) {
  return *SetNamedChild(*GetOrAddInSection(inventoryTree, "Peripherals", list), name, item);
}

}  // namespace

void BuildPrintersSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* items = FindItems(rawTree, "SPPrintersDataType");
  if (!items) return;
  int printer = 0, scanner = 0;
  for (const auto& item : items->children) {
    if (HasKey(*item, "default"))
      AddPrinter(*item, AddDevice(inventoryTree, "Printers", "Printer:" + std::to_string(++printer), *item));
    else if (TextOfKey(*item, "scanner") == "yes")
      CopyKeys(*item, AddDevice(inventoryTree, "Scanners", "Scanner:" + std::to_string(++scanner), *item),
               kScannerCopies);
  }
}
