// quillinv diff --fleet: what changed on which Mac.
#pragma once

#include "reader/command.h"

// Compares the newest scan of each Mac in and below the second of the two folders with that in the first, and writes a
// summary, the Macs that are only in one, and the differences Mac by Mac. The exit status of diff.
int DiffFleets(const Arguments& arguments);
