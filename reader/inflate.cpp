// Inflates in steps of bounded size, so that a few hostile bytes cannot ask for more memory than the limit.
#include "reader/inflate.h"

#include <zlib.h>

#include <algorithm>

#include "reader/text.h"

namespace {

constexpr std::size_t kStep = 65536;

std::string Trouble(int answer, bool beyondLimit, std::size_t limit, std::size_t rest) {
  if (beyondLimit) return "the deflated data gives more than the " + Bytes(limit) + " allowed";
  if (answer == Z_MEM_ERROR) return "not enough memory to inflate";
  if (answer == Z_BUF_ERROR || answer == Z_OK) return "the deflated data is cut off";
  if (answer != Z_STREAM_END) return "the deflated data is damaged";
  return rest == 0 ? "" : "the deflated data ends here, but there is more: " + Bytes(rest);
}

}  // namespace

Inflated Inflate(std::string_view input, std::size_t limit) {
  Inflated result;
  z_stream stream = {};
  if (inflateInit(&stream) != Z_OK) {
    result.trouble = "not enough memory to inflate";
    return result;
  }
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
  stream.avail_in = static_cast<uInt>(std::min<std::size_t>(input.size(), ~uInt{0}));
  const std::size_t given = stream.avail_in;
  char area[kStep];
  int answer = Z_OK;
  bool beyondLimit = false;
  while (answer == Z_OK && !beyondLimit) {
    stream.next_out = reinterpret_cast<Bytef*>(area);
    stream.avail_out = kStep;
    answer = inflate(&stream, Z_NO_FLUSH);
    const std::size_t produced = kStep - stream.avail_out;
    beyondLimit = produced > limit - result.text.size();
    result.text.append(area, std::min(produced, limit - result.text.size()));
  }
  inflateEnd(&stream);
  result.used = given - stream.avail_in;
  result.trouble = Trouble(answer, beyondLimit, limit, input.size() - result.used);
  return result;
}
