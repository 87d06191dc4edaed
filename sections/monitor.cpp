// Writes a decoded EDID block onto a monitor tag: who made the display and when, its name, its size in centimetres and
// inches, its frequencies and its video modes.
#include "sections/monitor.h"

#include "sections/edid.h"
#include "sections/items.h"
#include "zxml/value_text.h"

namespace {

void SetText(Tag& tag, const char* name, const std::string& text) { SetAttribute(tag, name, MakeTextValue(text)); }

void SetNumber(Tag& tag, const char* name, std::int64_t number) { SetAttribute(tag, name, MakeIntValue(number)); }

// The child that holds the parts of the attribute `name`.
Tag& AddParts(Tag& tag, const std::string& name) {
  Tag* parts = AddComplexChild(tag, name);
  AddTagProperty(*parts, "field-source", "");
  return *parts;
}

// The first line of the name, trimmed.
std::string CleanName(const std::string& name) { return Trimmed(name.substr(0, name.find('\n')), " \t\r\n"); }

void AddNames(Tag& monitor, const EdidInfo& info) {
  const std::string id = info.manufacturer + info.productCode;
  const std::string model = CleanName(info.monitorName);
  const std::string name = "?" + id + "|" + model;
  SetText(monitor, "manuf", "?" + info.manufacturer);
  SetText(monitor, "id", id);
  SetText(monitor, "name", name);
  SetTagValue(monitor, MakeTextValue(name));
  SetText(monitor, "model", model);
}

void AddFeatures(Tag& monitor, const EdidInfo& info) {
  SetNumber(monitor, "video-input", info.videoInput);
  SetNumber(monitor, "synch-input", info.videoInput);  // deliberate: the same byte
  SetNumber(monitor, "color-features", info.features);
  SetNumber(monitor, "dpms-mode-support", info.features);  // deliberate: the same byte
  SetAttribute(monitor, "gamma", MakeDoubleValue(info.gamma));
  SetText(monitor, "max-resolution", info.maxResolution);
  SetNumber(monitor, "serial-digital", info.serialNumber);
}

void AddManufactureDate(Tag& monitor, const EdidInfo& info) {
  Tag& date = AddParts(monitor, "manufacture-date");
  SetNumber(date, "manufacture-year", info.year);
  SetNumber(date, "manufacture-quarter", info.week ? (info.week - 1) / 13 + 1 : 0);
  if (info.week) SetNumber(date, "manufacture-week", info.week);
}

void AddImageSize(Tag& monitor, const EdidInfo& info) {
  Tag& size = AddParts(monitor, "max-visible-image-size");
  SetNumber(size, "width", info.maxWidthCm);
  SetNumber(size, "height", info.maxHeightCm);
  SetNumber(size, "diagonal", DiagonalInches(info.maxWidthCm, info.maxHeightCm));
}

void AddFrequency(Tag& monitor, const char* name, int lowest, int highest) {
  if (!lowest || !highest) return;
  Tag& range = AddParts(monitor, name);
  SetNumber(range, "min", lowest);
  SetNumber(range, "max", highest);
}

// The name of a ratio of width to height, null for any other; a ratio on a bound is not inside it.
const char* AspectName(float ratio) {
  const double wide = ratio;
  if (ratio < 1.375f && wide > 1.2916666666666665) return "4:3";
  if (wide < 1.2916666666666665 && wide > 1.2083333333333335) return "5:4";
  if (wide < 1.8666666666666665 && wide > 1.7361111111111112) return "16:9";
  if (wide < 1.6888888888888889 && wide > 1.5583333333333336) return "16:10";
  return nullptr;
}

void AddAspectRatio(Tag& monitor, const EdidInfo& info) {
  const char* name = nullptr;
  if (info.maxHeightCm) name = AspectName(static_cast<float>(info.maxWidthCm) / static_cast<float>(info.maxHeightCm));
  if (name)
    SetText(monitor, "aspect-ratio", name);
  else
    SetAttribute(monitor, "aspect-ratio", MakeTextValue(""), info.maxHeightCm ? ":other" : ":unknown", "");
}

void AddVideoModes(Tag& monitor, const EdidInfo& info) {
  int number = 0;
  for (const VideoMode& mode : info.modes) {
    Tag& entry = AddParts(*GetOrAddChild(monitor, "Video-Modes"), "v-mode:" + std::to_string(++number));
    SetText(entry, "res", std::to_string(mode.width) + " x " + std::to_string(mode.height) + " (" + mode.aspect + ")");
    SetNumber(entry, "freq", mode.refresh);
  }
}

}  // namespace

void AddMonitorEdidAttributes(Tag& monitorTag, const Attribute& edidAttribute) {
  const EdidInfo info = DecodeEdid(TextOf(&edidAttribute));
  AddNames(monitorTag, info);
  AddFeatures(monitorTag, info);
  AddManufactureDate(monitorTag, info);
  SetText(monitorTag, "serial", info.serialText);
  AddImageSize(monitorTag, info);
  AddFrequency(monitorTag, "h-freq", info.minHFreq, info.maxHFreq);
  AddAspectRatio(monitorTag, info);
  AddFrequency(monitorTag, "v-freq", info.minVFreq, info.maxVFreq);
  AddVideoModes(monitorTag, info);
}
