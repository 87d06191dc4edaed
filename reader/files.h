// The files that a command line names: folders and lists taken apart, the newest scan of each Mac, and reading one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "reader/command.h"
#include "reader/document.h"

// The files of a command, in the order of the command line; "-" stands for standard input. A folder stands for the
// *.inv files in and below it, sorted by their names; with --latest, of the scans of one Mac only the newest is left.
// False, and a message, for each name that leads to no file; the others stand in `paths` all the same.
bool ListFiles(const Arguments& arguments, std::vector<std::string>& paths);

// The same for a command that works on `count` files: false, and a message, as well when they are more or fewer.
bool ListExactly(const Arguments& arguments, const char* command, std::size_t count, std::vector<std::string>& paths);

// True for a regular file that ends like an INV file.
bool IsInvFile(const std::string& path);

// Reads the whole file at `path`, standard input for "-". False, and plain words in `trouble`, when that fails. Of a
// file of more than `limit` bytes only the end is read, for the words.
bool ReadFile(const std::string& path, std::size_t limit, std::string& bytes, std::string& trouble);
