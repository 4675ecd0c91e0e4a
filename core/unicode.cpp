#include "core/unicode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cwctype>
#include <type_traits>

namespace brenlow {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

struct Decoded {
  char32_t character;
  int length;  // bytes taken
  bool valid;
};

// One character at `at`, by the table of well-formed byte sequences (Unicode Standard, table 3-7).
Decoded decode_one(std::string_view bytes, std::size_t at) {
  auto byte = [&](std::size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U; };
  unsigned lead = byte(at);
  if (lead < 0x80) return {lead, 1, true};
  int more = lead >= 0xF0 && lead <= 0xF4 ? 3 : lead >= 0xE0 && lead < 0xF0 ? 2 : lead >= 0xC2 && lead < 0xE0 ? 1 : 0;
  if (more == 0) return {REPLACEMENT, 1, false};
  unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  char32_t character = lead & (0x3FU >> more);
  for (int i = 1; i <= more; ++i) {
    unsigned next = byte(at + static_cast<std::size_t>(i));
    if (next < low || next > high) return {REPLACEMENT, i, false};
    character = (character << 6) | (next & 0x3F);
    low = 0x80;
    high = 0xBF;
  }
  return {character, more + 1, true};
}

// How many bytes from `at` on are ASCII.
std::size_t ascii_run(std::string_view bytes, std::size_t at) {
  constexpr std::size_t BLOCK = 16;  // with fixed bounds, so that the compiler can use wide registers
  std::size_t end = at;
  for (; end + BLOCK <= bytes.size(); end += BLOCK) {
    unsigned char all = 0;
    for (std::size_t i = 0; i < BLOCK; ++i) all |= static_cast<unsigned char>(bytes[end + i]);
    if (all >= 0x80) break;
  }
  while (end < bytes.size() && static_cast<unsigned char>(bytes[end]) < 0x80) ++end;
  return end - at;
}

struct CharacterRange {
  char32_t first, last;
};

// Default_Ignorable_Code_Point of the Unicode Character Database, and a few others that act like it.
constexpr std::array FORMAT_CHARACTERS = {
    CharacterRange{0x00AD, 0x00AD},   CharacterRange{0x034F, 0x034F},   CharacterRange{0x061C, 0x061C},
    CharacterRange{0x115F, 0x1160},   CharacterRange{0x17B4, 0x17B5},   CharacterRange{0x180B, 0x180F},
    CharacterRange{0x200B, 0x200F},   CharacterRange{0x2028, 0x202E},   CharacterRange{0x2060, 0x206F},
    CharacterRange{0x3164, 0x3164},   CharacterRange{0xFE00, 0xFE0F},   CharacterRange{0xFEFF, 0xFEFF},
    CharacterRange{0xFFA0, 0xFFA0},   CharacterRange{0xFFF0, 0xFFFB},   CharacterRange{0x1BCA0, 0x1BCA3},
    CharacterRange{0x1D173, 0x1D17A}, CharacterRange{0xE0000, 0xE0FFF},
};

}  // namespace

std::size_t decode_utf8_into(std::string_view bytes, char32_t* out) {
  char32_t* const begin = out;
  std::size_t at = 0;
  while (at < bytes.size()) {
    std::size_t ascii = ascii_run(bytes, at);
    std::copy_n(bytes.begin() + static_cast<long>(at), ascii, out);
    at += ascii;
    out += ascii;
    if (at == bytes.size()) break;
    Decoded one = decode_one(bytes, at);
    *out++ = one.character;
    at += static_cast<std::size_t>(one.length);
  }
  return static_cast<std::size_t>(out - begin);
}

std::u32string decode_utf8(std::string_view bytes) {
  std::u32string text(bytes.size(), U'\0');
  text.resize(decode_utf8_into(bytes, text.data()));
  return text;
}

std::optional<std::u32string> decode_utf8_strict(std::string_view bytes) {
  std::u32string text;
  for (std::size_t at = 0; at < bytes.size();) {
    Decoded one = decode_one(bytes, at);
    if (!one.valid) return std::nullopt;
    text.push_back(one.character);
    at += static_cast<std::size_t>(one.length);
  }
  return text;
}

void append_utf8(std::string& out, char32_t character) {
  std::uint32_t c = character;
  if ((c >= 0xD800 && c < 0xE000) || c > 0x10FFFF) c = REPLACEMENT;
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
    return;
  }
  auto tail = [&](int shift) { out.push_back(static_cast<char>(0x80 | ((c >> shift) & 0x3F))); };
  if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    tail(6);
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    tail(12);
    tail(6);
  }
  tail(0);
}

void append_utf8_text(std::string& out, TextView text) {
  append_in_runs(
      out, text, [](char32_t character) { return character < 0x80; },
      [&](char32_t character) { append_utf8(out, character); });
}

std::string encode_utf8(TextView text) {
  std::string bytes;
  bytes.reserve(text.size() + text.size() / 8);
  append_utf8_text(bytes, text);
  return bytes;
}

char32_t lower(char32_t character) {
  if (character < 0x80) return character >= U'A' && character <= U'Z' ? character + 32 : character;
  // The Latin letters of ISO 8859-1, without asking the locale; U+00D7 is the multiplication sign.
  if (character < 0x100)
    return character >= 0xC0 && character <= 0xDE && character != 0xD7 ? character + 32 : character;
  return static_cast<char32_t>(std::towlower(static_cast<wint_t>(character)));
}

std::u32string lowered(TextView text) {
  std::u32string out = text.str();
  for (char32_t& character : out) character = lower(character);
  return out;
}

std::string lowered_ascii(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return out;
}

bool is_format_character(char32_t character) {
  auto range = std::ranges::lower_bound(FORMAT_CHARACTERS, character, {}, &CharacterRange::last);
  return range != FORMAT_CHARACTERS.end() && character >= range->first;
}

std::string plain_print(std::string_view bytes) {
  std::u32string text = decode_utf8(bytes);
  auto is_foreign = [](char32_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0) || is_format_character(c); };
  std::ranges::replace_if(text, is_foreign, REPLACEMENT);
  return encode_utf8(text);
}

bool is_space(char32_t c) {
  if (c <= 0x20) return c == 0x20 || (c >= 0x09 && c <= 0x0D) || (c >= 0x1C && c <= 0x1F);
  if (c < 0x85) return false;
  return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 ||
         c == 0x202F || c == 0x205F || c == 0x3000;
}

TextView trimmed_right(TextView text) {
  while (!text.empty() && is_space(text.back())) text = text.substr(0, text.size() - 1);
  return text;
}

TextView trimmed(TextView text) {
  text = trimmed_right(text);
  while (!text.empty() && is_space(text.front())) text = text.substr(1);
  return text;
}

std::string_view trimmed(std::string_view text) {
  auto space = [](char c) { return is_space(static_cast<unsigned char>(c)) && static_cast<unsigned char>(c) < 0x80; };
  while (!text.empty() && space(text.back())) text.remove_suffix(1);
  while (!text.empty() && space(text.front())) text.remove_prefix(1);
  return text;
}

std::u32string one_line(std::u32string_view text) {
  std::u32string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool pair = text[i] == U'\r' && i + 1 < text.size() && text[i + 1] == U'\n';
    if (pair) continue;
    out.push_back(text[i] == U'\r' || text[i] == U'\n' ? U' ' : text[i]);
  }
  return out;
}

namespace {

// In blocks of flags, with loops that the compiler can run on several characters at once.
template <class Character>
int count_words_in(std::span<Character> text) {
  constexpr std::size_t BLOCK = 256;
  std::array<unsigned char, BLOCK + 1> blank;  // blank[0] stands for the character before the block
  blank[0] = 1;
  int words = 0;
  for (std::size_t at = 0; at < text.size(); at += BLOCK) {
    auto block = text.subspan(at, std::min(BLOCK, text.size() - at));
    using Raw = decltype(raw(block[0]));
    // A narrow character is one of the usual blanks or the no-break space.
    constexpr bool NARROW = std::is_same_v<std::remove_const_t<Character>, NarrowCharacter>;
    Raw all = 0;
    for (Character character : block) all |= raw(character);
    if (NARROW || all < 0x80) {
      for (std::size_t i = 0; i < block.size(); ++i) {
        Raw c = raw(block[i]);
        Raw from_tab = static_cast<Raw>(c - 0x09);
        Raw from_separators = static_cast<Raw>(c - 0x1C);
        blank[i + 1] = static_cast<unsigned char>((c == 0x20) | (from_tab < 5) | (from_separators < 4) | (c == 0xA0));
      }
    } else {
      for (std::size_t i = 0; i < block.size(); ++i) blank[i + 1] = is_space(block[i]) ? 1 : 0;
    }
    int begun = 0;
    for (std::size_t i = 0; i < block.size(); ++i) begun += blank[i] & ~blank[i + 1] & 1;
    words += begun;
    blank[0] = blank[block.size()];
  }
  return words;
}

}  // namespace

int count_words(TextView text) {
  return text.visit([](auto characters) { return count_words_in(characters); });
}

std::string path_base_name(std::string_view path) { return std::string(path.substr(path.find_last_of('/') + 1)); }

std::string path_extension(std::string_view path) {
  std::string name = path_base_name(path);
  std::size_t first = name.find_first_not_of('.');
  std::size_t dot = name.find_last_of('.');
  if (first == std::string::npos || dot == std::string::npos || dot < first) return {};
  std::string extension;
  append_utf8(extension, U'.');
  if (auto text = decode_utf8_strict(std::string_view(name).substr(dot + 1)))
    return extension + encode_utf8(lowered(*text));
  return lowered_ascii(std::string_view(name).substr(dot));
}

}  // namespace brenlow
