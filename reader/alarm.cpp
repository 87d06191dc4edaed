// Looks at the records of one Mac and at the file itself for what needs attention.
#include "reader/alarm.h"

#include <algorithm>
#include <set>

#include "reader/identity.h"
#include "reader/record_view.h"

namespace {

constexpr std::int64_t kLowBytes = 10'000'000'000;  // free on a volume
constexpr std::int64_t kLowShare = 10;              // free on a volume: one part in ten
constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kOldDays = 30;

using Alarms = std::vector<Alarm>;

void CheckFile(const Document& document, Alarms& alarms) {
  for (const Section& section : document.sections) {
    if (section.record.inside && !section.isRead) continue;
    const std::string name =
        "Section " + std::to_string(section.record.number) + " (" + TypeName(section.record.type) + ") of the file ";
    if (!section.record.inside || (section.body.text.empty() && !section.body.whole)) {
      alarms.push_back({true, "Damaged file", name + "is missing: nothing of it can be read."});
    } else if (!section.body.whole) {
      alarms.push_back({true, "Damaged file", name + "is damaged: what comes after the damage is missing here."});
    }
  }
  if (document.sections.empty())
    alarms.push_back({true, "Damaged file", "The file's index cannot be read: no section can be found."});
  if (document.faults.empty()) return;
  alarms.push_back({true, "Damaged file",
                    "The file has " + Counted(document.faults.size(), "fault", "faults") +
                        "; the first: " + FaultText(document.faults.front()) + "."});
}

void CheckScan(const RecordSource& source, std::int64_t now, Alarms& alarms) {
  if (IsDebugScan(*source.document)) {
    alarms.push_back({false, "Debug scan", "This is a debug scan: the profiler's document instead of an inventory."});
  } else if (!source.snapshot) {
    alarms.push_back({true, "Damaged file", "The inventory is missing: only what the other sections say is here."});
  }
  const auto moment = ScanMoment(*source.document);
  if (!moment) {
    alarms.push_back({false, "Age of scan", "The file does not say when it was scanned."});
  } else if (now - *moment > kOldDays * kDay) {
    alarms.push_back({false, "Age of scan", "The scan is " + Grouped((now - *moment) / kDay) + " days old."});
  }
}

void CheckVolumes(const RecordSource& source, Alarms& alarms) {
  for (const RecordView& volume : ViewsOf("volumes", source)) {
    const auto size = NumberOf(volume, "size_bytes");
    const auto free = NumberOf(volume, "free_bytes");
    if (!free || size.value_or(0) <= 0) continue;
    const bool serious = *free < *size / kLowShare;
    if (!serious && *free >= kLowBytes) continue;
    std::string name = ShownOf(volume, "name");
    if (name.empty()) name = ShownOf(volume, "mount_point");
    const std::string percent = ShownOf(volume, "free_percent");
    alarms.push_back({serious, "Free space",
                      name + " has " + DiskSize(*free) + " of " + DiskSize(*size) + " free" +
                          (percent.empty() ? "" : " (" + percent + ")") + "."});
  }
}

void CheckDisks(const RecordSource& source, Alarms& alarms) {
  for (const RecordView& volume : ViewsOf("volumes", source))
    if (!NumberOf(volume, "disk")) return;  // it may be on any of them
  for (const RecordView& disk : ViewsOf("disks", source)) {
    if (ShownOf(disk, "kind") == "drive" || NumberOf(disk, "partitions").value_or(0) != 0) continue;
    const std::string size = ShownOf(disk, "size_bytes");
    alarms.push_back(
        {false, "Disk", ShownOf(disk, "model") + (size.empty() ? "" : " (" + size + ")") + " has no volume."});
  }
}

void CheckFirewall(const RecordSource& source, Alarms& alarms) {
  if (ShownOf(ViewsOf("firewall", source).front(), "state") == "off")
    alarms.push_back({true, "Firewall", "The firewall is off: it lets everything in."});
}

// "2 GB and 4 GB" when the modules differ in that field, otherwise empty.
std::string Differences(const std::vector<RecordView>& modules, std::string_view field) {
  std::set<std::string> kinds;
  for (const RecordView& module : modules) kinds.insert(ShownOf(module, field));
  kinds.erase("");
  if (kinds.size() < 2) return "";
  std::string text;
  std::size_t left = kinds.size();
  for (const std::string& kind : kinds) text += kind + (--left == 0 ? "" : left == 1 ? " and " : ", ");
  return text;
}

void CheckMemory(const RecordSource& source, Alarms& alarms) {
  const std::vector<RecordView> slots = ViewsOf("memory_slots", source);
  std::vector<RecordView> modules;
  std::size_t empty = 0;
  std::int64_t total = 0;
  for (const RecordView& slot : slots) {
    const bool used = FlagOf(slot, "used").value_or(true);
    empty += used ? 0 : 1;
    if (!used) continue;
    modules.push_back(slot);
    const auto capacity = NumberOf(slot, "capacity_bytes");
    if (!capacity) alarms.push_back({false, "Memory", "A memory slot holds a module of unknown size."});
    if (__builtin_add_overflow(total, capacity.value_or(0), &total)) return;
  }
  if (empty != 0)
    alarms.push_back({false, "Memory",
                      Counted(empty, "memory slot", "memory slots") + " of " + std::to_string(slots.size()) +
                          (empty == 1 ? " is" : " are") + " empty."});
  for (const std::string_view field : {"capacity_bytes", "speed_mhz", "type"}) {
    const std::string kinds = Differences(modules, field);
    if (!kinds.empty()) alarms.push_back({false, "Memory", "The memory modules differ: " + kinds + "."});
  }
  const auto seen = NumberOf(ViewsOf("macs", source).front(), "memory_bytes");
  if (total != 0 && seen && *seen != total)
    alarms.push_back({false, "Memory",
                      "The memory modules hold " + MemorySize(total) + ", the system has " + MemorySize(*seen) + "."});
}

}  // namespace

std::vector<Alarm> AlarmsOf(const RecordSource& source, std::int64_t now) {
  Alarms alarms;
  CheckFile(*source.document, alarms);
  CheckScan(source, now, alarms);
  CheckFirewall(source, alarms);
  CheckVolumes(source, alarms);
  CheckDisks(source, alarms);
  CheckMemory(source, alarms);
  std::stable_sort(alarms.begin(), alarms.end(), [](const Alarm& a, const Alarm& b) { return a.serious > b.serious; });
  return alarms;
}

const char* LevelName(const Alarm& alarm) { return alarm.serious ? "Serious" : "Notice"; }
