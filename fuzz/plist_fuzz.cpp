// A property-list document, XML or binary, entered into the raw tree.
#include "fuzz/fuzz.h"
#include "main/collect/plist_reader.h"
#include "platform/plist_document.h"
#include "platform/plist_xml.h"

namespace {

std::string RawText(const PropertyList& list) {
  TagTree rawTree = CreateTree(true, "Macintosh");
  EnterProfilerData(list, rawTree);
  return TextOfTree(rawTree);
}

}  // namespace

void Check(const std::string& document) {
  CheckText(RawText(ParsePropertyList(document)));
  // A comment leaves the document to libplist, which must say the same.
  if (const std::optional<PropertyList> list = ReadPlainXml(document))
    Require(RawText(*list) == RawText(ParseDocument(document + "<!-- -->")));
}
