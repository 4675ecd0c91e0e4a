#include "tests/support/terminal_bytes.h"

#include <algorithm>
#include <array>
#include <regex>

#include "core/unicode.h"

namespace brenlow::test {

namespace {

// What the terminal database gives for xterm-256color, and the session's own: cursor shape, colours, font.
const std::regex CSI_SEQUENCES(R"([0-9;]*[ABCDGHJKLMPSTXZ@bdmr]|4[hl]|\?[0-9;]+[hl]|2[23];0;0t|[0-6] q|!p)");
const std::regex OSC_TEXTS(R"(4;[0-9]+;rgb:[0-9A-Fa-f/]+|104|50;font=\*-[0-9]+|mark[0-9]+)");

struct CharacterRange {
  char32_t first, last;
};

// C1 controls; line and paragraph separators, annotations, and Default_Ignorable_Code_Point of the Unicode
// Character Database: what turns the direction, has no width, or is not printed at all.
constexpr std::array FOREIGN_CHARACTERS = {
    CharacterRange{0x7F, 0x9F},       CharacterRange{0xAD, 0xAD},       CharacterRange{0x34F, 0x34F},
    CharacterRange{0x61C, 0x61C},     CharacterRange{0x115F, 0x1160},   CharacterRange{0x17B4, 0x17B5},
    CharacterRange{0x180B, 0x180F},   CharacterRange{0x200B, 0x200F},   CharacterRange{0x2028, 0x202E},
    CharacterRange{0x2060, 0x206F},   CharacterRange{0x3164, 0x3164},   CharacterRange{0xD800, 0xDFFF},
    CharacterRange{0xFE00, 0xFE0F},   CharacterRange{0xFEFF, 0xFEFF},   CharacterRange{0xFFA0, 0xFFA0},
    CharacterRange{0xFFF0, 0xFFFB},   CharacterRange{0x1BCA0, 0x1BCA3}, CharacterRange{0x1D173, 0x1D17A},
    CharacterRange{0xE0000, 0xE0FFF},
};

bool matches(std::string_view text, const std::regex& pattern) {
  return std::regex_match(text.begin(), text.end(), pattern);
}

// The length of the sequence behind an escape byte; 0 for one that has no place in the output.
std::size_t sequence_length(std::string_view rest) {
  constexpr std::string_view SHORT_ONES = "=>78M";
  if (rest.empty()) return 0;
  if (SHORT_ONES.find(rest[0]) != std::string_view::npos) return 1;
  if (rest.starts_with("(B") || rest.starts_with("(0")) return 2;
  if (rest[0] == '[') {
    std::size_t end = rest.substr(1).find_first_not_of("0123456789:;<=>? !\"#$%&'()*+,-./");
    if (end == std::string_view::npos) return 0;
    return matches(rest.substr(1, end + 1), CSI_SEQUENCES) ? end + 2 : 0;
  }
  if (rest[0] == ']') {
    std::size_t end = rest.find_first_of("\x1b\x07");
    if (end == std::string_view::npos || !matches(rest.substr(1, end - 1), OSC_TEXTS)) return 0;
    return rest[end] == '\x07' ? end + 1 : rest.substr(end).starts_with("\x1b\\") ? end + 2 : 0;
  }
  return 0;
}

// The length of the printable character at the front; 0 if it is none.
std::size_t printable_length(std::string_view rest) {
  auto lead = static_cast<unsigned char>(rest[0]);
  std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  auto text = decode_utf8_strict(rest.substr(0, length));
  if (!text || text->size() != 1 || text->front() < 0x20) return 0;
  bool foreign = std::ranges::any_of(FOREIGN_CHARACTERS, [c = text->front()](const CharacterRange& range) {
    return c >= range.first && c <= range.last;
  });
  return foreign ? 0 : length;
}

std::string in_hexadecimal(std::string_view bytes) {
  constexpr std::string_view DIGITS = "0123456789abcdef";
  std::string out;
  for (char byte : bytes) {
    auto value = static_cast<unsigned char>(byte);
    if (value > 0x20 && value < 0x7F)
      out += byte;
    else
      out += {'\\', 'x', DIGITS[value >> 4], DIGITS[value & 15]};
  }
  return out;
}

}  // namespace

std::string foreign_output(std::string_view output) {
  constexpr std::string_view MOVES = "\r\n\b\t\x0e\x0f";
  for (std::size_t at = 0; at < output.size();) {
    std::string_view rest = output.substr(at);
    std::size_t length = 0;
    if (rest[0] == '\x1b') {
      length = sequence_length(rest.substr(1));
      if (length > 0) ++length;
    } else {
      length = MOVES.find(rest[0]) != std::string_view::npos ? 1 : printable_length(rest);
    }
    if (length == 0)
      return "at byte " + std::to_string(at) + ": " + in_hexadecimal(output.substr(at < 20 ? 0 : at - 20, 60));
    at += length;
  }
  return {};
}

}  // namespace brenlow::test
