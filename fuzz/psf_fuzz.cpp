#include <cstdint>

#include "fuzz/require.h"
#include "terminal/psf.h"

// Any bytes, taken as a console font and as a packed one: the glyphs always lie within the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  constexpr std::size_t LIMIT = 1 << 16;
  const auto unpacked = brenlow::gunzip(bytes, LIMIT);
  brenlow::fuzz::require(!unpacked || unpacked->size() <= LIMIT);
  for (std::string_view font : {bytes, unpacked ? std::string_view(*unpacked) : std::string_view()}) {
    const auto info = brenlow::psf_info_of(font);
    if (!info) continue;
    const std::string_view glyphs = brenlow::psf_glyphs(*info, font);
    brenlow::fuzz::require(info->width >= 1 && info->height >= 1 &&
                           glyphs.size() == std::size_t{info->count} * info->glyph_size);
  }
  return 0;
}
