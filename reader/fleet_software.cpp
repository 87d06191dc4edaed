// Counts a fleet's applications and their versions, and draws the most common ones.
#include <algorithm>

#include "reader/fleet.h"
#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report_drawings.h"

namespace {

constexpr std::size_t kDrawnTitles = 12;
constexpr std::size_t kDrawnVersions = 8;  // of one application; the rest is one piece
constexpr std::size_t kNamedVersions = 3;
constexpr int kBarHeight = 14;  // pixels

bool MoreMacs(const FleetGroup& a, const FleetGroup& b) { return a.second > b.second; }

// The titles with all their versions, none counted yet. `titleOf` and `versionOf` say where the number of each went.
std::vector<FleetTitle> EmptyTitles(const FleetTitles& numbers, std::vector<std::size_t>& titleOf,
                                    std::vector<std::size_t>& versionOf) {
  std::vector<FleetTitle> titles;
  for (const auto& [text, number] : numbers) {  // in the order of names, so that versions stand together
    const std::size_t zero = text.find('\0');
    const std::string name = text.substr(0, zero);
    if (titles.empty() || titles.back().name != name) titles.push_back({name, 0, {}});
    titleOf[number] = titles.size() - 1;
    versionOf[number] = titles.back().versions.size();
    titles.back().versions.emplace_back(text.substr(zero + 1), 0);
  }
  return titles;
}

std::string VersionsText(const FleetTitle& title) {
  std::string text;
  for (std::size_t i = 0; i < title.versions.size() && i < kNamedVersions; ++i) {
    const auto& [version, macs] = title.versions[i];
    text += (i == 0 ? "" : ", ") + (version.empty() ? "without a version" : version) + " (" +
            Grouped(static_cast<std::int64_t>(macs)) + ")";
  }
  if (title.versions.size() <= kNamedVersions) return text;
  return text + " and " + std::to_string(title.versions.size() - kNamedVersions) + " more";
}

// One bar, a piece for each version.
std::string VersionsBar(const FleetTitle& title, std::size_t most) {
  std::vector<BarPart> parts = {{"blank", 0, 100}};
  const double scale = 100 / static_cast<double>(most);
  const double end = static_cast<double>(title.macs) * scale;
  double at = 0;
  for (std::size_t i = 0; i < title.versions.size() && at < end; ++i) {
    const bool last = i == kDrawnVersions;
    const double length = std::min(last ? end : static_cast<double>(title.versions[i].second) * scale, end - at);
    parts.push_back({last ? "other" : i % 2 == 0 ? "used" : "free", at, length});
    at += length;
    if (last) break;
  }
  return HtmlBar(kBarHeight, "", parts);
}

}  // namespace

std::vector<FleetTitle> TitlesOf(const Fleet& fleet) {
  std::vector<std::size_t> titleOf(fleet.titles.size());
  std::vector<std::size_t> versionOf(fleet.titles.size());
  std::vector<FleetTitle> titles = EmptyTitles(fleet.titles, titleOf, versionOf);
  std::vector<std::size_t> seenBy(titles.size());  // the last Mac that had the title, from 1
  for (std::size_t mac = 0; mac < fleet.macs.size(); ++mac) {
    for (const std::uint32_t number : fleet.macs[mac].software) {
      FleetTitle& title = titles[titleOf[number]];
      ++title.versions[versionOf[number]].second;
      if (seenBy[titleOf[number]] != mac + 1) ++title.macs;
      seenBy[titleOf[number]] = mac + 1;
    }
  }
  for (FleetTitle& title : titles) {
    std::stable_sort(title.versions.begin(), title.versions.end(), MoreMacs);
    while (!title.versions.empty() && title.versions.back().second == 0) title.versions.pop_back();
  }
  const auto unused = [](const FleetTitle& title) { return title.macs == 0; };  // only an older scan had it
  titles.erase(std::remove_if(titles.begin(), titles.end(), unused), titles.end());
  std::stable_sort(titles.begin(), titles.end(),
                   [](const FleetTitle& a, const FleetTitle& b) { return a.macs > b.macs; });
  return titles;
}

std::string TitlesHtml(const std::vector<FleetTitle>& titles) {
  if (titles.empty()) return "";
  std::string rows;
  for (std::size_t i = 0; i < titles.size() && i < kDrawnTitles; ++i)
    rows += "<tr><th scope=\"row\" dir=\"auto\" data-search>" + HtmlText(titles[i].name) + "</th><td class=\"drawn\">" +
            VersionsBar(titles[i], titles.front().macs) + "</td><td class=\"num\">" +
            Grouped(static_cast<std::int64_t>(titles[i].macs)) + "</td>" +
            FileText("td", VersionsText(titles[i]), "soft") + "</tr>\n";
  const std::string heads = HeadsHtml({{"Application", ""}, {"Bar", ""}, {"Macs", ""}, {"Versions", ""}}, true);
  return CardHtml("common", "Most common software", "<span class=\"soft\">a piece of a bar for each version</span>",
                  ScrollTable("common", "counts", heads + "<tbody>\n" + rows + "</tbody>"), true);
}
