// Names the result file after the computer, saves the container and reports it.
#include "main/result_file.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "main/console/console_log.h"
#include "zxml/value_text.h"

namespace {

// A working directory that cannot be named counts as ".".
std::string WorkingDirectory() {
  char* name = getcwd(nullptr, 0);
  std::string directory = name ? name : ".";
  std::free(name);
  return directory;
}

std::string NamePart(const std::string& computerName) {
  std::string part = UpperCase(computerName);
  std::replace(part.begin(), part.end(), '/', '_');
  return part;
}

std::string AddressPart(std::string macAddress) {
  macAddress.erase(std::remove(macAddress.begin(), macAddress.end(), '-'), macAddress.end());
  return macAddress;
}

}  // namespace

ResultPath ChooseResultPath(const AssetIdentity& identity) {
  const std::string name = NamePart(NameOf(identity)), address = AddressPart(identity.macAddress);
  const std::string directory = WorkingDirectory();
  ResultPath path;
  path.name = name + "_" + address + ".inv";
  FormatToString(path.full, "%s/%s", directory.c_str(), path.name.c_str());
  for (int n = 1; FileExists(path.full); ++n) {
    FormatToString(path.name, "%s_%s(%d).inv", name.c_str(), address.c_str(), n);
    FormatToString(path.full, "%s/%s", directory.c_str(), path.name.c_str());
  }
  return path;
}

void SaveResult(InvFile& inv, const ResultPath& path, bool silent) {
  if (!WriteInvFile(inv, path.full, true))
    std::fprintf(stderr, "Cannot create file :%s\n", path.full.c_str());
  else if (silent)
    LogLine(">>>%s\n", path.name.c_str());
  else
    LogLine("\nScan finished. Results saved to file \"%s\"\n", path.full.c_str());
}
