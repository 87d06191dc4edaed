// What the commands share: going through the files one at a time, and reading one with its messages.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "reader/command.h"
#include "reader/document.h"
#include "reader/output.h"

// Reads one file. False, and a message, when it cannot be read at all.
bool Load(const std::string& path, std::size_t limit, Document& document, Parts parts = Parts::All);
// The same with a message about faults. False when there are any; `document` then holds what could be read.
bool LoadSound(const std::string& path, std::size_t limit, Document& document, Parts parts = Parts::All);

// Calls `step` for each of the files and returns the worst status that it gave. A file for which memory runs out is
// named, and the others go on.
int ForEachOf(const std::vector<std::string>& paths, const std::function<int(const std::string& path)>& step);
// The same for the files that the arguments name.
int ForEachPath(const Arguments& arguments, const std::function<int(const std::string& path)>& step);

// What a command writes about a file goes into `out`. False, and plain words in `trouble`, when it could not do its
// work.
using Render = std::function<bool(const Document& document, std::string& out, std::string& trouble)>;

// Writes what `render` gives for each file that has an index; one file at a time is in memory. kTrouble when a file
// had faults or `render` trouble. Raw data is read only on request.
int ForEachFileOf(const std::vector<std::string>& paths, std::size_t limit, const Render& render, Parts parts);
// The same for the files that the arguments name.
int ForEachFile(const Arguments& arguments, const Render& render, Parts parts = Parts::Trees);
