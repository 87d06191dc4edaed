// "Libraries": the Internet plug-ins, each described by its bundle's information dictionary.
#include <string>

#include "main/collect/plist_reader.h"
#include "platform/platform.h"
#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "sections/software_sort.h"
#include "zxml/value_text.h"

namespace {

void WriteBundle(TagTree& inventoryTree, const Bundle& bundle, const char* group) {
  TagTree information = CreateTree(false, "Version");
  EnterDictionary(bundle.information, RootOf(information));
  const Tag& keys = RootOf(information);

  const std::string& version = TextOfKey(keys, "CFBundleShortVersionString");
  const std::string baseName = bundle.fileName.substr(0, bundle.fileName.find('.'));
  const std::string tagName = SafeTagName(Trimmed("library:" + baseName + " " + version, " \n\r"));
  Tag* libraries = GetOrAddChild(RootOf(inventoryTree), "Libraries");
  Tag* tag = SetChildValue(*libraries, tagName, MakeTextValue(baseName));
  SetText(*tag, "path", bundle.path);
  if (!version.empty()) SetText(*tag, "version", version);
  const bool described = HasKey(keys, "CFBundleGetInfoString");
  CopyKey(keys, *tag, {described ? "CFBundleGetInfoString" : "WebPluginDescription", "descr"});
  SetText(*tag, "group", group);
}

void WriteFolder(TagTree& inventoryTree, const char* folder, const char* group) {
  ForEachBundle(folder, [&inventoryTree, group](const Bundle& bundle) {
    if (bundle.information.kind == PropertyListKind::Dictionary) WriteBundle(inventoryTree, bundle, group);
  });
}

}  // namespace

void BuildLibrariesSection(TagTree& inventoryTree) {
  WriteFolder(inventoryTree, "/Library/Internet Plug-Ins", "InternetPlug-Ins");
  SortSoftware(inventoryTree, "Libraries");
}
