// Inflates in steps of bounded size, so that a few hostile bytes cannot ask for more memory than the limit.
#include "reader/inflate.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "reader/text.h"

namespace {

constexpr std::size_t kStep = 65536;
constexpr char kNoMemory[] = "not enough memory to inflate";

// What is wrong with a stream that ended so, with `rest` bytes behind it; empty when nothing is.
std::string Trouble(int answer, bool beyondLimit, std::size_t limit, std::size_t rest) {
  if (beyondLimit) return "the deflated data gives more than the " + Bytes(limit) + " allowed";
  if (answer == Z_MEM_ERROR) return kNoMemory;
  if (answer == Z_BUF_ERROR || answer == Z_OK) return "the deflated data is cut off";
  if (answer != Z_STREAM_END) return "the deflated data is damaged";
  return rest == 0 ? "" : "the deflated data ends here, but there is more: " + Bytes(rest);
}

}  // namespace

bool Inflate(const DeflatedPart& part, std::string& text, Faults& faults) {
  z_stream stream = {};
  if (inflateInit(&stream) != Z_OK) {
    AddFault(faults, part.start, std::string(part.what) + kNoMemory);
    return false;
  }
  const std::size_t given = std::min<std::size_t>(part.bytes.size(), std::numeric_limits<uInt>::max());
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(part.bytes.data()));
  stream.avail_in = static_cast<uInt>(given);
  char area[kStep];
  int answer = Z_OK;
  std::size_t room = part.limit;
  bool beyondLimit = false;
  while (answer == Z_OK && !beyondLimit) {
    stream.next_out = reinterpret_cast<Bytef*>(area);
    stream.avail_out = kStep;
    answer = inflate(&stream, Z_NO_FLUSH);
    const std::size_t produced = kStep - stream.avail_out;
    beyondLimit = produced > room;
    text.append(area, std::min(produced, room));
    room -= std::min(produced, room);
  }
  inflateEnd(&stream);
  const std::size_t used = given - stream.avail_in;
  const std::string trouble = Trouble(answer, beyondLimit, part.limit, part.bytes.size() - used);
  if (trouble.empty()) return true;
  AddFault(faults, part.start + used, part.what + trouble);
  return false;
}
