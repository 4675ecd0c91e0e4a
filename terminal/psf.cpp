#include "terminal/psf.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <exception>

#include "documents/file_access.h"

namespace brenlow {

namespace {

constexpr std::size_t PSF1_HEADER = 4;
constexpr std::size_t PSF2_HEADER = 32;
constexpr unsigned char PSF1_MODE_512 = 1;

unsigned char byte_at(std::string_view bytes, std::size_t offset) { return static_cast<unsigned char>(bytes[offset]); }

std::uint32_t number_at(std::string_view bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | byte_at(bytes, offset + i);
  return number;
}

// Every size is compared in 64 bits, where no product of the header's numbers overflows.
std::optional<PsfInfo> checked(std::string_view bytes, std::uint64_t width, std::uint64_t height, std::uint32_t count,
                               std::uint32_t glyph_size, std::size_t offset) {
  if (width == 0 || height == 0 || count == 0) return std::nullopt;
  if ((width + 7) / 8 * height > glyph_size) return std::nullopt;
  if (offset > bytes.size() || std::uint64_t{count} * glyph_size > bytes.size() - offset) return std::nullopt;
  return PsfInfo{static_cast<int>(width), static_cast<int>(height), count, glyph_size, offset};
}

// An inflater for gzip data.
class Inflater {
 public:
  Inflater() {
    constexpr int ANY_WINDOW_GZIP_ONLY = MAX_WBITS + 16;
    _ready = ::inflateInit2(&_stream, ANY_WINDOW_GZIP_ONLY) == Z_OK;
  }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  ~Inflater() {
    if (_ready) ::inflateEnd(&_stream);
  }
  explicit operator bool() const { return _ready; }
  z_stream* operator->() { return &_stream; }
  // A file may hold several gzip members; padding behind the last one is left alone.
  int step() {
    constexpr Bytef MAGIC = 0x1F;
    const int outcome = ::inflate(&_stream, Z_NO_FLUSH);
    const bool another = outcome == Z_STREAM_END && _stream.avail_in > 0 && *_stream.next_in == MAGIC;
    return another ? ::inflateReset(&_stream) : outcome;
  }

 private:
  z_stream _stream{};
  bool _ready = false;
};

}  // namespace

std::optional<std::string> gunzip(std::string_view packed, std::size_t limit) {
  Inflater inflater;
  if (!inflater || packed.size() > FONT_FILE_LIMIT) return std::nullopt;
  // zlib's interface is not const; it does not write to its input.
  inflater->next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  inflater->avail_in = static_cast<uInt>(packed.size());
  std::string unpacked;
  std::array<char, 65536> buffer;
  int outcome = Z_OK;
  while (outcome == Z_OK) {
    inflater->next_out = reinterpret_cast<Bytef*>(buffer.data());
    inflater->avail_out = static_cast<uInt>(buffer.size());
    outcome = inflater.step();  // Z_BUF_ERROR when the data ends too early
    unpacked.append(buffer.data(), buffer.size() - inflater->avail_out);
    if (unpacked.size() > limit) return std::nullopt;
  }
  return outcome == Z_STREAM_END ? std::optional(std::move(unpacked)) : std::nullopt;
}

std::optional<std::string> _read_font_bytes(const std::string& path) {
  try {
    std::string bytes = read_file(path, FONT_FILE_LIMIT);
    if (!path.ends_with(".gz")) return bytes;
    return gunzip(bytes, FONT_FILE_LIMIT);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::optional<PsfInfo> psf_info_of(std::string_view bytes) {
  if (bytes.starts_with(PSF1_MAGIC) && bytes.size() >= PSF1_HEADER) {
    const std::uint32_t count = (byte_at(bytes, 2) & PSF1_MODE_512) != 0 ? 512 : 256;
    const std::uint32_t height = byte_at(bytes, 3);
    return checked(bytes, 8, height, count, height, PSF1_HEADER);
  }
  if (bytes.starts_with(PSF2_MAGIC) && bytes.size() >= PSF2_HEADER) {
    const std::uint32_t header_size = number_at(bytes, 8);
    if (header_size < PSF2_HEADER) return std::nullopt;
    return checked(bytes, number_at(bytes, 28), number_at(bytes, 24), number_at(bytes, 16), number_at(bytes, 20),
                   header_size);
  }
  return std::nullopt;
}

std::optional<PsfInfo> _psf_info(const std::string& path) {
  const auto bytes = _read_font_bytes(path);
  return bytes ? psf_info_of(*bytes) : std::nullopt;
}

std::string_view psf_glyphs(const PsfInfo& info, std::string_view bytes) {
  return bytes.substr(info.offset, std::size_t{info.count} * info.glyph_size);
}

}  // namespace brenlow
