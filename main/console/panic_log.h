// The record of an error that ends the program.
#pragma once

// Appends a line to "panic.log" in the working directory, when that can be opened, and writes the same facts to
// standard error; then returns. `message` may be null.
void WritePanic(const char* file, unsigned long line, int code, int errorNumber, const char* message);
