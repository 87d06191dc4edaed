// What the commands share: going through the files one at a time, reading one with its messages, and writing.
#pragma once

#include <functional>
#include <string>

#include "reader/command.h"
#include "reader/document.h"

// "quillinv: file: words" on standard error.
void Complain(const std::string& file, const std::string& words);
// `text` to standard output.
void Write(const std::string& text);

// Reads one file. False, and a message, when it cannot be read at all.
bool Load(const std::string& path, std::size_t limit, Document& document);
// The same with a message about faults. False when there are any; `document` then holds what could be read.
bool LoadSound(const std::string& path, std::size_t limit, Document& document);

// Calls `step` for each file and returns the worst status that it gave. Counts them on standard error when they are
// more than a terminal has lines and standard output goes elsewhere.
int ForEachPath(const Arguments& arguments, const std::function<int(const std::string& path)>& step);

// What a command writes about a file goes into `out`. False, and plain words in `trouble`, when it could not do its
// work.
using Render = std::function<bool(const Document& document, std::string& out, std::string& trouble)>;

// Writes what `render` gives for each file that has an index; one file at a time is in memory. kTrouble when a file
// had faults or `render` trouble.
int ForEachFile(const Arguments& arguments, const Render& render);
