// Turns the profiler's printing devices into "Peripherals": printers, some of which also scan or fax, and scanners that
// are nothing else.
#include <string>

#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
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

constexpr Yes kYes = Unless("no");

void WriteScannerOfPrinter(const Tag& item, Tag& printer) {
  if (!HasKey(item, "scanner") || !SaysYes(item, "scanner", kYes)) return;
  AddTagProperty(printer, "kind", "MFP");
  CopyKey(item, printer, {"scannerUUID", "scanner-uuid"});
  const char* path = HasKey(item, "scannerapppath") ? "scannerapppath" : "scannerappbundlepath";
  CopyKey(item, printer, {path, "scanner-app-path"});
}

void WritePrinter(const Tag& item, Tag& printer) {
  CopyFlag(item, printer, {"default", "is-default"}, kYes);
  CopyKey(item, printer, {"status", "status"});
  WriteScannerOfPrinter(item, printer);
  CopyFlag(item, printer, {"fax", "is-fax"}, kYes);
  CopyKeys(item, printer, kDriverCopies);
}

// The tag of one device in a list of its kind.
Tag* AddDevice(TagTree& inventoryTree, const char* list, const std::string& name, const Tag& item) {
  return SetNamedChild(*GetOrAddInSection(inventoryTree, "Peripherals", list), name, item);
}

}  // namespace

void BuildPrintersSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* items = FindItems(rawTree, "SPPrintersDataType");
  if (!items) return;
  int printers = 0;
  int scanners = 0;
  for (const auto& item : items->children) {
    if (HasKey(*item, "default")) {
      WritePrinter(*item, *AddDevice(inventoryTree, "Printers", "Printer:" + std::to_string(++printers), *item));
    } else if (SaysYes(*item, "scanner", OnlyBy("yes"))) {
      Tag* scanner = AddDevice(inventoryTree, "Scanners", "Scanner:" + std::to_string(++scanners), *item);
      CopyKeys(*item, *scanner, kScannerCopies);
    }
  }
}
