// Writes a decoded EDID block onto a monitor tag: who made the display and when, its name, its size in centimetres and
// inches, its frequencies and its video modes.
#include "sections/monitor.h"

#include <cstdint>
#include <string>

#include "sections/edid.h"
#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "zxml/value_text.h"

namespace {

constexpr int kWeeksOfQuarter = 13;

// The ratios of width to height that count as an aspect, both bounds outside. The lower bound lies 1/24 below the named
// ratio; the upper one 1/24 above it for 4:3 and 5:4, 4/45 above it for 16:9 and 16:10.
struct AspectBounds {
  const char* name;
  double above;
  double below;
};

constexpr AspectBounds kAspectBounds[] = {
    {"4:3", 1.2916666666666665, 1.375},                 // 31/24 to 11/8
    {"5:4", 1.2083333333333335, 1.2916666666666665},    // 29/24 to 31/24
    {"16:9", 1.7361111111111112, 1.8666666666666665},   // 125/72 to 28/15
    {"16:10", 1.5583333333333336, 1.6888888888888889},  // 187/120 to 76/45
};

// The first line of the name, trimmed.
std::string CleanName(const std::string& name) { return Trimmed(name.substr(0, name.find('\n')), " \t\r\n"); }

void SetName(Tag& monitor, const std::string& id, const std::string& model) {
  const std::string name = "?" + id + "|" + model;
  SetText(monitor, "name", name);
  SetTagValue(monitor, MakeTextValue(name));
}

void WriteNames(Tag& monitor, const EdidInfo& info) {
  const std::string id = info.manufacturer + info.productCode;
  const std::string model = CleanName(info.monitorName);
  SetText(monitor, "manuf", "?" + info.manufacturer);
  SetText(monitor, "id", id);
  SetName(monitor, id, model);
  SetText(monitor, "model", model);
}

void WriteFeatures(Tag& monitor, const EdidInfo& info) {
  SetNumber(monitor, "video-input", info.videoInput);
  SetNumber(monitor, "synch-input", info.videoInput);  // deliberate: the same byte
  SetNumber(monitor, "color-features", info.features);
  SetNumber(monitor, "dpms-mode-support", info.features);  // deliberate: the same byte
  SetAttribute(monitor, "gamma", MakeDoubleValue(info.gamma));
  SetText(monitor, "max-resolution", info.maxResolution);
  SetNumber(monitor, "serial-digital", info.serialNumber);
}

// 0 for a week that is not known.
std::int64_t Quarter(std::int64_t week) { return week > 0 ? (week - 1) / kWeeksOfQuarter + 1 : 0; }

void WriteManufactureDate(Tag& monitor, const EdidInfo& info) {
  Tag* date = AddParts(monitor, "manufacture-date");
  SetNumber(*date, "manufacture-year", info.year);
  SetNumber(*date, "manufacture-quarter", Quarter(info.week));
  if (info.week) SetNumber(*date, "manufacture-week", info.week);
}

void WriteKnownDate(Tag& monitor, const Tag& known) {
  if (!HasKey(known, "year") && !HasKey(known, "week")) return;
  Tag* date = AddParts(monitor, "manufacture-date");
  CopyKey(known, *date, {"year", "manufacture-year"});
  if (HasKey(known, "week")) SetNumber(*date, "manufacture-quarter", Quarter(IntegerOfKey(known, "week")));
  CopyKey(known, *date, {"week", "manufacture-week"});
}

// Maker and product, as far as they are known.
std::string WriteKnownId(Tag& monitor, const Tag& known) {
  std::string id;
  if (HasKey(known, "vendor")) {
    id = EdidManufacturerId(static_cast<std::uint16_t>(IntegerOfKey(known, "vendor")));
    SetText(monitor, "manuf", "?" + id);
  }
  if (HasKey(known, "product")) id += EdidProductCode(static_cast<std::uint16_t>(IntegerOfKey(known, "product")));
  if (!id.empty()) SetText(monitor, "id", id);
  return id;
}

void WriteImageSize(Tag& monitor, const EdidInfo& info) {
  Tag* size = AddParts(monitor, "max-visible-image-size");
  SetNumber(*size, "width", info.maxWidthCm);
  SetNumber(*size, "height", info.maxHeightCm);
  SetNumber(*size, "diagonal", DiagonalInches(info.maxWidthCm, info.maxHeightCm));
}

void WriteFrequency(Tag& monitor, const char* name, int lowest, int highest) {
  if (!lowest || !highest) return;
  Tag* range = AddParts(monitor, name);
  SetNumber(*range, "min", lowest);
  SetNumber(*range, "max", highest);
}

// The aspect of an image area, null when it has none. The ratio has single precision.
const char* AspectName(const EdidInfo& info) {
  const float ratio = static_cast<float>(info.maxWidthCm) / static_cast<float>(info.maxHeightCm);
  for (const AspectBounds& aspect : kAspectBounds)
    if (ratio > aspect.above && ratio < aspect.below) return aspect.name;
  return nullptr;
}

void WriteAspectRatio(Tag& monitor, const EdidInfo& info) {
  if (!info.maxHeightCm) {
    SetAttribute(monitor, "aspect-ratio", MakeTextValue(""), ":unknown", "");
  } else if (const char* name = AspectName(info)) {
    SetText(monitor, "aspect-ratio", name);
  } else {
    SetAttribute(monitor, "aspect-ratio", MakeTextValue(""), ":other", "");
  }
}

void WriteVideoModes(Tag& monitor, const EdidInfo& info) {
  int number = 0;
  for (const VideoMode& mode : info.modes) {
    Tag* entry = AddParts(*GetOrAddChild(monitor, "Video-Modes"), "v-mode:" + std::to_string(++number));
    SetText(*entry, "res", std::to_string(mode.width) + " x " + std::to_string(mode.height) + " (" + mode.aspect + ")");
    SetNumber(*entry, "freq", mode.refresh);
  }
}

}  // namespace

void WriteMonitorEdid(Tag& monitorTag, const Attribute& edidAttribute) {
  const EdidInfo info = DecodeEdid(TextOf(&edidAttribute));
  WriteNames(monitorTag, info);
  WriteFeatures(monitorTag, info);
  WriteManufactureDate(monitorTag, info);
  SetText(monitorTag, "serial", info.serialText);
  WriteImageSize(monitorTag, info);
  WriteFrequency(monitorTag, "h-freq", info.minHFreq, info.maxHFreq);
  WriteAspectRatio(monitorTag, info);
  WriteFrequency(monitorTag, "v-freq", info.minVFreq, info.maxVFreq);
  WriteVideoModes(monitorTag, info);
}

void WriteMonitorKeys(Tag& monitorTag, const Tag& known) {
  const std::string id = WriteKnownId(monitorTag, known);
  const std::string model = CleanName(TextOfKey(known, "model"));
  if (!id.empty() || !model.empty()) SetName(monitorTag, id, model);
  if (!model.empty()) SetText(monitorTag, "model", model);
  CopyKey(known, monitorTag, {"resolution", "max-resolution"});
  CopyKey(known, monitorTag, {"serial", "serial-digital"});
  WriteKnownDate(monitorTag, known);
}
