// The platform on a Mac: property lists, bundles and local time come from CoreFoundation, the computer's name from the
// system configuration store, the process table from the kernel. Everything leaves this file as plain values; what a
// Create or Copy call returned is released where it was made, but for two date formatters, which are kept.
#include "platform/platform.h"
// Above CoreFoundation, with whose global names its enumerators would otherwise clash.
#include <CoreFoundation/CoreFoundation.h>
#include <SystemConfiguration/SystemConfiguration.h>
#include <sys/types.h>
// Below sys/types.h, which it needs.
#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "platform/bundle_folder.h"
#include "platform/plist_limits.h"

namespace {

struct Releaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// The owner of what a Create or Copy call returns, null included.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;

// UTF-8, with its length in bytes in `length`; up to an unpaired surrogate when there is one. Empty for null.
std::string CFStringToText(CFStringRef string, CFIndex& length) {
  length = 0;
  if (!string) return std::string();
  const CFIndex units = CFStringGetLength(string);
  std::string bytes(static_cast<std::size_t>(units) * 4 + 1, '\0');  // four bytes a unit, and the NUL
  CFStringGetBytes(string, CFRangeMake(0, units), kCFStringEncodingUTF8, 0, false, reinterpret_cast<UInt8*>(&bytes[0]),
                   static_cast<CFIndex>(bytes.size() - 1), &length);
  bytes.resize(static_cast<std::size_t>(length));
  bytes.shrink_to_fit();
  return bytes;
}

std::string CFStringToText(CFStringRef string) {
  CFIndex length = 0;
  return CFStringToText(string, length);
}

// --- property lists ---

// A number too wide for `Stored` gives its low bits.
template <typename Stored>
void ReadNumber(CFNumberRef number, CFNumberType type, PropertyList& list) {
  Stored value{};
  CFNumberGetValue(number, type, &value);
  if constexpr (std::is_floating_point_v<Stored>)
    list.real = value;
  else
    list.integer = value;
}

using NativeReal = std::conditional_t<sizeof(void*) == 8, double, float>;  // CGFloat without its framework

constexpr struct {
  CFNumberType type;
  NumberType name;
  void (*read)(CFNumberRef, CFNumberType, PropertyList&);
} kNumberTypes[] = {
    {kCFNumberSInt8Type, NumberType::SInt8, ReadNumber<std::int8_t>},
    {kCFNumberSInt16Type, NumberType::SInt16, ReadNumber<std::int16_t>},
    {kCFNumberSInt32Type, NumberType::SInt32, ReadNumber<std::int32_t>},
    {kCFNumberSInt64Type, NumberType::SInt64, ReadNumber<std::int64_t>},
    {kCFNumberFloat32Type, NumberType::Float32, ReadNumber<float>},
    {kCFNumberFloat64Type, NumberType::Float64, ReadNumber<double>},
    {kCFNumberCharType, NumberType::Char, ReadNumber<signed char>},
    {kCFNumberShortType, NumberType::Short, ReadNumber<short>},
    {kCFNumberIntType, NumberType::Int, ReadNumber<int>},
    {kCFNumberLongType, NumberType::Long, ReadNumber<long>},
    {kCFNumberLongLongType, NumberType::LongLong, ReadNumber<long long>},
    {kCFNumberFloatType, NumberType::Float, ReadNumber<float>},
    {kCFNumberDoubleType, NumberType::Double, ReadNumber<double>},
    {kCFNumberCFIndexType, NumberType::CFIndex, ReadNumber<CFIndex>},
    {kCFNumberNSIntegerType, NumberType::NSInteger, ReadNumber<CFIndex>},  // as wide as a CFIndex
    {kCFNumberCGFloatType, NumberType::CGFloat, ReadNumber<NativeReal>},
};

void ConvertNumber(CFNumberRef number, PropertyList& list) {
  const CFNumberType type = CFNumberGetType(number);
  for (const auto& row : kNumberTypes) {
    if (row.type != type) continue;
    list.kind = PropertyListKind::Number;
    list.numberType = row.name;
    row.read(number, type, list);
  }
}

// What a conversion may still take: a shared value counts wherever it is used, and long texts as several.
struct Allowance {
  std::size_t values = SIZE_MAX;
  std::size_t openContainers = kMaxOpenContainers;
};

// False when there are not that many values left.
bool Take(Allowance& allowance, std::size_t values) {
  if (allowance.values < values) return false;
  allowance.values -= values;
  return true;
}

bool Convert(CFTypeRef object, Allowance& allowance, PropertyList& list);

bool ConvertArray(CFArrayRef array, Allowance& allowance, PropertyList& list) {
  list.kind = PropertyListKind::Array;
  const CFIndex count = CFArrayGetCount(array);
  for (CFIndex i = 0; i < count; ++i) {
    list.items.emplace_back();
    if (!Convert(CFArrayGetValueAtIndex(array, i), allowance, list.items.back())) return false;
  }
  return true;
}

// The keys in the order of their bytes, as the profiler writes them: the system's own order changes with the document.
bool ConvertDictionary(CFDictionaryRef dictionary, Allowance& allowance, PropertyList& list) {
  list.kind = PropertyListKind::Dictionary;
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<const void*> keys(count), values(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  std::vector<std::pair<std::string, const void*>> entries;
  for (std::size_t i = 0; i < count; ++i)
    if (CFGetTypeID(keys[i]) == CFStringGetTypeID())
      entries.emplace_back(CFStringToText(static_cast<CFStringRef>(keys[i])), values[i]);
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (auto& [key, value] : entries) {
    if (!Take(allowance, key.size() / kBytesPerValue)) return false;
    list.keys.push_back(std::move(key));
    list.items.emplace_back();
    if (!Convert(value, allowance, list.items.back())) return false;
  }
  return true;
}

void ConvertScalar(CFTypeRef object, PropertyList& list) {
  const CFTypeID type = CFGetTypeID(object);
  if (type == CFStringGetTypeID()) {
    list.kind = PropertyListKind::Text;
    list.text = CFStringToText(static_cast<CFStringRef>(object));
  } else if (type == CFNumberGetTypeID()) {
    ConvertNumber(static_cast<CFNumberRef>(object), list);
  } else if (type == CFDateGetTypeID()) {
    list.kind = PropertyListKind::Date;
    list.real = CFDateGetAbsoluteTime(static_cast<CFDateRef>(object));
  } else if (type == CFBooleanGetTypeID()) {
    list.kind = PropertyListKind::Boolean;
    list.integer = CFBooleanGetValue(static_cast<CFBooleanRef>(object)) ? 1 : 0;
  } else if (type == CFDataGetTypeID()) {
    list.kind = PropertyListKind::Data;
  }
}

// Enters `object` into `list`, which is Null before; a foreign type leaves it so. False when the allowance does not
// suffice; `list` is then incomplete.
bool Convert(CFTypeRef object, Allowance& allowance, PropertyList& list) {
  if (!object) return true;
  if (!Take(allowance, 1)) return false;
  const CFTypeID type = CFGetTypeID(object);
  const bool isArray = type == CFArrayGetTypeID();
  if (!isArray && type != CFDictionaryGetTypeID()) {
    ConvertScalar(object, list);
    return Take(allowance, list.text.size() / kBytesPerValue);
  }
  if (allowance.openContainers == 0) return false;
  --allowance.openContainers;
  const bool isComplete = isArray ? ConvertArray(static_cast<CFArrayRef>(object), allowance, list)
                                  : ConvertDictionary(static_cast<CFDictionaryRef>(object), allowance, list);
  ++allowance.openContainers;
  return isComplete;
}

// The whole of `object`, taken off the allowance, or Null, which takes nothing.
PropertyList ConvertRoot(CFTypeRef object, Allowance& allowance) {
  PropertyList list;
  Allowance rest = allowance;
  if (!Convert(object, rest, list)) return PropertyList();
  allowance = rest;
  return list;
}

bool IsSafe(std::string_view document, std::size_t mostValues) {
  return IsBinaryPropertyList(document) ? BinaryNestingIsSafe(document, mostValues) : XmlNestingIsSafe(document);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
// Null when the document cannot be parsed.
Owned<CFPropertyListRef> ParseData(CFDataRef data) {
  return Owned<CFPropertyListRef>(CFPropertyListCreateFromXMLData(nullptr, data, kCFPropertyListImmutable, nullptr));
}
#pragma GCC diagnostic pop

// --- processes ---

struct Freer {
  void operator()(void* block) const { std::free(block); }
};

ProcessRecord ReadRecord(const unsigned char* bytes) {
  struct kinfo_proc process;
  std::memcpy(&process, bytes, sizeof process);
  ProcessRecord record;
  record.pid = process.kp_proc.p_pid;
  record.parentPid = process.kp_eproc.e_ppid;
  const char* name = process.kp_proc.p_comm;
  record.name.assign(name, strnlen(name, sizeof process.kp_proc.p_comm));
  return record;
}

// --- bundles ---

// Whether CoreFoundation may read the bundle's information: it parses whatever is there, whichever of these files it
// chooses. Also false when there is none.
bool InformationIsSafe(const std::string& bundle, std::size_t mostValues) {
  std::size_t count = 0;
  for (const char* name : {"Info.plist", "Info-macos.plist"}) {
    for (const std::string& file : InformationFiles(bundle, name)) {
      const std::optional<std::string> document = ReadInformation(file);
      if (!document || !IsSafe(*document, mostValues)) return false;
      ++count;
    }
  }
  return count > 0;
}

// The bundle's own facts. CoreFoundation answers a folder without a readable Info.plist with a dictionary too, which is
// empty or holds nothing but the file's URL: it counts as none.
PropertyList InformationOf(const std::string& path, Allowance& allowance) {
  if (!InformationIsSafe(path, allowance.values)) return PropertyList();
  const Owned<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
      nullptr, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()), true));
  if (!url) return PropertyList();
  const Owned<CFBundleRef> bundle(CFBundleCreate(nullptr, url.get()));
  if (!bundle) return PropertyList();
  PropertyList information = ConvertRoot(CFBundleGetInfoDictionary(bundle.get()), allowance);
  const bool isSomething = std::any_of(information.items.begin(), information.items.end(),
                                       [](const PropertyList& item) { return item.kind != PropertyListKind::Null; });
  return isSomething ? std::move(information) : PropertyList();
}

// --- local time ---

Owned<CFDateFormatterRef> MakeFormatter(CFStringRef form) {
  const Owned<CFLocaleRef> locale(CFLocaleCopyCurrent());
  Owned<CFDateFormatterRef> formatter(
      CFDateFormatterCreate(nullptr, locale.get(), kCFDateFormatterNoStyle, kCFDateFormatterNoStyle));
  if (formatter) CFDateFormatterSetFormat(formatter.get(), form);
  return formatter;
}

// Null when the system makes none. Kept, because making one takes ten times as long as using it.
CFDateFormatterRef FormatterFor(DateForm form) {
  static const Owned<CFDateFormatterRef> full = MakeFormatter(CFSTR("yyyyMMddHHmmss.000000 ZZ"));
  static const Owned<CFDateFormatterRef> brief = MakeFormatter(CFSTR("yyyy-MM-dd"));
  return form == DateForm::Full ? full.get() : brief.get();
}

}  // namespace

PropertyList ParsePropertyList(std::string_view document) {
  if (!IsSafe(document, kMaxBinaryValues)) return PropertyList();
  const Owned<CFDataRef> data(
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(document.data()), static_cast<CFIndex>(document.size())));
  if (!data) throw std::bad_alloc();
  const Owned<CFPropertyListRef> root(ParseData(data.get()));
  if (!root || CFGetTypeID(root.get()) != CFArrayGetTypeID()) return PropertyList();
  Allowance unlimited;
  return ConvertRoot(root.get(), unlimited);
}

std::string FormatLocalTime(double seconds, DateForm form) {
  const CFDateFormatterRef formatter = FormatterFor(form);
  if (!formatter || !std::isfinite(seconds)) return std::string();
  const Owned<CFStringRef> text(CFDateFormatterCreateStringWithAbsoluteTime(nullptr, formatter, seconds));
  return CFStringToText(text.get());
}

double CurrentTime() { return CFAbsoluteTimeGetCurrent(); }

std::string ComputerName() {
  const Owned<CFStringRef> name(SCDynamicStoreCopyComputerName(nullptr, nullptr));
  return CFStringToText(name.get());
}

std::optional<ProcessTable> ReadProcessTable() {
  int question[] = {CTL_KERN, KERN_PROC, KERN_PROC_ALL};
  std::size_t size = 0;
  if (sysctl(question, 3, nullptr, &size, nullptr, 0) != 0) return std::nullopt;
  const std::size_t room = std::max(size, sizeof(struct kinfo_proc));
  const std::unique_ptr<void, Freer> buffer(std::calloc(room, 1));
  if (!buffer) return std::nullopt;

  ProcessTable table;
  const bool failed = sysctl(question, 3, buffer.get(), &size, nullptr, 0) != 0;
  table.grew = failed && errno == ENOMEM;
  const std::size_t count = std::min(size, room) / sizeof(struct kinfo_proc);
  const auto* bytes = static_cast<const unsigned char*>(buffer.get());
  for (std::size_t i = 0; i < count; ++i) table.records.push_back(ReadRecord(bytes + i * sizeof(struct kinfo_proc)));
  return table;
}

void ForEachBundle(const std::string& folder, const std::function<void(const Bundle&)>& take) {
  Allowance allowance;
  allowance.values = kMaxInformationValues;
  for (const std::string& name : FoldersIn(folder)) {
    const std::string path = folder + "/" + name;
    take({name, path, InformationOf(path, allowance)});
  }
}
