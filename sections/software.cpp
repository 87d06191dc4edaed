// "Software": the installed applications.
#include <cstddef>
#include <string>

#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "sections/software_sort.h"

namespace {

constexpr std::size_t kDayLength = 8;  // "20150102" of a full date

void WriteApplication(Tag& software, const Tag& item) {
  const std::string& name = TextOfKey(item, "_name");
  const std::string tagName =
      HasKey(item, "version") ? "Soft:" + name + " " + TextOfKey(item, "version") : "Soft:" + name;
  Tag* tag = SetChildValue(software, tagName, MakeTextValue(name));
  CopyKey(item, *tag, {"version", "version"});
  CopyFlag(item, *tag, {"app_store", "app-store"}, Unless("no"));
  if (HasKey(item, "lastModified")) SetText(*tag, "inst-date", TextOfKey(item, "lastModified").substr(0, kDayLength));
  CopyKey(item, *tag, {"runtime_environment", "runtime-environment"});
  CopyKey(item, *tag, {"info", "info"});
  if (!HasKey(item, "has64BitIntelCode"))
    SetAttribute(*tag, "64bit-app", MakeTextValue("1"), "type", "unknown");
  else if (SaysYes(item, "has64BitIntelCode", OnlyBy("yes")))
    SetFlag(*tag, "64bit-app", true);
  CopyKey(item, *tag, {"path", "location"});
}

}  // namespace

void BuildSoftwareSection(TagTree& inventoryTree, const TagTree& rawTree) {
  if (!FindChild(RootOf(rawTree), "SPApplicationsDataType")) return;
  Tag* software = GetOrAddChild(RootOf(inventoryTree), "Software");
  if (const Tag* items = FindItems(rawTree, "SPApplicationsDataType"))
    for (const auto& item : items->children) WriteApplication(*software, *item);
  SortSoftware(inventoryTree, "Software");
}
