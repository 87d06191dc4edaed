// Puts the fleet's page together. Counts and duplicates stand in it as they are; the long lists are made by the script
// from data in the page, and without a script there is a plain table of the Macs.
#include "reader/fleet.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <set>

#include "reader/commands.h"
#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

struct Totals {
  std::size_t serious = 0;
  std::size_t notices = 0;
  std::optional<std::int64_t> oldest;
  std::optional<std::int64_t> newest;
};

Totals TotalsOf(const Fleet& fleet) {
  Totals totals;
  for (const FleetMac& mac : fleet.macs) {
    for (const Alarm& alarm : mac.alarms) ++(alarm.serious ? totals.serious : totals.notices);
    if (!mac.moment) continue;
    totals.oldest = std::min(totals.oldest.value_or(*mac.moment), *mac.moment);
    totals.newest = std::max(totals.newest.value_or(*mac.moment), *mac.moment);
  }
  return totals;
}

std::string HeaderHtml(const Fleet& fleet, const Totals& totals) {
  const std::pair<const char*, std::string> facts[] = {
      {"Files read", Grouped(static_cast<std::int64_t>(fleet.files))},
      {"Serious alarms", Grouped(static_cast<std::int64_t>(totals.serious))},
      {"Notices", Grouped(static_cast<std::int64_t>(totals.notices))},
      {"Oldest scan", totals.oldest ? ShownMoment(*totals.oldest) : "not known"},
      {"Newest scan", totals.newest ? ShownMoment(*totals.newest) : "not known"},
  };
  std::string html = "<header class=\"top\"><div><p class=\"kind\">Inventory of a fleet</p><h1>" +
                     Counted(fleet.macs.size(), "Mac", "Macs") + "</h1><dl class=\"facts\">";
  for (const auto& [label, text] : facts) html += std::string("<div><dt>") + label + "</dt><dd>" + text + "</dd></div>";
  return html + "</dl></div></header>\n";
}

std::string NavigationHtml(const Totals& totals, std::size_t macs, std::size_t duplicates, std::size_t titles) {
  const auto link = [](const char* id, const char* title, std::size_t count) {
    return std::string("<li><a href=\"#") + id + "\">" + title +
           (count ? " <span class=\"count\">" + Grouped(static_cast<std::int64_t>(count)) + "</span>" : "") +
           "</a></li>";
  };
  return "<nav aria-label=\"Parts of the page\"><ul>" + link("counts", "Counts", 0) + link("macs", "All Macs", macs) +
         link("alarms", "Needs attention", totals.serious + totals.notices) +
         link("duplicates", "Duplicates", duplicates) + link("software", "Software", titles) + "</ul></nav>\n";
}

// A debug scan tells little of its Mac; it is left out where the MAC address shows that there is an inventory.
void DropKnownDebugScans(Fleet& fleet) {
  std::set<std::string> known;
  for (const FleetMac& mac : fleet.macs)
    if (mac.inventory) known.insert(mac.addresses.begin(), mac.addresses.end());
  const auto superfluous = [&known](const FleetMac& mac) {
    const auto isKnown = [&known](const std::string& address) { return known.count(address) != 0; };
    return !mac.inventory && std::any_of(mac.addresses.begin(), mac.addresses.end(), isKnown);
  };
  fleet.macs.erase(std::remove_if(fleet.macs.begin(), fleet.macs.end(), superfluous), fleet.macs.end());
}

int RunFleet(const Arguments& arguments) {
  Fleet fleet;
  const std::int64_t now = std::time(nullptr);
  const int status = ForEachPath(arguments, [&](const std::string& path) {
    Document document;
    if (!Load(path, arguments.limit, document, Parts::Trees)) return kTrouble;
    AddToFleet(document, now, fleet);
    return document.faults.empty() ? kSound : kTrouble;
  });
  std::string trouble;
  if (WriteExtract(FleetPage(fleet, now), arguments.output, trouble)) return status;
  Complain(arguments.output, trouble);
  return kTrouble;
}

}  // namespace

std::string FleetPage(Fleet& fleet, std::int64_t now) {
  DropKnownDebugScans(fleet);
  const auto name = [](const FleetMac& mac) {
    std::string text = mac.cells[kNameColumn].text;
    for (char& c : text) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return text;
  };
  std::stable_sort(fleet.macs.begin(), fleet.macs.end(),
                   [&name](const FleetMac& a, const FleetMac& b) { return name(a) < name(b); });
  fleet.places.clear();
  std::vector<FleetGroups> counts;
  for (int i = 0; i < kFleetCounts; ++i) counts.push_back(GroupsOf(fleet, static_cast<FleetCount>(i)));
  const std::vector<FleetTitle> titles = TitlesOf(fleet);
  const Totals totals = TotalsOf(fleet);
  std::size_t duplicates = 0;
  const std::string duplicatesHtml = DuplicatesHtml(fleet, duplicates);
  std::string body = HeaderHtml(fleet, totals) + "<div class=\"page\">" +
                     NavigationHtml(totals, fleet.macs.size(), duplicates, titles.size()) +
                     "<main id=\"main\"><section aria-labelledby=\"counts\"><h2 id=\"counts\">Counts</h2>" +
                     FleetCountsHtml(fleet, counts, titles) + "</section>" + MacsHtml(fleet) + AlarmListHtml() +
                     duplicatesHtml + SoftwareListHtml() + "</main></div>\n<footer><p>Made on " + ShownMoment(now) +
                     ". " + kSizesNote + "</p></footer>\n";
  body +=
      "<script type=\"application/json\" id=\"fleet\">" + ScriptData(FleetJson(fleet, counts, titles)) + "</script>";
  return HtmlPage(Counted(fleet.macs.size(), "Mac", "Macs") + " – inventory", body);
}

const Command kFleetCommand = {
    "fleet",
    RunFleet,
    0,
    "Write a page of HTML about many Macs, the newest scan of each, to look at in a browser.",
    "The page is one file and needs nothing else. Of several scans of one Mac the newest is shown.\n\n"
    "Example:\n  quillinv fleet *.inv -o fleet.html",
    {{"-o,--output", &Arguments::output, "File to write; standard output when missing"}}};
