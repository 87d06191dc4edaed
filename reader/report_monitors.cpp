// Draws the monitors of a desk side by side, to one scale.
#include <algorithm>

#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report_drawings.h"

namespace {

constexpr double kMostPixels = 5;  // of the drawing for a centimetre of a monitor
constexpr double kLeastPixels = 2;
constexpr double kRowPixels = 400;         // that the monitors of a desk share
constexpr double kWidestPixels = 270;      // for one monitor: a small window has no more room
constexpr double kUnsizedPixels = 150;     // for one that does not tell its size
constexpr double kResolutionPixels = 120;  // that a resolution needs
constexpr double kMostCentimetres = 1000;
constexpr int kFootPixels = 14;

struct Monitor {
  RecordView view;
  bool sized = false;  // the monitor tells its size
  double width = 0;    // centimetres, then pixels of the drawing
  double height = 0;
};

std::string Pixels(double number) { return std::to_string(static_cast<int>(number)); }

std::string MonitorName(const RecordView& view) {
  std::string model = ShownOf(view, "model");
  if (!model.empty()) return model;
  std::string product = ShownOf(view, "product");
  return product.empty() ? "Monitor without a name" : product;
}

// Height by width, from the largest mode.
double ShapeOf(const RecordView& view) {
  const auto width = static_cast<double>(NumberOf(view, "max_width_pixels").value_or(16));
  const auto height = static_cast<double>(NumberOf(view, "max_height_pixels").value_or(10));
  return width > 0 && height > 0 ? std::clamp(height / width, 0.25, 2.0) : 0.625;
}

std::string ResolutionText(const RecordView& view) {
  const auto width = NumberOf(view, "max_width_pixels");
  const auto height = NumberOf(view, "max_height_pixels");
  return width && height ? std::to_string(*width) + " × " + std::to_string(*height) : "";
}

// The screen with its foot; size and resolution stand on it. A monitor that does not tell its size is drawn with a
// broken line. `room` is what the tallest screen takes, so that all stand on one desk.
std::string ScreenHtml(const Monitor& monitor, double room, const std::string& resolution, const std::string& label) {
  const double middle = monitor.height / 2;
  const std::string centre = Pixels(monitor.width / 2);
  const std::string width = Pixels(monitor.width);
  const std::string whole = Pixels(room + kFootPixels);
  const std::string inches = ShownOf(monitor.view, "diagonal_in");
  const std::string small = monitor.width < kResolutionPixels ? "" : HtmlText(resolution);
  return "<svg width=\"" + width + "\" height=\"" + whole + "\" viewBox=\"0 " + Pixels(monitor.height - room) + " " +
         width + " " + whole + "\" role=\"img\" aria-label=\"" + HtmlText(label) + "\"><rect class=\"" +
         (monitor.sized ? "glass" : "outline") + "\" x=\"1\" y=\"1\" width=\"" + Pixels(monitor.width - 2) +
         "\" height=\"" + Pixels(monitor.height - 2) + "\" rx=\"5\"/><path class=\"foot\" d=\"M" + centre + " " +
         Pixels(monitor.height) + "v11m-22 0h44\"/><text x=\"" + centre + "\" y=\"" +
         Pixels(middle + (small.empty() ? 6 : 0)) + "\">" + inches + "</text><text class=\"small\" x=\"" + centre +
         "\" y=\"" + Pixels(middle + (inches.empty() ? 4 : 18)) + "\">" + small + "</text></svg>";
}

// Of the main monitor, such as "2560 x 1440 @ 60 Hz".
std::string CurrentResolution(const RecordSource& source) {
  const Tag* control = source.asset ? FindChild(*source.asset, "control") : nullptr;
  std::string text = control ? TextOf(FindAttribute(*control, "video-res")) : "";
  const std::size_t cross = text.find(" x ");
  return cross == text.npos ? text : text.replace(cross, 3, " × ");
}

std::string MonitorHtml(const Monitor& monitor, double room, const std::string& current) {
  const RecordView& view = monitor.view;
  const bool main = FlagOf(view, "main").value_or(false);
  const std::string most = ResolutionText(view);
  const std::string now = main ? current : "";
  const std::string year = ShownOf(view, "made_year");
  const std::string week = ShownOf(view, "made_week");
  const std::string serial = ShownOf(view, "serial_number");
  const std::string size =
      monitor.sized ? ShownOf(view, "width_cm") + " × " + ShownOf(view, "height_cm") : std::string("size not known");
  const std::string about = Joined({main ? "main monitor" : "", size, now.empty() ? "" : "set to " + now,
                                    most.empty() ? "" : "largest standard mode " + most,
                                    year.empty() ? "" : "made " + year + (week.empty() ? "" : ", week " + week),
                                    serial.empty() ? "" : "serial number " + serial});
  const std::string name = MonitorName(view);
  const std::string screen = ScreenHtml(monitor, room, now.empty() ? most : now, name + ", " + size);
  return "<figure>" + screen + "<figcaption>" + FileText("b", name) + FileText("span", about, "soft") +
         "</figcaption></figure>";
}

// From centimetres to pixels: all to one scale, those without a size as large as there is always room. Returns the
// height of the tallest.
double ScaleMonitors(std::vector<Monitor>& monitors) {
  double sum = 0;
  double widest = 1;
  double tallest = 1;
  for (const Monitor& monitor : monitors) {
    sum += monitor.width;
    widest = std::max(widest, monitor.width);
    tallest = std::max(tallest, monitor.height);
  }
  const double fair = std::max(kRowPixels / std::max(sum, 1.0), kLeastPixels);
  const double scale = std::min({kMostPixels, kWidestPixels / widest, kWidestPixels / tallest, fair});
  double room = 0;
  for (Monitor& monitor : monitors) {
    monitor.height = monitor.sized ? monitor.height * scale : kUnsizedPixels * ShapeOf(monitor.view);
    monitor.width = monitor.sized ? monitor.width * scale : kUnsizedPixels;
    room = std::max(room, monitor.height);
  }
  return room;
}

}  // namespace

std::string MonitorsHtml(const RecordSource& source) {
  std::vector<Monitor> monitors;
  bool sized = false;
  for (const RecordView& view : ViewsOf("monitors", source)) {
    const auto size = [&view](std::string_view field) {
      return std::clamp(static_cast<double>(NumberOf(view, field).value_or(0)), 0.0, kMostCentimetres);
    };
    Monitor monitor = {view, false, size("width_cm"), size("height_cm")};
    monitor.sized = monitor.width > 0 && monitor.height > 0;
    sized = sized || monitor.sized;
    monitors.push_back(monitor);
  }
  const double room = ScaleMonitors(monitors);
  const std::string current = CurrentResolution(source);
  std::string html;
  for (const Monitor& monitor : monitors) html += MonitorHtml(monitor, room, current);
  if (html.empty()) return "";
  return CardHtml("monitors-drawn", "Monitors", sized ? "<span class=\"soft\">to scale</span>" : "",
                  "<div class=\"desk\">" + html + "</div>");
}
