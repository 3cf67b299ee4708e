// SPDX-License-Identifier: Apache-2.0
#include "store/deflate.h"

#include <array>
#include <new>
#include <stdexcept>

#include <sha2.h>
#include <zlib.h>

#include "reelhost/lists.h"

namespace reelhost {

namespace {

/// Lists of other people: 4 needs half of the time of the usual level 6, and 8 % more space.
constexpr int level = 4;

/// The next part of the input: zlib counts it in 32 bits.
void feed(z_stream& stream, std::string_view& rest)
{
  constexpr std::size_t largest = std::size_t{1} << 30;
  const std::string_view part = rest.substr(0, largest);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(part.data())); // only read, as of zlib 1.0
  stream.avail_in = static_cast<uInt>(part.size());
  rest.remove_prefix(part.size());
}

/// Appends what @p step writes, until it returns anything but Z_OK, or the result is larger than @p largest. Returns
/// what the last step returned.
template <class Step>
int drain(z_stream& stream, std::string_view bytes, std::string& result, std::size_t largest, Step step)
{
  std::array<char, 16384> part;
  int code = Z_OK;
  while (code == Z_OK && result.size() <= largest) {
    if (stream.avail_in == 0)
      feed(stream, bytes);
    stream.next_out = reinterpret_cast<Bytef*>(part.data());
    stream.avail_out = part.size();
    code = step(bytes.empty() ? Z_FINISH : Z_NO_FLUSH);
    result.append(part.data(), part.size() - stream.avail_out);
    if (code == Z_BUF_ERROR && stream.avail_out == 0) // more room is all that it needs
      code = Z_OK;
  }
  return code;
}

void requireMemory(int code)
{
  if (code == Z_MEM_ERROR)
    throw std::bad_alloc();
  if (code != Z_OK)
    throw std::logic_error("zlib: another version than that of its header");
}

} // namespace

Digest digestOf(std::string_view bytes)
{
  SHA2_CTX context;
  SHA256Init(&context);
  SHA256Update(&context, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  Digest digest;
  SHA256Final(digest.data(), &context);
  return digest;
}

std::string deflated(std::string_view bytes)
{
  z_stream stream = {};
  requireMemory(deflateInit(&stream, level));
  struct Ending {
    z_stream& stream;
    ~Ending() { deflateEnd(&stream); }
  } ending{stream};
  std::string result;
  drain(stream, bytes, result, std::string::npos, [&](int flush) { return deflate(&stream, flush); });
  return result;
}

std::optional<std::string> inflated(std::string_view deflated, std::size_t largest)
{
  z_stream stream = {};
  requireMemory(inflateInit(&stream));
  struct Ending {
    z_stream& stream;
    ~Ending() { inflateEnd(&stream); }
  } ending{stream};
  std::string result;
  const int code = drain(stream, deflated, result, largest, [&](int) { return inflate(&stream, Z_NO_FLUSH); });
  if (code == Z_MEM_ERROR)
    throw std::bad_alloc();
  if (code != Z_STREAM_END || stream.total_in != deflated.size() || result.size() > largest)
    return {};
  return result;
}

} // namespace reelhost
