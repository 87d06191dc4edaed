// Writes what the script of the fleet's page works on. Names are short, since 5,000 Macs have to fit 10 MB:
//   {"facts": [names],
//    "macs": [{"c": [cells: a text, or [number to sort by, text]], "g": [group in each count], "f": [[texts of a
//    fact]],
//              "v": [[text, percent used, 1 when low]], "a": [[1 when serious, kind, text]]}],
//    "software": [[name, Macs, [[version, Macs]]]], "more": applications that are left out}
#include <algorithm>

#include "reader/fleet.h"
#include "reader/json_writer.h"

namespace {

constexpr std::size_t kMostTitles = 4000;  // applications in the list, the most common ones
constexpr std::size_t kMostVersions = 60;  // of one application

void Number(JsonWriter& json, std::int64_t number) { JsonWord(json, std::to_string(number)); }

void Texts(JsonWriter& json, const std::vector<std::string>& texts) {
  JsonOpen(json, '[');
  for (const std::string& text : texts) JsonText(json, text);
  JsonClose(json, ']');
}

void Cells(JsonWriter& json, const FleetMac& mac) {
  JsonOpen(json, '[');
  for (std::size_t i = 0; i < mac.cells.size(); ++i) {
    const FleetCell& cell = mac.cells[i];
    if (i < kMemoryColumn || cell.text.empty()) {
      JsonText(json, cell.text);
      continue;
    }
    JsonOpen(json, '[');
    Number(json, cell.key);
    JsonText(json, cell.text);
    JsonClose(json, ']');
  }
  JsonClose(json, ']');
}

void Volumes(JsonWriter& json, const std::vector<FleetVolume>& volumes) {
  JsonOpen(json, '[');
  for (const FleetVolume& volume : volumes) {
    JsonOpen(json, '[');
    JsonText(json, volume.text);
    Number(json, volume.usedPercent);
    Number(json, volume.low ? 1 : 0);
    JsonClose(json, ']');
  }
  JsonClose(json, ']');
}

void Alarms(JsonWriter& json, const std::vector<Alarm>& alarms) {
  JsonOpen(json, '[');
  for (const Alarm& alarm : alarms) {
    JsonOpen(json, '[');
    Number(json, alarm.serious ? 1 : 0);
    JsonText(json, alarm.kind);
    JsonText(json, alarm.text);
    JsonClose(json, ']');
  }
  JsonClose(json, ']');
}

void Mac(JsonWriter& json, const FleetMac& mac, std::size_t place, const std::vector<FleetGroups>& counts) {
  JsonOpen(json, '{');
  JsonKey(json, "c");
  Cells(json, mac);
  JsonKey(json, "g");
  JsonOpen(json, '[');
  for (const FleetGroups& count : counts) Number(json, static_cast<std::int64_t>(count.groupOf[place]));
  JsonClose(json, ']');
  JsonKey(json, "f");
  JsonOpen(json, '[');
  for (const auto& texts : mac.facts) Texts(json, texts);
  JsonClose(json, ']');
  JsonKey(json, "v");
  Volumes(json, mac.volumes);
  JsonKey(json, "a");
  Alarms(json, mac.alarms);
  JsonClose(json, '}');
}

void Versions(JsonWriter& json, const std::vector<FleetGroup>& versions) {
  JsonOpen(json, '[');
  for (std::size_t i = 0; i < versions.size() && i < kMostVersions && versions[i].second != 0; ++i) {
    JsonOpen(json, '[');
    JsonText(json, versions[i].first);
    Number(json, static_cast<std::int64_t>(versions[i].second));
    JsonClose(json, ']');
  }
  JsonClose(json, ']');
}

void Software(JsonWriter& json, const std::vector<FleetTitle>& titles) {
  const std::size_t shown = std::min(titles.size(), kMostTitles);
  JsonKey(json, "more");
  Number(json, static_cast<std::int64_t>(titles.size() - shown));
  JsonKey(json, "software");
  JsonOpen(json, '[');
  for (std::size_t i = 0; i < shown; ++i) {
    JsonOpen(json, '[');
    JsonText(json, titles[i].name);
    Number(json, static_cast<std::int64_t>(titles[i].macs));
    Versions(json, titles[i].versions);
    JsonClose(json, ']');
  }
  JsonClose(json, ']');
}

}  // namespace

std::string FleetJson(const Fleet& fleet, const std::vector<FleetGroups>& counts,
                      const std::vector<FleetTitle>& titles) {
  JsonWriter json;
  JsonOpen(json, '{');
  JsonKey(json, "facts");
  Texts(json, FleetFactNames());
  JsonKey(json, "macs");
  JsonOpen(json, '[');
  for (std::size_t i = 0; i < fleet.macs.size(); ++i) Mac(json, fleet.macs[i], i, counts);
  JsonClose(json, ']');
  Software(json, titles);
  JsonClose(json, '}');
  return json.text;
}
