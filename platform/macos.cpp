// The platform on a Mac: property lists, bundles and local time come from CoreFoundation, the computer's name from the
// system configuration store, the process table from the kernel. Everything leaves this file as plain values; what a
// Create or Copy call returned is released where it was made.
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
#include <type_traits>
#include <utility>

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

// What a conversion may still take: a shared value counts wherever it is used.
struct Allowance {
  std::size_t values = SIZE_MAX;
  std::size_t openContainers = kMaxOpenContainers;
};

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

bool ConvertDictionary(CFDictionaryRef dictionary, Allowance& allowance, PropertyList& list) {
  list.kind = PropertyListKind::Dictionary;
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<const void*> keys(count), values(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  for (std::size_t i = 0; i < count; ++i) {
    if (CFGetTypeID(keys[i]) != CFStringGetTypeID()) continue;
    list.keys.push_back(CFStringToText(static_cast<CFStringRef>(keys[i])));
    list.items.emplace_back();
    if (!Convert(values[i], allowance, list.items.back())) return false;
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
  if (allowance.values == 0) return false;
  --allowance.values;
  const CFTypeID type = CFGetTypeID(object);
  const bool isArray = type == CFArrayGetTypeID();
  if (!isArray && type != CFDictionaryGetTypeID()) {
    ConvertScalar(object, list);
    return true;
  }
  if (allowance.openContainers == 0) return false;
  --allowance.openContainers;
  const bool isComplete = isArray ? ConvertArray(static_cast<CFArrayRef>(object), allowance, list)
                                  : ConvertDictionary(static_cast<CFDictionaryRef>(object), allowance, list);
  ++allowance.openContainers;
  return isComplete;
}

// The whole of `object`, or Null.
PropertyList ConvertRoot(CFTypeRef object, Allowance allowance = Allowance()) {
  PropertyList list;
  return Convert(object, allowance, list) ? std::move(list) : PropertyList();
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

// The bundle's own facts. CoreFoundation answers a folder without a readable Info.plist with a dictionary too, which is
// empty or holds nothing but the file's URL: it counts as none.
PropertyList Information(CFBundleRef bundle) {
  PropertyList information = ConvertRoot(CFBundleGetInfoDictionary(bundle), {kMaxBinaryValues, kMaxOpenContainers});
  const bool isSomething = std::any_of(information.items.begin(), information.items.end(),
                                       [](const PropertyList& item) { return item.kind != PropertyListKind::Null; });
  return isSomething ? std::move(information) : PropertyList();
}

Bundle Describe(CFBundleRef bundle) {
  Bundle result;
  result.information = Information(bundle);
  const Owned<CFURLRef> url(CFBundleCopyBundleURL(bundle));
  if (!url) return result;
  const Owned<CFStringRef> fileName(CFURLCopyLastPathComponent(url.get()));
  const Owned<CFStringRef> path(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
  result.fileName = CFStringToText(fileName.get());
  result.path = CFStringToText(path.get());
  return result;
}

}  // namespace

PropertyList ParsePropertyList(std::string document) {
  if (!(IsBinaryPropertyList(document) ? BinaryNestingIsSafe(document) : XmlNestingIsSafe(document)))
    return PropertyList();
  const Owned<CFDataRef> data(
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(document.data()), static_cast<CFIndex>(document.size())));
  std::string().swap(document);
  if (!data) return PropertyList();
  const Owned<CFPropertyListRef> root(ParseData(data.get()));
  if (!root || CFGetTypeID(root.get()) != CFArrayGetTypeID()) return PropertyList();
  return ConvertRoot(root.get());
}

std::string FormatLocalTime(double seconds, DateForm form) {
  if (!std::isfinite(seconds)) return std::string();
  const Owned<CFLocaleRef> locale(CFLocaleCopyCurrent());
  const Owned<CFDateFormatterRef> formatter(
      CFDateFormatterCreate(nullptr, locale.get(), kCFDateFormatterNoStyle, kCFDateFormatterNoStyle));
  if (!formatter) return std::string();
  CFDateFormatterSetFormat(formatter.get(),
                           form == DateForm::Full ? CFSTR("yyyyMMddHHmmss.000000 ZZ") : CFSTR("yyyy-MM-dd"));
  const Owned<CFStringRef> text(CFDateFormatterCreateStringWithAbsoluteTime(nullptr, formatter.get(), seconds));
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

std::vector<Bundle> LoadBundles(const std::string& folder) {
  std::vector<Bundle> result;
  const Owned<CFStringRef> path(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%s/"), folder.c_str()));
  if (!path) return result;
  const Owned<CFURLRef> url(CFURLCreateWithFileSystemPath(nullptr, path.get(), kCFURLPOSIXPathStyle, true));
  if (!url) return result;
  const Owned<CFArrayRef> bundles(CFBundleCreateBundlesFromDirectory(nullptr, url.get(), nullptr));
  const CFIndex count = bundles ? CFArrayGetCount(bundles.get()) : 0;
  for (CFIndex i = 0; i < count; ++i)
    if (const void* bundle = CFArrayGetValueAtIndex(bundles.get(), i))
      result.push_back(Describe(static_cast<CFBundleRef>(const_cast<void*>(bundle))));
  return result;
}
