// The displays of newer systems in older keys: what each says of itself instead of an EDID block, and the memory and
// the resolution of the main one, whichever adapter it hangs on.
#include <utility>

#include "main/collect/modern_keys.h"
#include "main/collect/modern_steps.h"

namespace {

constexpr char kNoDisplay[] = "spdisplays_display_connector";
constexpr std::int64_t kMax16Bits = 0xFFFF;
constexpr std::int64_t kMax32Bits = 0xFFFFFFFF;
constexpr std::int64_t kWeeks = 53;

std::vector<PropertyList*> DisplaysOf(PropertyList& adapter) { return ElementsUnder(adapter, "spdisplays_ndrvs"); }

struct NumberKey {
  const char* key;
  const char* name;
  int base;
  std::int64_t limit;
};

constexpr NumberKey kNumberKeys[] = {
    {"_spdisplays_display-vendor-id", "vendor", 16, kMax16Bits},
    {"_spdisplays_display-product-id", "product", 16, kMax16Bits},
    {"_spdisplays_display-week", "week", 10, kWeeks},
    {"_spdisplays_display-year", "year", 10, kMax16Bits},
};

// 0 stands for a number that is not known.
std::int64_t NumberUnderKey(const PropertyList& display, const NumberKey& number) {
  return ReadNumber(TextUnderKey(display, number.key), number.base, number.limit).value_or(0);
}

// deliberate: with its bytes exchanged, as a display with an EDID block gives it
std::int64_t SerialNumber(const PropertyList& display) {
  for (const char* key : {"_spdisplays_display-serial-number", "_spdisplays_display-serial-number2"}) {
    const std::int64_t number = NumberUnderKey(display, {key, "serial", 16, kMax32Bits});
    if (number) return (number & 0xFF) << 24 | (number & 0xFF00) << 8 | (number >> 8 & 0xFF00) | number >> 24;
  }
  return 0;
}

// "2880 x 1800".
bool IsResolution(std::string_view text) {
  const std::size_t cross = text.find(" x ");
  return cross != std::string_view::npos && ReadNumber(text.substr(0, cross), 10, kMax16Bits) &&
         ReadNumber(text.substr(cross + 3), 10, kMax16Bits);
}

void AddMonitor(PropertyList& display) {
  if (FindKey(&display, "_spdisplays_edid") || TextUnderKey(display, "_name") == kNoDisplay) return;
  PropertyList monitor = MakeNode(PropertyListKind::Dictionary);
  for (const NumberKey& number : kNumberKeys)
    if (const std::int64_t known = NumberUnderKey(display, number))
      AddMissing(monitor, number.name, MakeInteger(known));
  if (const std::int64_t serial = SerialNumber(display)) AddMissing(monitor, "serial", MakeInteger(serial));
  if (FindText(&display, "_name")) CopyMissing(monitor, "model", display, {"_name"});
  if (IsResolution(TextUnderKey(display, "_spdisplays_pixels")))
    CopyMissing(monitor, "resolution", display, {"_spdisplays_pixels"});
  if (!monitor.items.empty()) AddMissing(display, kMonitorKey, std::move(monitor));
}

// A display and its adapter; null where there is none.
struct Place {
  PropertyList* adapter = nullptr;
  PropertyList* display = nullptr;
};

// The display marked as main, else the first one, on some adapters.
Place MainDisplay(const std::vector<PropertyList*>& adapters) {
  Place first;
  for (PropertyList* adapter : adapters) {
    for (PropertyList* display : DisplaysOf(*adapter)) {
      if (TextUnderKey(*display, "spdisplays_main") == "spdisplays_yes") return {adapter, display};
      if (!first.display) first = {adapter, display};
    }
  }
  return first;
}

const std::string* FirstText(const PropertyList* node, std::initializer_list<const char*> keys) {
  for (const char* key : keys)
    if (const std::string* text = FindText(node, key)) return text;
  return nullptr;
}

// The usual keys say it of the first adapter and of its displays.
void AddMainDisplay(PropertyList& result, const std::vector<PropertyList*>& adapters) {
  if (adapters.empty()) return;
  const Place main = MainDisplay(adapters);
  const Place usual = MainDisplay({adapters.front()});
  if (!FindText(usual.display, "spdisplays_resolution")) {
    const std::string* resolution = FirstText(main.display, {"spdisplays_resolution", "_spdisplays_resolution"});
    if (resolution) AddToSummary(result, "resolution", *resolution);
  }
  if (!FindText(adapters.front(), "spdisplays_vram") && main.adapter) {
    const std::string* memory =
        FirstText(main.adapter, {"spdisplays_vram", "spdisplays_vram_shared", "_spdisplays_vram"});
    AddToSummary(result, "video-memory", memory ? *memory : std::string());
  }
}

}  // namespace

void AddDisplayKeys(PropertyList& result) {
  const std::vector<PropertyList*> adapters = ItemsOf(result);
  AddMainDisplay(result, adapters);
  for (PropertyList* adapter : adapters) {
    CopyMissing(*adapter, "spdisplays_vram", *adapter, {"spdisplays_vram_shared", "_spdisplays_vram"});
    for (PropertyList* display : DisplaysOf(*adapter)) AddMonitor(*display);
  }
}
