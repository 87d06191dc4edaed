// Turns the sections of a file into foldable trees with all their names, values and properties, and what has no tree
// into plain text.
#include "reader/report_tree.h"

#include <set>

#include "reader/html.h"
#include "reader/text.h"

namespace {

std::string PropertiesHtml(const std::vector<Property>& properties) {
  std::string html;
  for (const Property& property : properties) {
    if (property.name == "complex" && property.text.empty()) continue;  // only announces a child
    html += " <span class=\"soft\">" + HtmlExact(property.name) + " <bdi>" + HtmlExact(property.text) + "</bdi></span>";
  }
  return html;
}

std::string ValueHtml(const std::string& text) { return text.empty() ? "" : "<bdi>" + HtmlExact(text) + "</bdi>"; }

std::string AttributesHtml(const Tag& tag) {
  std::set<std::string_view> children;
  for (const auto& child : tag.children) children.insert(child->name);
  std::string html;
  for (const auto& attribute : tag.attributes) {
    const bool announces = FindProperty(attribute->properties, "complex") && children.count(attribute->name) != 0;
    if (announces && TextOf(attribute.get()).empty()) continue;
    html += "<dt>" + HtmlExact(attribute->name) + "</dt><dd>" + ValueHtml(TextOf(attribute.get())) +
            PropertiesHtml(attribute->properties) + "</dd>";
  }
  return html.empty() ? "" : "<dl class=\"pairs\">" + html + "</dl>";
}

// The tree may be as deep as kMaxDepth.
void AppendTag(const Tag& tag, bool open, std::string& html) {
  std::string head = "<b>" + HtmlExact(tag.name) + "</b> " + ValueHtml(TextOf(&tag)) + PropertiesHtml(tag.properties);
  const std::string attributes = AttributesHtml(tag);
  html += "<li>";
  if (attributes.empty() && tag.children.empty()) {
    html += "<div>" + head + "</div></li>\n";
    return;
  }
  html += (open ? "<details open><summary>" : "<details><summary>") + head + "</summary>" + attributes;
  if (!tag.children.empty()) {
    html += "<ul>";
    for (const auto& child : tag.children) AppendTag(*child, false, html);
    html += "</ul>";
  }
  html += "</details></li>\n";
}

void AppendSection(const Section& section, std::string& html) {
  for (const auto& root : section.tree.container.children) AppendTag(*root, true, html);
  if (!section.tree.container.children.empty() || section.body.text.empty()) return;
  html += "<li><details><summary><b>Section " + std::to_string(section.record.number) + "</b> as text, " +
          Bytes(section.body.text.size()) + "</summary><pre>" + HtmlLines(section.body.text) +
          "</pre></details></li>\n";
}

const std::vector<ColumnHead> kRecordHeads = {
    {"Number", "num"},        {"Type", ""},       {"Timestamp", ""},
    {"Snapshot type", ""},    {"Identifier", ""}, {"Offset, bytes", "num"},
    {"Length, bytes", "num"}, {"Form", ""},       {"State", ""},
};

std::string RecordHtml(const Section& section) {
  const InvRecord& record = section.record;
  std::string html = "<tr><th scope=\"row\" class=\"num\">" + std::to_string(record.number) + "</th>";
  for (const std::string& cell : {TypeName(record.type), record.timestamp, record.snaptype, record.id})
    html += FileText("td", cell);
  for (const std::uint64_t number : {record.offset, record.length})
    html += "<td class=\"num\">" + std::to_string(number) + "</td>";
  const std::string state = !record.inside       ? "missing: it lies outside the file"
                            : section.body.whole ? "whole"
                                                 : "damaged: a part of it could not be read";
  return html + "<td>" + (record.inside ? FormName(section.body.form) : "") + "</td><td>" + state + "</td></tr>\n";
}

std::string ContainerHtml(const Document& document) {
  const InvContainer& inv = document.container;
  std::string html = "<h3 id=\"container\">Sections of the file</h3><p class=\"soft\"><bdi>" + HtmlText(document.path) +
                     "</bdi>: " + Bytes(document.size) + ", format version " + std::to_string(inv.version) +
                     ", index at byte " + std::to_string(inv.indexOffset) +
                     (inv.indexDeflated ? ", deflated" : ", plain") +
                     (inv.littleEndian ? ", little-endian" : ", big-endian") + "</p>";
  if (document.sections.empty()) return html;
  std::string rows;
  for (const Section& section : document.sections) rows += RecordHtml(section);
  return html + ScrollTable("container", "", HeadsHtml(kRecordHeads) + "<tbody>" + rows + "</tbody>");
}

std::string FaultsHtml(const Faults& faults) {
  if (faults.empty()) return "";
  std::string html = "<h3 id=\"faults\">What is wrong with the file</h3><ul class=\"faults\">";
  for (const Fault& fault : faults) html += FileText("li", FaultText(fault));
  return html + "</ul>";
}

}  // namespace

std::string FileHtml(const Document& document) {
  std::string html =
      "<section aria-labelledby=\"file\"><h2 id=\"file\">The whole file</h2><div class=\"card tree\">"
      "<div class=\"tools\" hidden><label for=\"tree-search\">Search the tree</label>"
      "<input type=\"search\" id=\"tree-search\"><button type=\"button\">Open all</button>"
      "<button type=\"button\">Close all</button><span class=\"soft\" role=\"status\"></span></div><ul>\n";
  for (const Section& section : document.sections) AppendSection(section, html);
  return html + "</ul></div><div class=\"card after\">" + FaultsHtml(document.faults) + ContainerHtml(document) +
         "</div></section>\n";
}
