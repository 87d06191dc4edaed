// Runs the profiler once for each data type and splices the documents: they share a head and a tail of fixed length,
// which are cut off by length, unread.
#include "main/collect/profiler.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "main/collect/command_runner.h"
#include "main/collect/salvage.h"
#include "main/console/console_log.h"

namespace {

constexpr char kHead[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n"
    "<array>\n";
constexpr char kTail[] = "</array>\n</plist>\n";
constexpr std::size_t kHeadSize = sizeof kHead - 1;
constexpr std::size_t kTailSize = sizeof kTail - 1;
static_assert(kHeadSize == 172 && kTailSize == 18);

constexpr std::size_t kChunkSize = 65536;
constexpr std::size_t kUsualSize = std::size_t{32} << 20;  // of the joined document of a Mac with 40,000 applications
constexpr int kRuns = 5;

struct DataType {
  const char* name;
  int percent;  // shown by a silent scan once the data type is there; 0 for nothing
};

constexpr DataType kDataTypes[] = {
    {"SPHardwareDataType", 0},       {"SPNetworkDataType", 10},
    {"SPSoftwareDataType", 0},       {"SPParallelATADataType", 20},
    {"SPAudioDataType", 0},          {"SPBluetoothDataType", 30},
    {"SPFireWireDataType", 0},       {"SPDisplaysDataType", 40},
    {"SPMemoryDataType", 0},         {"SPPrintersDataType", 50},
    {"SPSerialATADataType", 0},      {"SPParallelSCSIDataType", 0},
    {"SPUSBDataType", 60},           {"SPAirPortDataType", 0},
    {"SPFirewallDataType", 70},      {"SPNetworkLocationDataType", 0},
    {"SPNetworkVolumeDataType", 80}, {"SPApplicationsDataType", 0},
    {"SPStartupItemDataType", 90},   {"SPDiscBurningDataType", 0},
    {"SPStorageDataType", 0},        {"SPNVMeDataType", 0},
    {"SPPowerDataType", 100},
};
constexpr std::size_t kDataTypeCount = sizeof kDataTypes / sizeof kDataTypes[0];
static_assert(kDataTypeCount == 23);

// Runs the command until it adds something to `output`, or for the last time.
void AppendUntilOutput(const std::string& command, std::string& output) {
  const std::size_t start = output.size();
  for (int run = 0; run < kRuns && output.size() == start; ++run) AppendCommandOutput(command, kChunkSize, output);
}

ProfilerPosition PositionOf(std::size_t index) {
  if (index == 0) return ProfilerPosition::First;
  return index + 1 == kDataTypeCount ? ProfilerPosition::Last : ProfilerPosition::Middle;
}

// What stands in for a first or last piece that is empty.
const char* LastResort(ProfilerPosition position) {
  switch (position) {
    case ProfilerPosition::First:
      return kHead;
    case ProfilerPosition::Last:
      return kTail;
    case ProfilerPosition::Middle:
      break;
  }
  return "";
}

// Whether a property list of that many elements can have ended before the joined document does: an output with more
// behind its own end has its end in the middle. A usual output has one element, so that a usual list is not searched.
bool EndsEarly(const ProfilerData& data, std::size_t elements) {
  const auto usual =
      std::count_if(data.pieces.begin(), data.pieces.end(), [](const ProfilerPiece& piece) { return piece.size > 0; });
  constexpr char kEnd[] = "</plist>";
  return elements != static_cast<std::size_t>(usual) && data.document.find(kEnd) != data.document.rfind(kEnd);
}

}  // namespace

ProfilerPiece RunProfilerType(const char* dataType, ProfilerPosition position, std::string& document) {
  ProfilerPiece piece;
  piece.start = document.size();
  AppendUntilOutput(std::string("system_profiler -detailLevel full -xml ") + dataType, document);
  const std::size_t head = position == ProfilerPosition::First ? 0 : kHeadSize;
  const std::size_t tail = position == ProfilerPosition::Last ? 0 : kTailSize;
  const std::size_t size = document.size() - piece.start;
  if (size < head + tail) {
    piece.head = document.substr(piece.start);
    document.resize(piece.start);
    return piece;
  }
  piece.size = size - head - tail;
  piece.head = document.substr(piece.start, head);
  piece.tail = document.substr(document.size() - tail);
  document.resize(document.size() - tail);
  document.erase(piece.start, head);
  return piece;
}

ProfilerData CollectProfilerData(bool silent) {
  ProfilerData data;
  data.document.reserve(kUsualSize);  // what is not used of it takes no memory, and growing would copy all of it
  for (std::size_t i = 0; i < kDataTypeCount; ++i) {
    const ProfilerPosition position = PositionOf(i);
    data.pieces.push_back(RunProfilerType(kDataTypes[i].name, position, data.document));
    if (data.pieces.back().size == 0) data.document += LastResort(position);
    if (silent && kDataTypes[i].percent) LogLine("%d%%\n", kDataTypes[i].percent);
  }
  return data;
}

std::string RunWholeProfiler() {
  std::string output;
  AppendUntilOutput("system_profiler -detailLevel full -xml", output);
  return output;
}

PropertyList ParseProfilerData(const ProfilerData& data) {
  PropertyList list = ParsePropertyList(data.document);
  if (list.kind != PropertyListKind::Null && !EndsEarly(data, list.items.size())) return list;
  list = PropertyList();
  list.kind = PropertyListKind::Array;
  for (const ProfilerPiece& piece : data.pieces) {
    PropertyList part = ParseProfilerOutput(piece.head + data.document.substr(piece.start, piece.size) + piece.tail);
    std::move(part.items.begin(), part.items.end(), std::back_inserter(list.items));
  }
  return list;
}

PropertyList ParseProfilerOutput(const std::string& output) {
  PropertyList list = ParsePropertyList(output);
  if (list.kind == PropertyListKind::Null) return ParsePropertyList(SalvagedDocument(output));
  return list;
}
