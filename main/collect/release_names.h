// What the releases of Mac OS X are called.
#pragma once

#include <array>

// By the minor version number: 10.0 to 10.11.
constexpr std::array<const char*, 12> kReleaseNames = {
    "Mac OS X v10.0 (Cheetah)",      "Mac OS X v10.1 (Puma)",  "Mac OS X v10.2 (Jaguar)",
    "Mac OS X v10.3 (Panther)",      "Mac OS X v10.4 (Tiger)", "Mac OS X v10.5 (Leopard)",
    "Mac OS X v10.6 (Snow Leopard)", "Mac OS X v10.7 (Lion)",  "OS X v10.8 (Mountain Lion)",
    "OS X v10.9 (Mavericks)",        "OS X v10.10 (Yosemite)", "OS X v10.11 (El Capitan)",
};
