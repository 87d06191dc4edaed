// Draws memory slots, USB devices and network adapters.
#include <algorithm>
#include <map>

#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report_drawings.h"

namespace {

constexpr char kModule[] =
    R"(<svg viewBox="0 0 120 34" aria-hidden="true"><path class="board" d="M1 1H119V33H64V29H58V33H1Z"/>)"
    R"(<path class="chip" d="M8 7h9v14h-9zM22 7h9v14h-9zM36 7h9v14h-9zM50 7h9v14h-9zM64 7h9v14h-9zM78 7h9v14h-9z)"
    R"(M92 7h9v14h-9zM104 7h9v14h-9z"/></svg>)";
constexpr char kHole[] =
    R"(<svg viewBox="0 0 120 34" aria-hidden="true"><rect class="hole" x="1" y="1" width="118" height="32" rx="3"/></svg>)";

std::string SlotHtml(const RecordView& slot) {
  if (!FlagOf(slot, "used").value_or(true))
    return std::string("<li>") + kHole + "<b>Empty</b><span class=\"soft\">slot " + ShownOf(slot, "slot") +
           "</span></li>";
  const std::string size = ShownOf(slot, "capacity_bytes");
  const std::string about = Joined({ShownOf(slot, "speed_mhz"), ShownOf(slot, "maker"), ShownOf(slot, "bank")});
  return std::string("<li>") + kModule +
         FileText("b", (size.empty() ? "Size not known" : size) + " " + ShownOf(slot, "type")) +
         FileText("span", about, "soft") + "</li>";
}

struct UsbDevice {
  std::string name;
  std::int64_t offered = 0;  // milliamperes
  std::int64_t drawn = 0;
};

struct Maker {
  std::string name;
  std::int64_t drawn = 0;
  std::vector<UsbDevice> devices;
};

std::string MakerName(const RecordView& device) {
  if (ShownOf(device, "vendor_id") == "apple_vendor_id") return "Apple";
  const std::string name = ShownOf(device, "vendor_name");
  return name.empty() ? ShownOf(device, "maker") : name;
}

void AddDevice(const RecordView& device, const std::string& name, std::string makerName,
               std::map<std::string, Maker>& makers) {
  if (makerName.empty()) makerName = "Maker not told";
  const auto bounded = [](std::optional<std::int64_t> number) {
    return std::clamp<std::int64_t>(number.value_or(0), 0, 100000);
  };
  UsbDevice usb = {name, bounded(NumberOf(device, "bus_power_ma")), bounded(NumberOf(device, "bus_power_used_ma"))};
  Maker& maker = makers[makerName];
  maker.name = makerName;
  maker.drawn += usb.drawn;
  maker.devices.push_back(std::move(usb));
}

// The makers, the one whose devices draw most power first.
std::vector<Maker> MakersOf(const RecordSource& source) {
  std::map<std::string, Maker> byName;
  for (const RecordView& device : ViewsOf("usb_devices", source))
    AddDevice(device, ShownOf(device, "name"), MakerName(device), byName);
  for (const RecordView& disk : ViewsOf("disks", source))
    if (NumberOf(disk, "bus_power_ma"))
      AddDevice(disk, ShownOf(disk, "model") + " (disk)", ShownOf(disk, "maker"), byName);
  std::vector<Maker> makers;
  for (auto& [name, maker] : byName) makers.push_back(std::move(maker));
  std::stable_sort(makers.begin(), makers.end(), [](const Maker& a, const Maker& b) { return a.drawn > b.drawn; });
  return makers;
}

std::string UsbDeviceHtml(const UsbDevice& device, double most) {
  const auto share = [most](std::int64_t current) { return most > 0 ? static_cast<double>(current) / most * 100 : 0; };
  const std::string power = device.offered == 0 && device.drawn == 0
                                ? "power not told"
                                : Grouped(device.drawn) + " of " + Grouped(device.offered) + " mA";
  return "<li>" + FileText("span", device.name.empty() ? "Device without a name" : device.name) +
         HtmlBar(10, "", {{"free", 0, share(device.offered)}, {"used", 0, share(device.drawn)}}) +
         "<span class=\"num\">" + power + "</span></li>";
}

std::string HeadNote(const std::string& text) { return "<span class=\"soft\">" + HtmlText(text) + "</span>"; }

std::string AdapterHtml(const RecordView& adapter) {
  const std::string addresses = ShownOf(adapter, "ip_addresses");
  std::string name = ShownOf(adapter, "name");
  if (name.empty()) name = "Adapter without a name";
  std::string html = addresses.empty() ? "<li class=\"off\">" : "<li>";
  html += FileText("b", name);
  html += FileText(
      "span", Joined({ShownOf(adapter, "type"), ShownOf(adapter, "device"), addresses.empty() ? "no address" : ""}),
      "soft");
  html += "<dl>";
  for (const auto& [label, field] :
       {std::pair("IP", "ip_addresses"), {"Mask", "subnet_masks"}, {"Gateway", "gateway"}, {"MAC", "mac_address"}}) {
    const std::string value = ShownOf(adapter, field);
    if (!value.empty()) html += std::string("<dt>") + label + "</dt>" + FileText("dd", value);
  }
  return html + "</dl></li>";
}

}  // namespace

std::string SlotsHtml(const RecordSource& source) {
  std::string html;
  std::size_t used = 0;
  const std::vector<RecordView> slots = ViewsOf("memory_slots", source);
  for (const RecordView& slot : slots) {
    html += SlotHtml(slot);
    used += FlagOf(slot, "used").value_or(true) ? 1 : 0;
  }
  const std::string total = ShownOf(ViewsOf("macs", source).front(), "memory_bytes");
  const std::string extra =
      (total.empty() ? "" : total + " in ") + std::to_string(used) + " of " + Counted(slots.size(), "slot", "slots");
  return html.empty()
             ? ""
             : CardHtml("slots-drawn", "Memory slots", HeadNote(extra), "<ul class=\"slots\">" + html + "</ul>");
}

std::string UsbHtml(const RecordSource& source) {
  std::string html;
  std::int64_t drawn = 0;
  std::size_t count = 0;
  double most = 0;
  const std::vector<Maker> makers = MakersOf(source);
  for (const Maker& maker : makers)
    for (const UsbDevice& device : maker.devices)
      most = std::max({most, static_cast<double>(device.offered), static_cast<double>(device.drawn)});
  for (const Maker& maker : makers) {
    drawn += maker.drawn;
    count += maker.devices.size();
    html += "<li><h4>" + FileText("span", maker.name) + HeadNote(Grouped(maker.drawn) + " mA") +
            "</h4><ul class=\"draws\">";
    for (const UsbDevice& device : maker.devices) html += UsbDeviceHtml(device, most);
    html += "</ul></li>";
  }
  if (html.empty()) return "";
  return CardHtml("usb-drawn", "USB devices",
                  HeadNote(Counted(count, "device", "devices") + ", " + Grouped(drawn) + " mA drawn"),
                  "<ul class=\"makers\">" + html + "</ul>", true);
}

std::string AdaptersHtml(const RecordSource& source) {
  std::string html;
  for (const RecordView& adapter : ViewsOf("network_adapters", source)) html += AdapterHtml(adapter);
  return html.empty()
             ? ""
             : CardHtml("adapters-drawn", "Network adapters", "", "<ul class=\"adapters\">" + html + "</ul>", true);
}
