// The one call of SystemConfiguration that platform/macos.cpp makes, declared for compiling it on any machine.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

using SCDynamicStoreRef = const struct StandInDynamicStore*;

extern "C" CFStringRef SCDynamicStoreCopyComputerName(SCDynamicStoreRef store, CFStringEncoding* encoding);
