// Standard output and standard error: whole lines, and nothing that steers a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Writes `text` to standard output. Each of its lines goes out in one call of the system, so that the lines of several
// programs that write into one pipe do not mix. False once something could not be written; then nothing more is.
bool Write(std::string_view text);
// The same for text of a file that was not made printable: on a terminal it is, with its line feeds and tabs kept.
bool WriteData(std::string_view text);
// False when something could not be written.
bool AllWritten();

// Writes to standard error, in one call of the system.
void WriteError(std::string_view text);
// "quillinv: file: words" on standard error; while progress is shown, when it ends.
void Complain(const std::string& file, const std::string& words);

// Counts the files on standard error when they are more than a terminal has lines and standard output goes elsewhere.
void StartProgress(std::size_t total);
void CountFile();
void EndProgress();
