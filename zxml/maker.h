// Who makes every computer and every system that this program runs on, as the inventory has it.
#pragma once

constexpr char kMaker[] = "Apple Inc.";
