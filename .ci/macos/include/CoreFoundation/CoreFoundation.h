// The calls of CoreFoundation that platform/macos.cpp makes, declared for compiling it on any machine. Each kind of
// object is a struct of its own, so that one reference does not pass for another. Nothing here is defined or linked.
#pragma once

#include <cstdint>

using Boolean = unsigned char;
using UInt8 = std::uint8_t;
using UInt32 = std::uint32_t;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFOptionFlags = unsigned long;
using CFStringEncoding = UInt32;
using CFAbsoluteTime = double;

using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;
using CFAllocatorRef = const struct StandInAllocator*;
using CFArrayRef = const struct StandInArray*;
using CFBooleanRef = const struct StandInBoolean*;
using CFBundleRef = struct StandInBundle*;
using CFDataRef = const struct StandInData*;
using CFDateRef = const struct StandInDate*;
using CFDateFormatterRef = struct StandInDateFormatter*;
using CFDictionaryRef = const struct StandInDictionary*;
using CFLocaleRef = const struct StandInLocale*;
using CFNumberRef = const struct StandInNumber*;
using CFStringRef = const struct StandInString*;
using CFURLRef = const struct StandInUrl*;

struct CFRange {
  CFIndex location;
  CFIndex length;
};

enum CFNumberType : CFIndex {
  kCFNumberSInt8Type = 1,
  kCFNumberSInt16Type = 2,
  kCFNumberSInt32Type = 3,
  kCFNumberSInt64Type = 4,
  kCFNumberFloat32Type = 5,
  kCFNumberFloat64Type = 6,
  kCFNumberCharType = 7,
  kCFNumberShortType = 8,
  kCFNumberIntType = 9,
  kCFNumberLongType = 10,
  kCFNumberLongLongType = 11,
  kCFNumberFloatType = 12,
  kCFNumberDoubleType = 13,
  kCFNumberCFIndexType = 14,
  kCFNumberNSIntegerType = 15,
  kCFNumberCGFloatType = 16,
};
enum CFDateFormatterStyle : CFIndex { kCFDateFormatterNoStyle = 0 };
enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
enum : CFOptionFlags { kCFPropertyListImmutable = 0 };

CFStringRef StandInLiteral(const char* text);
#define CFSTR(text) StandInLiteral("" text)

extern "C" {
CFRange CFRangeMake(CFIndex location, CFIndex length);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFArrayGetTypeID();
CFTypeID CFBooleanGetTypeID();
CFTypeID CFDataGetTypeID();
CFTypeID CFDateGetTypeID();
CFTypeID CFDictionaryGetTypeID();
CFTypeID CFNumberGetTypeID();
CFTypeID CFStringGetTypeID();

CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys, const void** values);
CFNumberType CFNumberGetType(CFNumberRef number);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
Boolean CFBooleanGetValue(CFBooleanRef boolean);
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternalRepresentation, UInt8* buffer, CFIndex room, CFIndex* used);
[[deprecated]] CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef allocator, CFDataRef document,
                                                                 CFOptionFlags mutability, CFStringRef* error);

CFAbsoluteTime CFAbsoluteTimeGetCurrent();
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);
CFLocaleRef CFLocaleCopyCurrent();
CFDateFormatterRef CFDateFormatterCreate(CFAllocatorRef allocator, CFLocaleRef locale, CFDateFormatterStyle dateStyle,
                                         CFDateFormatterStyle timeStyle);
void CFDateFormatterSetFormat(CFDateFormatterRef formatter, CFStringRef format);
CFStringRef CFDateFormatterCreateStringWithAbsoluteTime(CFAllocatorRef allocator, CFDateFormatterRef formatter,
                                                        CFAbsoluteTime moment);

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path, CFIndex length,
                                                 Boolean isFolder);
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
CFDictionaryRef CFBundleGetInfoDictionary(CFBundleRef bundle);
}
