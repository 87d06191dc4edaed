// quillinv diff: two files, or the newest scan of each Mac in two folders.
#include <string>
#include <vector>

#include "reader/commands.h"
#include "reader/diff.h"
#include "reader/diff_fleet.h"
#include "reader/files.h"
#include "reader/identity.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

int DiffFilesOf(const Arguments& arguments, const std::string& older, const std::string& newer) {
  Document before, after;
  const bool sound = LoadSound(older, arguments.limit, before);
  if (!LoadSound(newer, arguments.limit, after) || !sound) return kTrouble;
  const std::vector<Difference> differences = FindDifferences(before, after, arguments.all);
  if (arguments.json) {
    WriteData(DiffJson(differences, {MacKeyOf(after).text, older, newer}));
  } else if (!differences.empty()) {
    const std::string header = "--- " + Printable(older) + "\n+++ " + Printable(newer) + "\n";
    Write((arguments.noHeader ? "" : header) + DiffText(differences));
  }
  return differences.empty() ? kSound : kDifferent;
}

int RunDiff(const Arguments& arguments) {
  if (arguments.fleet && arguments.files.size() == 2) return DiffFleets(arguments);
  if (arguments.fleet) {
    Complain("diff", "--fleet takes two folders");
    return kTrouble;
  }
  std::vector<std::string> paths;
  return ListExactly(arguments, "diff", 2, paths) ? DiffFilesOf(arguments, paths[0], paths[1]) : kTrouble;
}

}  // namespace

const Command kDiffCommand = {
    "diff",
    RunDiff,
    2,
    "Show what appeared (+), vanished (-) and changed (!) between two scans.",
    "Disks and volumes are told by serial number, mount point and name, applications by name and path.\n"
    "Times, processes, uptime and free space are left out unless --all.\n"
    "Exit status: 0 no difference, 1 differences, 2 trouble.\n\n"
    "Examples:\n  quillinv diff MYMAC_001EC2AABBCC.inv 'MYMAC_001EC2AABBCC(1).inv'\n"
    "  quillinv diff --fleet scans/2015-11-11 scans/2015-11-18",
    {{"--all", &Arguments::all, "Also what changes from scan to scan by itself"},
     {"--fleet", &Arguments::fleet, "Compare the newest scans of each Mac in two folders, with a summary first"},
     {"--json", &Arguments::json,
      "One line of JSON for each difference: mac_key, change, path, before, after,\nfile_before, file_after"}}};
