#include "tests/support.h"

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

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

std::string SectionText(void (*build)(TagTree&, const TagTree&), const std::string& dataTypes) {
  const TagTree rawTree = RawTree(dataTypes);
  TagTree inventory = CreateTree(true, "Snapshot");
  build(inventory, rawTree);
  return TextOfTree(inventory);
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
