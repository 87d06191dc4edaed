// "Software": the installed applications.
#include "sections/items.h"
#include "sections/sections.h"
#include "sections/software_sort.h"

namespace {

void WriteApplication(Tag& software, const Tag& item) {
  const std::string& name = TextOfKey(item, "_name");
  const std::string tagName =
      HasKey(item, "version") ? "Soft:" + name + " " + TextOfKey(item, "version") : "Soft:" + name;
  Tag* tag = SetChildValue(software, tagName, MakeTextValue(name));
  CopyKey(item, *tag, {"version", "version"});
  if (HasKey(item, "app_store")) SetAttribute(*tag, "app-store", FlagValue(TextOfKey(item, "app_store") != "no"));
  if (HasKey(item, "lastModified"))
    SetAttribute(*tag, "inst-date", MakeTextValue(TextOfKey(item, "lastModified").substr(0, 8)));
  CopyKey(item, *tag, {"runtime_environment", "runtime-environment"});
  CopyKey(item, *tag, {"info", "info"});
  if (!HasKey(item, "has64BitIntelCode"))
    SetAttribute(*tag, "64bit-app", FlagValue(true), "type", "unknown");
  else if (TextOfKey(item, "has64BitIntelCode") == "yes")
    SetAttribute(*tag, "64bit-app", FlagValue(true));
  CopyKey(item, *tag, {"path", "location"});
}

}  // namespace

void BuildSoftwareSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* applications = FindChild(RootOf(rawTree), "SPApplicationsDataType");
  if (!applications) return;
  Tag* software = GetOrAddChild(RootOf(inventoryTree), "Software");
  const Tag* items = FindItems(applications);
  if (!items) return;
  for (const auto& item : items->children) WriteApplication(*software, *item);
  SortSoftware(inventoryTree, "Software");
}
