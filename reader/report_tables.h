// The inventory as tables that can be filtered and sorted, made from the tables of the records.
#pragma once

#include <string>
#include <vector>

#include "reader/record.h"

struct TablePart {
  std::string id;
  std::string title;
  std::size_t rows = 0;
  std::string html;
};

// What the record says of the Mac itself, its system, processor and firewall; then each list that has rows, software
// first.
std::vector<TablePart> InventoryTables(const RecordSource& source);
// The lists without rows, in words: "printers, scanners"; empty when there are none.
std::string EmptyLists(const RecordSource& source);
