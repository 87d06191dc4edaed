// The command-line choices that the scan driver is handed as a record.
#pragma once

struct ScanSettings {
  bool saveFlag = true;    // byte order of the trees and containers that the driver makes
  bool cancelled = false;  // the driver returns at once
  bool log = false;        // the driver prints its progress log
  bool modern = false;     // what newer systems say in other forms is read too
};
