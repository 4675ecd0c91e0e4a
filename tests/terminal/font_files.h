#pragma once

#include <zlib.h>

#include <cstdint>
#include <string>

namespace brenlow::test {

inline std::string psf1(int height, bool has_512 = false) {
  return std::string("\x36\x04") + (has_512 ? '\1' : '\0') + static_cast<char>(height) +
         std::string(static_cast<std::size_t>(height) * (has_512 ? 512 : 256), 'g');
}

inline std::string psf2_header(std::uint32_t header_size, std::uint32_t count, std::uint32_t glyph_size,
                               std::uint32_t height, std::uint32_t width) {
  std::string header = "\x72\xB5\x4A\x86";
  for (std::uint32_t number : {0U, header_size, 0U, count, glyph_size, height, width})
    for (int byte = 0; byte < 4; ++byte) header += static_cast<char>(number >> (8 * byte) & 255);
  return header;
}

inline std::string psf2(std::uint32_t width, std::uint32_t height, std::uint32_t count = 256) {
  const std::uint32_t glyph_size = (width + 7) / 8 * height;
  return psf2_header(32, count, glyph_size, height, width) + std::string(std::size_t{count} * glyph_size, 'g');
}

inline std::string gzipped(const std::string& bytes) {
  z_stream stream{};
  deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
  std::string packed(deflateBound(&stream, bytes.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

}  // namespace brenlow::test
