#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brenlow {

inline constexpr std::string_view PSF1_MAGIC = "\x36\x04";
inline constexpr std::string_view PSF2_MAGIC = "\x72\xB5\x4A\x86";

// No console font, compressed or not, is taken beyond this many bytes; real ones stay below a tenth of it.
inline constexpr std::size_t FONT_FILE_LIMIT = std::size_t{4} << 20;

// The shape of a console font. The format is described in "PC Screen Font" of the kbd project: two headers,
// numbers little-endian, glyphs as rows of whole bytes.
struct PsfInfo {
  int width;                 // pixels, at least 1
  int height;                // pixels, at least 1
  std::uint32_t count;       // glyphs
  std::uint32_t glyph_size;  // bytes of one glyph
  std::size_t offset;        // where the glyphs begin
};

// The bytes of a font file, unpacked when its name ends in ".gz"; nothing if it is no regular file, corrupt or
// too long.
std::optional<std::string> _read_font_bytes(const std::string& path);

// Unpacks gzip data (RFC 1952, one member) whose checksum is right; nothing otherwise, or if the outcome is longer than
// `limit`.
std::optional<std::string> gunzip(std::string_view packed, std::size_t limit);

// Nothing for what is no PSF font, and for one whose header promises more than the file holds: its glyphs
// could not be loaded.
std::optional<PsfInfo> psf_info_of(std::string_view bytes);
std::optional<PsfInfo> _psf_info(const std::string& path);

// All glyphs of a font that `psf_info_of` found good, one behind the other.
std::string_view psf_glyphs(const PsfInfo& info, std::string_view bytes);

}  // namespace brenlow
