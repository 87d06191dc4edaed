// Draws disks and volumes: a bar for each disk, as long as the disk is large beside the others, divided into its
// volumes and those into used and free.
#include <algorithm>

#include "reader/html.h"
#include "reader/record_view.h"
#include "reader/report_drawings.h"

namespace {

constexpr int kBarHeight = 24;      // pixels
constexpr double kShortestBar = 8;  // percent of the room, for a small disk beside a large one
constexpr double kMarkRoom = 2.5;   // percent of the room that a volume's number needs
constexpr double kGap = 0.2;        // percent of the room between two volumes

struct Volume {
  RecordView view;
  double size = 0;
  double used = 0;
  bool mounted = false;  // its use is known
  bool low = false;      // less than a tenth is free
};

Volume MakeVolume(const RecordView& view) {
  Volume volume;
  volume.view = view;
  volume.size = std::max(0.0, static_cast<double>(NumberOf(view, "size_bytes").value_or(0)));
  const auto free = NumberOf(view, "free_bytes");
  volume.mounted = free.has_value();
  if (!free) return volume;
  volume.used = std::min(std::max(0.0, volume.size - static_cast<double>(*free)), volume.size);
  volume.low = volume.size - volume.used < volume.size / 10;
  return volume;
}

// The number of a volume, in the wider of its two parts.
std::string MarkHtml(std::size_t number, double from, double used, double free) {
  const bool inUsed = used >= free;
  if (std::max(used, free) < kMarkRoom) return "";
  const double at = inUsed ? from : from + used;
  return "<text class=\"" + std::string(inUsed ? "on-used" : "on-free") + "\" x=\"" + std::to_string(at + 0.8) +
         "%\" y=\"16\">" + std::to_string(number) + "</text>";
}

// The bar of a disk that holds `whole` bytes, `length` percent of the room long.
std::string DiskBar(double whole, double length, const std::vector<Volume>& volumes, const std::string& label) {
  double sum = 0;
  for (const Volume& volume : volumes) sum += volume.size;
  const double scale = std::max(whole, sum) > 0 ? length / std::max(whole, sum) : 0;
  std::vector<BarPart> parts = {{"blank", 0, length}};
  std::string marks;
  double at = 0;
  for (std::size_t i = 0; i < volumes.size(); ++i) {
    const Volume& volume = volumes[i];
    const double size = volume.size * scale;
    const double used = volume.used * scale;
    if (volume.mounted) {
      parts.push_back({volume.low ? "used low" : "used", at, used});
      parts.push_back({"free", at + used, size - used});
      marks += MarkHtml(i + 1, at, used, size - used);
    } else {
      parts.push_back({"other", at, size});
      marks += MarkHtml(i + 1, at, 0, size);
    }
    at += size;
    parts.push_back({"gap", at - kGap, kGap});
  }
  std::string bar = HtmlBar(kBarHeight, label, parts);
  return bar.insert(bar.size() - 6, marks);  // in front of </svg>
}

std::string VolumeHtml(const Volume& volume, std::size_t number) {
  const RecordView& view = volume.view;
  std::string name = ShownOf(view, "name");
  if (name.empty()) name = "Volume without a name";
  const std::string size = ShownOf(view, "size_bytes");
  std::string space = size.empty() ? "size not known" : size + ", not mounted";
  if (volume.mounted) {
    space = ShownOf(view, "free_bytes") + " of " + size + " free";
    const std::string percent = ShownOf(view, "free_percent");
    if (!percent.empty()) space += " (" + percent + ")";
  }
  const std::string encrypted = FlagOf(view, "encrypted").value_or(false) ? "encrypted" : "";
  const std::string place = Joined({ShownOf(view, "mount_point"), ShownOf(view, "file_system"), encrypted});
  return "<li><span class=\"mark\">" + std::to_string(number) + "</span> " + FileText("b", name) + "<br>" +
         HtmlText(space) + (volume.low ? " <strong>low</strong>" : "") + "<br>" + FileText("span", place, "soft") +
         "</li>";
}

std::string VolumesHtml(const std::vector<Volume>& volumes) {
  std::string html;
  for (std::size_t i = 0; i < volumes.size(); ++i) html += VolumeHtml(volumes[i], i + 1);
  return html.empty() ? "" : "<ol class=\"volumes\">" + html + "</ol>";
}

double SizeOf(const RecordView& disk) {
  return std::max(0.0, static_cast<double>(NumberOf(disk, "size_bytes").value_or(0)));
}

// `allKnown`: there is no volume whose disk is not known.
std::string DiskHtml(const RecordView& disk, const std::vector<Volume>& volumes, double largest, bool allKnown) {
  const bool drive = ShownOf(disk, "kind") == "drive";
  std::string model = ShownOf(disk, "model");
  if (model.empty()) model = "Disk without a name";
  const std::string size = ShownOf(disk, "size_bytes");
  const std::string serial = ShownOf(disk, "serial_number");
  const std::string what = drive ? "drive without a disk of its own" : size;
  const std::string none = !drive && volumes.empty() && allKnown ? "no volume" : "";
  const std::string about = Joined({what, ShownOf(disk, "interface"), ShownOf(disk, "maker"),
                                    serial.empty() ? "" : "serial number " + serial, none});
  std::string html = "<li class=\"disk\"><h4>" + FileText("span", model) + FileText("span", about, "soft") + "</h4>";
  if (SizeOf(disk) > 0) {
    const double length = std::max(kShortestBar, largest > 0 ? SizeOf(disk) / largest * 100 : 100);
    html += DiskBar(SizeOf(disk), length, volumes,
                    model + ", " + size + ", " + Counted(volumes.size(), "volume", "volumes"));
  }
  return html + VolumesHtml(volumes) + "</li>";
}

std::string LegendHtml() {
  std::string html = "<span class=\"legend\">";
  for (const auto& [kind, word] :
       {std::pair("used", "used"), {"free", "free"}, {"other", "not mounted"}, {"blank", "in no volume"}})
    html += std::string("<span>") + HtmlBar(12, "", {{kind, 0, 100}}) + word + "</span>";
  return html + "</span>";
}

}  // namespace

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() || part.empty() ? "" : " · ") + part;
  return text;
}

std::string CardHtml(const std::string& id, const std::string& title, const std::string& extra, const std::string& body,
                     bool wide) {
  if (body.empty()) return "";
  return "<div class=\"card" + std::string(wide ? " wide" : "") + "\"><div class=\"head\"><h3 id=\"" + id + "\">" +
         title + "</h3>" + extra + "</div>" + body + "</div>\n";
}

std::string StorageHtml(const RecordSource& source) {
  const std::vector<RecordView> disks = ViewsOf("disks", source);
  std::vector<std::vector<Volume>> volumesOf(disks.size());
  std::vector<Volume> others;
  for (const RecordView& view : ViewsOf("volumes", source)) {
    const auto disk = NumberOf(view, "disk");
    const bool known = disk && *disk >= 0 && static_cast<std::size_t>(*disk) < disks.size();
    (known ? volumesOf[static_cast<std::size_t>(*disk)] : others).push_back(MakeVolume(view));
  }
  double largest = 0;
  for (const RecordView& disk : disks) largest = std::max(largest, SizeOf(disk));
  std::string html;
  for (std::size_t i = 0; i < disks.size(); ++i) html += DiskHtml(disks[i], volumesOf[i], largest, others.empty());
  if (!others.empty()) {
    double sum = 0;
    for (const Volume& volume : others) sum += volume.size;
    html += "<li class=\"disk\"><h4><span>Volumes whose disk is not known</span></h4>" +
            (sum > 0 ? DiskBar(sum, 100, others, Counted(others.size(), "volume", "volumes")) : "") +
            VolumesHtml(others) + "</li>";
  }
  return html.empty() ? "" : CardHtml("storage", "Disks and volumes", LegendHtml(), "<ul>" + html + "</ul>", true);
}
