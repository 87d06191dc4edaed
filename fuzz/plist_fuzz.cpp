// A property-list document, XML or binary, entered into the raw tree. Two witnesses stand beside the reader of XML. The
// guard against deep nesting must see at least what expat sees open at once. And where a document is plain, that is
// well-formed for expat and of nothing but the ordinary elements in their places, all numbers and dates written in the
// one usual way, no key empty or there twice, no comment, CDATA, instruction, carriage return or U+FEFF, no ">" within
// quotes, libplist must read the same from it. Elsewhere the three need not agree: CoreFoundation, which the reader
// follows, takes what XML forbids and refuses what libplist forgives.
#include <expat.h>
#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>

#include "fuzz/fuzz.h"
#include "main/collect/plist_reader.h"
#include "platform/plist_limits.h"
#include "platform/portable/plist_binary.h"
#include "platform/portable/plist_xml.h"

namespace {

// What expat sees of a document.
struct Witness {
  struct Element {
    std::string name;
    std::size_t elements = 0;  // directly in it
    std::set<std::string> keys;
  };
  std::vector<Element> open;
  std::string text;
  std::size_t containers = 0, most = 0;
  bool plain = true;
};

Witness& Of(void* data) { return *static_cast<Witness*>(data); }

bool IsContainer(const std::string& name) { return name == "dict" || name == "array"; }

bool IsOneOf(const std::string& name, std::initializer_list<const char*> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// "d" stands for a digit, everything else for itself.
bool HasShape(const std::string& text, const std::string& shape) {
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(),
                    [](char c, char s) { return s == 'd' ? c >= '0' && c <= '9' : c == s; });
}

bool IsUsual(const std::string& name, const std::string& text) {
  if (name == "integer") {
    const std::size_t sign = text.find('-') == 0 ? 1 : 0, digits = text.size() - sign;
    return digits > 0 && digits <= 18 && (text[sign] != '0' || text == "0") &&
           text.find_first_not_of("0123456789", sign) == std::string::npos;
  }
  if (name == "real") return text.size() > 2 && HasShape(text, "d." + std::string(text.size() - 2, 'd'));
  if (name == "date") {
    const auto isWithin = [&text](std::size_t at, const char* least, const char* most) {
      return text.substr(at, 2) >= least && text.substr(at, 2) <= most;
    };
    return HasShape(text, "20dd-dd-ddTdd:dd:ddZ") && isWithin(2, "00", "37") && isWithin(5, "01", "12") &&
           isWithin(8, "01", "28") && isWithin(11, "00", "23") && isWithin(14, "00", "59") && isWithin(17, "00", "59");
  }
  if (name == "data") return text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz \t\n") > 3;
  if (name == "true" || name == "false") return text.empty();
  return name != "key" || !text.empty();
}

void OnStart(void* data, const char* name, const char** attributes) {
  Witness& seen = Of(data);
  Witness::Element* parent = seen.open.empty() ? nullptr : &seen.open.back();
  const bool isKeysTurn = parent && parent->name == "dict" && parent->elements % 2 == 0;
  const std::string element = name;
  const bool inPlace = element == "plist"
                           ? !parent
                           : parent && isKeysTurn == (element == "key") &&
                                 (IsContainer(parent->name) || (parent->name == "plist" && !parent->elements));
  seen.plain =
      seen.plain && inPlace && (!*attributes || element == "plist") &&
      IsOneOf(element, {"plist", "dict", "array", "key", "string", "integer", "real", "date", "data", "true", "false"});
  if (parent) ++parent->elements;
  seen.containers += IsContainer(element);
  seen.most = std::max(seen.most, seen.containers);
  seen.open.push_back({element, 0, {}});
  seen.text.clear();
}

void OnEnd(void* data, const char*) {
  Witness& seen = Of(data);
  const Witness::Element element = seen.open.back();
  seen.open.pop_back();
  seen.containers -= IsContainer(element.name);
  if (element.name == "dict") seen.plain = seen.plain && element.elements % 2 == 0;
  if (element.name == "plist") seen.plain = seen.plain && element.elements == 1;
  if (element.name == "key" && !seen.open.empty())
    seen.plain = seen.open.back().keys.insert(seen.text).second && seen.plain;
  if (!IsContainer(element.name) && element.name != "plist")
    seen.plain = seen.plain && IsUsual(element.name, seen.text) && seen.text.find("\xEF\xBB\xBF") != 0;
  seen.text.clear();
}

void OnText(void* data, const char* text, int size) {
  Witness& seen = Of(data);
  seen.text.append(text, static_cast<std::size_t>(size));
  const bool between = seen.open.empty() || IsContainer(seen.open.back().name) || seen.open.back().name == "plist";
  if (between && seen.text.find_first_not_of(" \t\n") != std::string::npos) seen.plain = false;
}

void OnOther(void* data) { Of(data).plain = false; }

Witness Ask(const std::string& document) {
  Witness seen;
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr), XML_ParserFree);
  XML_SetUserData(parser.get(), &seen);
  XML_SetElementHandler(parser.get(), OnStart, OnEnd);
  XML_SetCharacterDataHandler(parser.get(), OnText);
  XML_SetCommentHandler(parser.get(), [](void* data, const char*) { OnOther(data); });
  XML_SetProcessingInstructionHandler(parser.get(), [](void* data, const char*, const char*) { OnOther(data); });
  XML_SetStartCdataSectionHandler(parser.get(), OnOther);
  XML_SetStartDoctypeDeclHandler(parser.get(), [](void* data, const char*, const char*, const char*, int hasSubset) {
    if (hasSubset) OnOther(data);
  });
  XML_SetXmlDeclHandler(parser.get(), [](void* data, const char*, const char* encoding, int) {
    if (encoding && std::string(encoding) != "UTF-8") OnOther(data);
  });
  const auto size = static_cast<int>(document.size());
  const bool wellFormed = XML_Parse(parser.get(), document.data(), size, XML_TRUE) == XML_STATUS_OK;
  // A reference to a blank is text for libplist; behind a first byte that is no "<" it looks for another form.
  const bool usual = document.find("\r") == std::string::npos && document.find("&#") == std::string::npos;
  seen.plain = seen.plain && wellFormed && usual && document.find("<") == 0;
  return seen;
}

// What libplist reads from XML, by way of its binary form.
PropertyList ReadByLibplist(const std::string& document) {
  plist_t root = nullptr;
  char* bytes = nullptr;
  std::uint32_t size = 0;
  plist_from_xml(document.data(), static_cast<std::uint32_t>(document.size()), &root);
  if (root) plist_to_bin(root, &bytes, &size);
  const PropertyList list = bytes ? ReadBinaryList({bytes, size}, kMaxBinaryValues) : PropertyList();
  std::free(bytes);
  plist_free(root);
  return list;
}

bool AreSame(const PropertyList& a, const PropertyList& b) {
  return a.kind == b.kind && (a.kind != PropertyListKind::Number || a.numberType == b.numberType) &&
         a.integer == b.integer && a.text == b.text && a.keys == b.keys &&
         std::equal(a.items.begin(), a.items.end(), b.items.begin(), b.items.end(), AreSame);
}

std::string RawText(const PropertyList& list) {
  TagTree rawTree = CreateTree(true, "Macintosh");
  EnterProfilerData(list, rawTree);
  return TextOfTree(rawTree);
}

}  // namespace

void Check(const std::string& document) {
  CheckText(RawText(ParsePropertyList(document)));
  const Witness seen = Ask(document);
  Require(XmlDepth(document) >= seen.most);
  if (!seen.plain || !XmlNestingIsSafe(document)) return;
  const PropertyList list = ReadXmlList(document);
  Require(list.kind != PropertyListKind::Null && AreSame(list, ReadByLibplist(document)));
}
