// Draws monitors, memory slots, USB devices and network adapters.
#include <algorithm>
#include <map>

#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report_drawings.h"

namespace {

constexpr double kMostPixels = 5;      // of the drawing for a centimetre of a monitor
constexpr double kRowPixels = 400;     // that the monitors of a desk share
constexpr double kWidestPixels = 270;  // for one monitor: a small window has no more room
constexpr int kFootPixels = 14;

struct Monitor {
  RecordView view;
  double width = 0;  // centimetres
  double height = 0;
};

std::string Pixels(double number) { return std::to_string(static_cast<int>(number)); }

std::string MonitorName(const RecordView& view) {
  const std::string model = ShownOf(view, "model");
  if (!model.empty()) return model;
  const std::string product = ShownOf(view, "product");
  return product.empty() ? "Monitor without a name" : product;
}

std::string ResolutionText(const RecordView& view) {
  const auto width = NumberOf(view, "max_width_pixels");
  const auto height = NumberOf(view, "max_height_pixels");
  return width && height ? std::to_string(*width) + " × " + std::to_string(*height) : "";
}

// The screen with its foot; size and resolution stand on it.
std::string ScreenHtml(const Monitor& monitor, double scale, const std::string& resolution, const std::string& label) {
  const double width = monitor.width * scale;
  const double height = monitor.height * scale;
  const std::string middle = Pixels(width / 2);
  const std::string inches = ShownOf(monitor.view, "diagonal_in");
  const std::string all = Pixels(width) + "\" height=\"" + Pixels(height + kFootPixels);
  return "<svg width=\"" + all + "\" viewBox=\"0 0 " + Pixels(width) + " " + Pixels(height + kFootPixels) +
         "\" role=\"img\" aria-label=\"" + HtmlText(label) + "\"><rect class=\"glass\" x=\"1\" y=\"1\" width=\"" +
         Pixels(width - 2) + "\" height=\"" + Pixels(height - 2) + "\" rx=\"5\"/><path class=\"foot\" d=\"M" + middle +
         " " + Pixels(height) + "v11m-22 0h44\"/><text x=\"" + middle + "\" y=\"" +
         Pixels(height / 2 + (resolution.empty() ? 6 : 0)) + "\">" + inches + "</text><text class=\"small\" x=\"" +
         middle + "\" y=\"" + Pixels(height / 2 + 18) + "\">" + HtmlText(resolution) + "</text></svg>";
}

// Of the main monitor, such as "2560 x 1440 @ 60 Hz".
std::string CurrentResolution(const RecordSource& source) {
  const Tag* control = source.asset ? FindChild(*source.asset, "control") : nullptr;
  std::string text = control ? TextOf(FindAttribute(*control, "video-res")) : "";
  const std::size_t cross = text.find(" x ");
  return cross == text.npos ? text : text.replace(cross, 3, " × ");
}

std::string MonitorHtml(const Monitor& monitor, double scale, const std::string& current) {
  const RecordView& view = monitor.view;
  const bool main = FlagOf(view, "main").value_or(false);
  const std::string most = ResolutionText(view);
  const std::string now = main ? current : "";
  const std::string year = ShownOf(view, "made_year");
  const std::string week = ShownOf(view, "made_week");
  const std::string serial = ShownOf(view, "serial_number");
  const bool sized = monitor.width > 0 && monitor.height > 0;
  const std::string size =
      sized ? ShownOf(view, "width_cm") + " × " + ShownOf(view, "height_cm") : std::string("size not known");
  const std::string about = Joined({main ? "main monitor" : "", size, now.empty() ? "" : "set to " + now,
                                    most.empty() ? "" : "largest standard mode " + most,
                                    year.empty() ? "" : "made " + year + (week.empty() ? "" : ", week " + week),
                                    serial.empty() ? "" : "serial number " + serial});
  const std::string name = MonitorName(view);
  std::string html = "<figure>";
  if (sized) html += ScreenHtml(monitor, scale, now.empty() ? most : now, name + ", " + ShownOf(view, "diagonal_in"));
  return html + "<figcaption>" + FileText("b", name) + FileText("span", about, "soft") + "</figcaption></figure>";
}

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
  return "<li>" + FileText("span", device.name.empty() ? "Device without a name" : device.name) +
         HtmlBar(10, "", {{"free", 0, share(device.offered)}, {"used", 0, share(device.drawn)}}) +
         "<span class=\"num\">" + Grouped(device.drawn) + " of " + Grouped(device.offered) + " mA</span></li>";
}

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

std::string Beside(const std::string& text) { return "<span class=\"soft\">" + HtmlText(text) + "</span>"; }

}  // namespace

std::string MonitorsHtml(const RecordSource& source) {
  std::vector<Monitor> monitors;
  double sum = 0;
  double widest = 0;
  for (const RecordView& view : ViewsOf("monitors", source)) {
    const auto size = [&view](std::string_view field) {
      return std::clamp(static_cast<double>(NumberOf(view, field).value_or(0)), 0.0, 1000.0);
    };
    monitors.push_back({view, size("width_cm"), size("height_cm")});
    sum += monitors.back().width;
    widest = std::max(widest, monitors.back().width);
  }
  const double scale =
      widest > 0 ? std::min({kMostPixels, kWidestPixels / widest, std::max(kRowPixels / sum, 2.0)}) : 1;
  const std::string current = CurrentResolution(source);
  std::string html;
  for (const Monitor& monitor : monitors) html += MonitorHtml(monitor, scale, current);
  return html.empty()
             ? ""
             : CardHtml("monitors-drawn", "Monitors", Beside("to scale"), "<div class=\"desk\">" + html + "</div>");
}

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
  return html.empty() ? ""
                      : CardHtml("slots-drawn", "Memory slots", Beside(extra), "<ul class=\"slots\">" + html + "</ul>");
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
    html +=
        "<li><h4>" + FileText("span", maker.name) + Beside(Grouped(maker.drawn) + " mA") + "</h4><ul class=\"draws\">";
    for (const UsbDevice& device : maker.devices) html += UsbDeviceHtml(device, most);
    html += "</ul></li>";
  }
  if (html.empty()) return "";
  return CardHtml("usb-drawn", "USB devices",
                  Beside(Counted(count, "device", "devices") + ", " + Grouped(drawn) + " mA drawn"),
                  "<ul class=\"makers\">" + html + "</ul>", true);
}

std::string AdaptersHtml(const RecordSource& source) {
  std::string html;
  for (const RecordView& adapter : ViewsOf("network_adapters", source)) html += AdapterHtml(adapter);
  return html.empty()
             ? ""
             : CardHtml("adapters-drawn", "Network adapters", "", "<ul class=\"adapters\">" + html + "</ul>", true);
}
