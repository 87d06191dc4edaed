// The record of an error that ends the program.
#pragma once

// Appends a line to "panic.log" in the working directory, unless anything but a regular file of one name lies there,
// and writes the same facts to standard error; then returns. `message` may be null.
void WritePanic(const char* file, unsigned long line, int code, int errorNumber, const char* message);
