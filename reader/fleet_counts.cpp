// Counts a fleet by what its Macs have in common, and draws each count as bars.
#include <algorithm>
#include <map>
#include <set>

#include "reader/fleet.h"
#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report_drawings.h"

namespace {

constexpr std::size_t kMostGroups = 12;
constexpr int kBarHeight = 12;  // pixels

struct Count {
  const char* title;
  std::vector<std::string> order;  // of its groups; by the number of Macs where there is none
};

const Count& CountRow(FleetCount count) {
  static const std::vector<Count> counts = {
      {"System", {}},
      {"Model", {}},
      {"Age of scan",
       {"1 day or less", "2 to 7 days", "8 to 30 days", "31 to 90 days", "more than 90 days", "not known"}},
      {"Free on the start-up volume", {"under 10 %", "10 to 25 %", "25 to 50 %", "50 % and more", "not known"}},
      {"Memory", {}},
      {"Firewall", {"off", "limited", "block all", "not known"}},
  };
  return counts[count];
}

void SortGroups(std::vector<FleetGroup>& groups, const std::vector<std::string>& order) {
  const auto place = [&order](const FleetGroup& group) { return std::find(order.begin(), order.end(), group.first); };
  std::stable_sort(groups.begin(), groups.end(), [&](const FleetGroup& a, const FleetGroup& b) {
    if (place(a) != place(b)) return place(a) < place(b);
    return order.empty() && a.second > b.second;
  });
}

// `data` tells the script what the group's name narrows.
std::string RowHtml(const std::string& data, const FleetGroup& row, std::size_t most, std::size_t all) {
  const double length = static_cast<double>(row.second) * 100 / static_cast<double>(most);
  const std::size_t percent = (row.second * 100 + all / 2) / all;
  return "<tr><th scope=\"row\" dir=\"auto\" " + data + ">" + HtmlText(row.first) + "</th><td class=\"drawn\">" +
         HtmlBar(kBarHeight, "", {{"blank", 0, 100}, {"used", 0, length}}) + "</td><td class=\"num\">" +
         Grouped(static_cast<std::int64_t>(row.second)) + "</td><td class=\"num soft\">" +
         (percent == 0 ? "under 1" : std::to_string(percent)) + " %</td></tr>\n";
}

std::string CardOfCounts(const std::string& id, const std::string& title, const std::string& rows) {
  const std::string heads = HeadsHtml({{title, ""}, {"Bar", ""}, {"Macs", ""}, {"Share", ""}}, true);
  return CardHtml(
      id, title, "",
      "<table class=\"counts\" aria-labelledby=\"" + id + "\">" + heads + "<tbody>\n" + rows + "</tbody></table>");
}

std::string CountHtml(FleetCount count, const FleetGroups& groups, std::size_t all) {
  std::size_t most = 1;
  for (const FleetGroup& group : groups.groups) most = std::max(most, group.second);
  std::string rows;
  for (std::size_t i = 0; i < groups.groups.size(); ++i)
    rows += RowHtml("data-count=\"" + std::to_string(count) + "\" data-group=\"" + std::to_string(i) + "\"",
                    groups.groups[i], most, all);
  return CardOfCounts("count-" + std::to_string(count), CountRow(count).title, rows);
}

// How many Macs have an alarm of each kind.
std::string AlarmCountsHtml(const Fleet& fleet, std::size_t all) {
  std::map<std::string, std::size_t> macs;
  for (const FleetMac& mac : fleet.macs) {
    std::set<std::string> kinds;
    for (const Alarm& alarm : mac.alarms) kinds.insert(alarm.kind);
    for (const std::string& kind : kinds) ++macs[kind];
  }
  std::vector<FleetGroup> groups(macs.begin(), macs.end());
  SortGroups(groups, {});
  std::string rows;
  for (const FleetGroup& group : groups) rows += RowHtml("data-kind", group, groups.front().second, all);
  return groups.empty() ? "" : CardOfCounts("kinds", "Needs attention", rows);
}

}  // namespace

FleetGroups GroupsOf(const Fleet& fleet, FleetCount count) {
  std::map<std::string, std::size_t> totals;
  for (const FleetMac& mac : fleet.macs) ++totals[mac.groups[count]];
  FleetGroups result;
  result.groups.assign(totals.begin(), totals.end());
  SortGroups(result.groups, CountRow(count).order);
  std::map<std::string, std::size_t> places;
  for (std::size_t i = 0; i < result.groups.size(); ++i) places[result.groups[i].first] = std::min(i, kMostGroups);
  if (result.groups.size() > kMostGroups + 1) {
    const std::string words = Counted(result.groups.size() - kMostGroups, "other", "others");
    std::size_t others = 0;
    for (std::size_t i = kMostGroups; i < result.groups.size(); ++i) others += result.groups[i].second;
    result.groups.resize(kMostGroups);
    result.groups.emplace_back(words, others);
  }
  for (const FleetMac& mac : fleet.macs) result.groupOf.push_back(places[mac.groups[count]]);
  return result;
}

std::string FleetCountsHtml(const Fleet& fleet, const std::vector<FleetGroups>& counts,
                            const std::vector<FleetTitle>& titles) {
  const std::size_t all = std::max<std::size_t>(fleet.macs.size(), 1);
  std::string html = "<div class=\"cards counted\">\n" + AlarmCountsHtml(fleet, all);
  for (std::size_t i = 0; i < counts.size(); ++i) html += CountHtml(static_cast<FleetCount>(i), counts[i], all);
  return html + TitlesHtml(titles) + "</div>\n";
}
