#include "tests/support.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "main/collect/plist_reader.h"
#include "platform/platform.h"
#include "zxml/zXML.h"

PropertyList ListOf(const std::string& elements) {
  return ParsePropertyList("<plist version=\"1.0\"><array>" + elements + "</array></plist>");
}

std::string DataType(const std::string& name, const std::string& items) {
  return "<dict><key>_dataType</key><string>" + name + "</string><key>_items</key><array>" + items + "</array></dict>";
}

std::string Dict(std::initializer_list<const char*> keysAndTexts) {
  std::string xml = "<dict>";
  bool key = true;
  for (const std::string text : keysAndTexts) {
    if (key)
      xml += "<key>" + text + "</key>";
    else
      xml += text[0] == '<' ? text : "<string>" + text + "</string>";
    key = !key;
  }
  return xml + "</dict>";
}

std::string Item(const std::string& fields, const std::string& xml) {
  std::string item = "<dict>";
  for (std::size_t at = 0, end = 0; at < fields.size(); at = end + 1) {
    end = std::min(fields.find(';', at), fields.size());
    const std::size_t equals = fields.find('=', at);
    const std::string type = fields[equals + 1] == '#' ? "integer" : "string";
    const std::size_t value = equals + (type == "integer" ? 2 : 1);
    item += "<key>" + fields.substr(at, equals - at) + "</key><" + type + ">" + fields.substr(value, end - value) +
            "</" + type + ">";
  }
  return item + xml + "</dict>";
}

std::string Below(const std::string& key, const std::string& xml) { return "<key>" + key + "</key>" + xml; }

std::string List(const std::string& key, const std::string& xml) { return Below(key, "<array>" + xml + "</array>"); }

std::string Items(const std::string& xml) { return List("_items", xml); }

TagTree RawTree(const std::string& dataTypes) {
  TagTree tree = CreateTree(true, "Macintosh");
  EnterProfilerData(ListOf(dataTypes), tree);
  return tree;
}

std::string TextOfTree(const TagTree& tree) {
  std::string text(TextSize(tree.container, false), '\0');
  text.resize(WriteText(tree.container, text.data(), 0, false, false));
  return text.substr(text.find('\n') + 1);
}

std::string ShownTree(const TagTree& tree, std::string_view path) {
  const Tag* tag = &RootOf(tree);
  while (tag && !path.empty()) {
    const std::string_view name = path.substr(0, path.find('/'));
    tag = FindChild(*tag, name);
    path.remove_prefix(std::min(path.size(), name.size() + 1));
  }
  if (!tag) return "none";
  TagTree shown = CreateTree(true, "");
  CopyTag(RootOf(shown), *tag);
  std::string text;
  std::istringstream lines(TextOfTree(shown));
  for (std::string line; std::getline(lines, line);) {
    const bool opens = std::string_view("*+-").find(line[0]) != std::string_view::npos;
    text += (opens ? "\n" : line[0] == '~' ? " " : "; ") + line;
  }
  for (std::size_t at = text.find('\r'); at != std::string::npos; at = text.find('\r')) text.replace(at, 1, "\\r");
  return text + "\n";
}

std::string ShownSection(void (*build)(TagTree&, const TagTree&), const std::string& dataTypes, std::string_view path) {
  return ShownSection(build, RawTree(dataTypes), path);
}

std::string ShownSection(void (*build)(TagTree&, const TagTree&), const TagTree& rawTree, std::string_view path) {
  TagTree inventory = CreateTree(true, "Snapshot");
  build(inventory, rawTree);
  return ShownTree(inventory, path);
}

Tools::Tools() : path_(std::getenv("PATH")) {
  char name[] = "/tmp/quill-tools-XXXXXX";
  folder_ = mkdtemp(name);
  setenv("PATH", (folder_ + ":" + path_).c_str(), 1);
}

Tools::~Tools() {
  setenv("PATH", path_.c_str(), 1);
  if (std::system(("rm -rf " + folder_).c_str()) != 0) std::abort();
}

void Tools::Add(const std::string& name, const std::string& script) {
  const std::string path = folder_ + "/" + name;
  std::ofstream(path) << "#!/bin/sh\n" << script << "\n";
  chmod(path.c_str(), 0755);
}
