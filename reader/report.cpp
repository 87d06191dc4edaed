// Puts the report together: what one asks first on top, then what needs attention, the drawings, the tables, the file.
#include "reader/report.h"

#include <ctime>

#include "reader/commands.h"
#include "reader/files.h"
#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report_drawings.h"
#include "reader/report_tables.h"
#include "reader/report_tree.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

std::string UserText(const RecordSource& source, const RecordView& mac) {
  std::string user = ShownOf(mac, "user_name");
  for (const RecordView& account : ViewsOf("users", source)) {
    const std::string names = ShownOf(account, "name");
    const std::string full = ShownOf(account, "full_name");
    if (!user.empty() && !full.empty() && names.substr(0, names.find(' ')) == user) return full + " (" + user + ")";
  }
  return user;
}

std::string ProcessorText(const RecordSource& source) {
  const RecordView cpu = ViewsOf("cpu", source).front();
  const auto cores = NumberOf(cpu, "cores");
  std::vector<std::string> parts = {ShownOf(cpu, "model"), "", ShownOf(cpu, "speed_mhz")};
  if (cores && *cores > 0) parts[1] = Counted(static_cast<std::uint64_t>(*cores), "core", "cores");
  return Joined(parts);
}

std::string SystemText(const RecordSource& source) {
  const std::string build = ShownOf(ViewsOf("os", source).front(), "build");
  return SystemName(source) + (build.empty() ? "" : " (" + build + ")");
}

std::string HostText(const RecordView& mac) {
  const std::string domain = ShownOf(mac, "domain");
  return ShownOf(mac, "hostname") + (domain.empty() ? "" : " in " + domain);
}

std::string HeaderHtml(const RecordSource& source) {
  const RecordView mac = ViewsOf("macs", source).front();
  const std::pair<const char*, std::string> facts[] = {
      {"Model", ShownOf(mac, "model")},
      {"Serial number", ShownOf(mac, "serial_number")},
      {"User", UserText(source, mac)},
      {"System", SystemText(source)},
      {"Scanned", ShownOf(mac, "scanned_at")},
      {"Processor", ProcessorText(source)},
      {"Memory", ShownOf(mac, "memory_bytes")},
      {"Address", ShownOf(mac, "ip_address")},
      {"Host name", HostText(mac)},
  };
  std::string html = "<header class=\"top\"><div><p class=\"kind\">Inventory of a Mac</p>" +
                     FileText("h1", MacName(source)) + "<dl class=\"facts\">";
  for (const auto& [label, text] : facts)
    html += std::string("<div><dt>") + label + "</dt>" + FileText("dd", text.empty() ? "not known" : text) + "</div>";
  return html + "</dl></div></header>\n";
}

std::string AttentionHtml(const std::vector<Alarm>& alarms) {
  return "<section aria-labelledby=\"attention\"><h2 id=\"attention\">Needs attention</h2>" + AlarmsHtml(alarms) +
         "</section>\n";
}

std::string DrawingsHtml(const RecordSource& source) {
  const std::string cards =
      StorageHtml(source) + MonitorsHtml(source) + SlotsHtml(source) + AdaptersHtml(source) + UsbHtml(source);
  if (cards.empty()) return "";
  return "<section aria-labelledby=\"hardware\"><h2 id=\"hardware\">Hardware</h2><div class=\"cards\">\n" + cards +
         "</div></section>\n";
}

std::string InventoryHtml(const RecordSource& source, const std::vector<TablePart>& parts) {
  std::string html = "<section aria-labelledby=\"inventory\"><h2 id=\"inventory\">Inventory</h2>\n";
  for (const TablePart& part : parts) html += part.html;
  const std::string empty = EmptyLists(source);
  if (!empty.empty()) html += "<p class=\"soft none\">The file has none of these: " + empty + ".</p>";
  return html + "</section>\n";
}

std::string LinkHtml(const std::string& id, const std::string& title, std::size_t count, bool under) {
  return std::string(under ? "<li class=\"under\">" : "<li>") + "<a href=\"#" + id + "\">" + title +
         (count ? " <span class=\"count\">" + Grouped(static_cast<std::int64_t>(count)) + "</span>" : "") + "</a></li>";
}

std::string NavigationHtml(const std::vector<TablePart>& parts, std::size_t alarms, bool drawings) {
  std::string html =
      "<nav aria-label=\"Parts of the page\"><ul>" + LinkHtml("attention", "Needs attention", alarms, false) +
      (drawings ? LinkHtml("hardware", "Hardware", 0, false) : "") + LinkHtml("inventory", "Inventory", 0, false);
  for (const TablePart& part : parts) html += LinkHtml(part.id, part.title, part.rows, true);
  return html + LinkHtml("file", "The whole file", 0, false) + "</ul></nav>\n";
}

int RunReport(const Arguments& arguments) {
  std::vector<std::string> paths;
  Document document;
  std::string trouble;
  if (!ListExactly(arguments, "report", 1, paths) || !Load(paths[0], arguments.limit, document)) return kTrouble;
  if (WriteExtract(ReportPage(document, std::time(nullptr)), arguments.output, trouble))
    return document.faults.empty() ? kSound : kTrouble;
  Complain(arguments.output, trouble);
  return kTrouble;
}

}  // namespace

std::string AlarmsHtml(const std::vector<Alarm>& alarms) {
  if (alarms.empty()) return "<p class=\"quiet\">" + LevelPicture("good") + "Nothing needs attention.</p>";
  std::string html = "<ul class=\"alarms\">";
  for (const Alarm& alarm : alarms) {
    const std::string level = alarm.serious ? "serious" : "notice";
    html += "<li class=\"" + level + "\">" + LevelPicture(level) + "<div><strong>" + LevelName(alarm) + ": " +
            alarm.kind + "</strong> " + FileText("span", alarm.text) + "</div></li>";
  }
  return html + "</ul>";
}

std::string SystemName(const RecordSource& source) {
  const RecordView os = ViewsOf("os", source).front();
  const std::string version = ShownOf(os, "version");
  std::string name = ShownOf(os, "name");
  name = name.substr(0, name.find_first_of("0123456789"));  // "OS X v10.11 (El Capitan)"
  if (!name.empty() && name.back() == 'v') name.pop_back();
  while (!name.empty() && name.back() == ' ') name.pop_back();
  return name.empty() || version.empty() ? name + version : name + " " + version;
}

std::string MacName(const RecordSource& source) {
  const RecordView mac = ViewsOf("macs", source).front();
  for (const std::string_view field : {"computer_name", "hostname"}) {
    std::string name = ShownOf(mac, field);
    if (!name.empty()) return name;
  }
  return source.document->path;
}

std::string ReportPage(const Document& document, std::int64_t now) {
  const RecordSource source = SourceOf(document);
  const std::vector<Alarm> alarms = AlarmsOf(source, now);
  const std::vector<TablePart> parts = InventoryTables(source);
  const std::string drawings = DrawingsHtml(source);
  const std::string body =
      HeaderHtml(source) + "<div class=\"page\">" + NavigationHtml(parts, alarms.size(), !drawings.empty()) +
      "<main id=\"main\">" + AttentionHtml(alarms) + drawings + InventoryHtml(source, parts) + FileHtml(document) +
      "</main></div>\n<footer><p>Made on " + ShownMoment(now) + " from <bdi>" + HtmlText(document.path) + "</bdi>, " +
      Grouped(static_cast<std::int64_t>(document.size)) + " bytes. " + kSizesNote + "</p></footer>";
  return HtmlPage(MacName(source) + " – inventory", body);
}

const Command kReportCommand = {
    "report",
    RunReport,
    1,
    "Write a page of HTML about one Mac, to look at in a browser.",
    "The page is one file and needs nothing else. Exit status: 0 done, 2 trouble, also when the file has faults.\n\n"
    "Example:\n  quillinv report MYMAC_001EC2AABBCC.inv -o MYMAC.html",
    {{"-o,--output", &Arguments::output, "File to write; standard output when missing"}}};
