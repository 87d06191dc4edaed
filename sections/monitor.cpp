// Writes a decoded EDID block onto a monitor tag: who made the display and when, its name, its size in centimetres and
// inches, its frequencies and its video modes.
#include "sections/monitor.h"

#include <cstdint>
#include <string>

#include "sections/edid.h"
#include "sections/inventory_tags.h"
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

void WriteNames(Tag& monitor, const EdidInfo& info) {
  const std::string id = info.manufacturer + info.productCode;
  const std::string model = CleanName(info.monitorName);
  const std::string name = "?" + id + "|" + model;
  SetText(monitor, "manuf", "?" + info.manufacturer);
  SetText(monitor, "id", id);
  SetText(monitor, "name", name);
  SetTagValue(monitor, MakeTextValue(name));
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

void WriteManufactureDate(Tag& monitor, const EdidInfo& info) {
  Tag* date = AddParts(monitor, "manufacture-date");
  SetNumber(*date, "manufacture-year", info.year);
  SetNumber(*date, "manufacture-quarter", info.week ? (info.week - 1) / kWeeksOfQuarter + 1 : 0);
  if (info.week) SetNumber(*date, "manufacture-week", info.week);
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
