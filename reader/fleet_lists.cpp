// The long lists of the fleet's page, which the script fills, and the duplicates, which stand in it as they are.
#include <map>

#include "reader/fleet.h"
#include "reader/html.h"
#include "reader/record_view.h"

namespace {

constexpr std::size_t kMostSharing = 12;  // Macs that are named for one duplicate
constexpr std::size_t kMostDuplicates = 500;

const std::vector<ColumnHead> kMacHeads = {
    {"Name", "long"},  {"Model", "short"},         {"System", "short"},
    {"User", "short"}, {"Serial number", "short"}, {"Memory", "num"},
    {"Free", "num"},   {"Last scanned", "short"},  {"Needs attention", "short"},
};

// A list that the script fills; hidden until it does.
std::string LiveListHtml(const std::string& id, const std::string& title, const std::vector<ColumnHead>& heads) {
  return "<section class=\"live\" id=\"list-" + id + "\" aria-labelledby=\"" + id + "\" hidden><h2 id=\"" + id + "\">" +
         title + "</h2><div class=\"card\"><div class=\"tools\"><label for=\"search-" + id +
         "\">Search</label><input type=\"search\" id=\"search-" + id +
         "\"><span class=\"soft\" role=\"status\"></span></div>" +
         ScrollTable(id, "", HeadsHtml(heads) + "<tbody></tbody>") +
         "<p class=\"more\"><button type=\"button\">Show more</button></p></div></section>\n";
}

// For a browser without scripts.
std::string PlainListHtml(const Fleet& fleet) {
  std::string html =
      "<noscript><section class=\"live\"><h2>All Macs</h2><div class=\"card\"><p>Searching, sorting and the facts of "
      "each Mac need the page's "
      "script.</p>"
      "<div class=\"scroll\"><table>" +
      HeadsHtml(kMacHeads) + "<tbody>\n";
  for (const FleetMac& mac : fleet.macs) {
    html += "<tr>";
    for (std::size_t i = 0; i < mac.cells.size(); ++i) html += FileText("td", mac.cells[i].text, kMacHeads[i].kind);
    html += "</tr>\n";
  }
  return html + "</tbody></table></div></div></section></noscript>\n";
}

using Sharing = std::map<std::string, std::vector<const FleetMac*>>;

void DuplicateRows(const char* kind, const Sharing& sharing, std::size_t& rows, std::string& html) {
  for (const auto& [value, macs] : sharing) {
    if (macs.size() < 2 || ++rows > kMostDuplicates) continue;
    html += std::string("<tr><td class=\"short\">") + kind + "</td>" + FileText("th", value, "short") +
            "<td class=\"num\">" + std::to_string(macs.size()) + "</td><td class=\"long\"><ul>";
    for (std::size_t i = 0; i < macs.size() && i < kMostSharing; ++i)
      html += "<li>" + FileText("bdi", macs[i]->cells[kNameColumn].text) + " " +
              FileText("span", macs[i]->facts[0].empty() ? "" : macs[i]->facts[0][0], "soft") + "</li>";
    if (macs.size() > kMostSharing) html += "<li>and " + std::to_string(macs.size() - kMostSharing) + " more</li>";
    html += "</ul></td></tr>\n";
  }
}

}  // namespace

std::string MacsHtml(const Fleet& fleet) { return LiveListHtml("macs", "All Macs", kMacHeads) + PlainListHtml(fleet); }

std::string AlarmListHtml() {
  return LiveListHtml("alarms", "Needs attention",
                      {{"Mac", "long"}, {"Level", "short"}, {"Kind", "short"}, {"What", "long"}});
}

std::string SoftwareListHtml() {
  return LiveListHtml("software", "Software",
                      {{"Application", "long"}, {"Macs", "num"}, {"Versions", "num"}, {"Most common version", "long"}});
}

std::string DuplicatesHtml(const Fleet& fleet, std::size_t& rows) {
  Sharing serials;
  Sharing addresses;
  for (const FleetMac& mac : fleet.macs) {
    const std::string& serial = mac.cells[kSerialColumn].text;
    if (!serial.empty()) serials[serial].push_back(&mac);
    for (const std::string& address : mac.addresses) addresses[address].push_back(&mac);
  }
  rows = 0;
  std::string table = HeadsHtml({{"What", ""}, {"Value", ""}, {"Macs", "num"}, {"Which", ""}}) + "<tbody>\n";
  DuplicateRows("Serial number", serials, rows, table);
  DuplicateRows("MAC address", addresses, rows, table);
  std::string html = "<section aria-labelledby=\"duplicates\"><h2 id=\"duplicates\">Duplicates</h2>";
  if (rows == 0)
    return html + "<p class=\"quiet\">" + LevelPicture("good") +
           "No two Macs share a serial number or a MAC address.</p></section>\n";
  html += "<div class=\"card\">" + ScrollTable("duplicates", "", table + "</tbody>");
  if (rows > kMostDuplicates)
    html += "<p>" + Counted(rows - kMostDuplicates, "duplicate is", "duplicates are") + " left out.</p>";
  return html + "</div></section>\n";
}
