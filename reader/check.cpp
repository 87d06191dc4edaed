// Compares what the index says of the sections with what the sections hold.
#include <algorithm>
#include <cstdint>
#include <string>

#include "reader/commands.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

void CheckSection(const Section& section, Faults& faults) {
  const std::string name = "section " + std::to_string(section.record.number);
  const Tag* root = RootTag(section);
  if (!root || !section.body.whole) return;
  const bool snapshot = section.record.type == InvSectionType::Snapshot;
  if (root->name != (snapshot ? "Snapshot" : "AssetInfo"))
    AddFault(faults, section.record.offset,
             name + " is of type " + TypeName(section.record.type) + ", but its root has another name");
  const std::string& timestamp = TextOf(FindAttribute(*root, "timestamp"));
  // A record without a timestamp is what a section gets that was handed in saved, or whose timestamp is no text.
  if (snapshot && !section.record.timestamp.empty() && section.record.timestamp != timestamp)
    AddFault(faults, section.record.offset, name + " has another timestamp than its record in the index");
}

}  // namespace

Faults CheckDocument(const Document& document) {
  Faults faults = document.faults;
  for (const Section& section : document.sections) CheckSection(section, faults);
  const auto isSnapshot = [](const Section& section) {
    const Tag* root = RootTag(section);
    return root && root->name == "Snapshot";
  };
  const auto snapshots = std::count_if(document.sections.begin(), document.sections.end(), isSnapshot);
  // Sections that were handed in saved are not counted, so the index may count fewer, but never more.
  if (faults.empty() && document.container.snapshotCount > static_cast<std::uint64_t>(snapshots))
    AddFault(faults, 0, "the header counts more snapshots than there are", "the index");
  return faults;
}

namespace {

int RunCheck(const Arguments& arguments) {
  return ForEachPath(arguments, [&arguments](const std::string& path) {
    Document document;
    if (!Load(path, arguments.limit, document)) return kTrouble;
    const Faults faults = CheckDocument(document);
    for (const Fault& fault : faults) Write(Printable(path) + ": " + FaultText(fault) + "\n");
    if (faults.empty()) Write(Printable(path) + ": sound\n");
    return faults.empty() ? kSound : kDifferent;
  });
}

}  // namespace

const Command kCheckCommand = {
    "check",
    RunCheck,
    0,
    "Look for everything that can be wrong with a file; each fault with its offset.",
    "Exit status: 0 all sound, 1 faults, 2 a file cannot be read.\n\nExample:\n  quillinv check *.inv",
    {}};
