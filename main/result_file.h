// Where a scan's result goes, and how that is reported.
#pragma once

#include <string>

#include "zxml/INVfile.h"
#include "zxml/asset_info.h"

// The result's place: the file NAME_MAC.inv, or with a number NAME_MAC(1).inv, in the working directory.
struct ResultPath {
  std::string stem;       // NAME_MAC, fit for a file's name with any number
  int number = 0;         // 0 for none
  std::string directory;  // for people: the file is made in the working directory, whether that can be named or not
};

// The file's name alone.
std::string FileName(const ResultPath& path);

// The first name for the computer's result that is free now.
ResultPath ChooseResultPath(const AssetIdentity& identity);

// Saves the container there, or under the next number that is free, and says so, or that it could not be done. What is
// there already is never written to, and no one sees a file of such a name before it is complete.
void SaveResult(InvFile& inv, ResultPath path, bool silent);
