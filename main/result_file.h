// Where a scan's result goes, and how that is reported.
#pragma once

#include <string>

#include "zxml/INVfile.h"
#include "zxml/asset_info.h"

struct ResultPath {
  std::string name;  // the file's name alone
  std::string full;  // behind the working directory
};

// The first free name for a computer's result in the working directory: NAME_MAC.inv, NAME_MAC(1).inv, ...
ResultPath ChooseResultPath(const AssetIdentity& identity);

// Saves the container there and says so, or that it could not be done.
void SaveResult(InvFile& inv, const ResultPath& path, bool silent);
