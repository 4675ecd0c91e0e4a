#include "customise/escape_map.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <utility>

#include "core/keys.h"
#include "core/unicode.h"
#include "customise/key_map.h"

namespace brenlow {

namespace {

struct Row {
  int token;
  std::string_view sequences;  // divided by blanks, of which no sequence has one
};

constexpr Row _ESC_MAP[] = {
    {_KEY_CTRL_ALT_S, "\x13 [115;7u [83;7u [27;7;115~ [27;7;83~"},
    {_KEY_CTRL_ALT_F, "\x06 [102;7u [70;7u [27;7;102~ [27;7;70~"},
    {_KEY_CTRL_ALT_Z, "\x1A [122;7u [90;7u [27;7;122~ [27;7;90~"},
    {_KEY_CTRL_ALT_RBRACKET, "\x1D [93;7u [27;7;93~"},
    {_KEY_CTRL_ALT_BACKSLASH, "\x1C [92;7u [27;7;92~"},
    {_KEY_CTRL_ALT_B, "\x02 [98;7u [66;7u [27;7;98~ [27;7;66~"},
    {_KEY_CTRL_ALT_E, "\x05 [101;7u [69;7u [27;7;101~ [27;7;69~"},
    {_KEY_CTRL_ALT_H, "\x08 [104;7u [72;7u [27;7;104~ [27;7;72~"},
    {_KEY_CTRL_ALT_O, "\x0F [111;7u [79;7u [27;7;111~ [27;7;79~"},
    {_KEY_CTRL_G, "G g [71;3u [103;3u [27;3;71~ [27;3;103~"},
    {KEY_UP, "[A OA"},
    {KEY_DOWN, "[B OB"},
    {KEY_RIGHT, "[C OC"},
    {KEY_LEFT, "[D OD"},
    {KEY_HOME, "[H OH [1~"},
    {KEY_END, "[F OF [4~"},
    {KEY_PPAGE, "[5~"},
    {KEY_NPAGE, "[6~"},
    {KEY_DC, "[3~"},
    {_KEY_CTRL_LEFT, "[1;5D Od [27;5;68~"},
    {_KEY_CTRL_RIGHT, "[1;5C Oc [27;5;67~"},
    {_KEY_SHIFT_LEFT, "[1;2D [d"},
    {_KEY_SHIFT_RIGHT, "[1;2C [c"},
    {_KEY_SHIFT_UP, "[1;2A [a"},
    {_KEY_SHIFT_DOWN, "[1;2B [b"},
    {_KEY_CTRL_SHIFT_LEFT, "[1;6D [27;6;68~ [68;6u [100;6u"},
    {_KEY_CTRL_SHIFT_RIGHT, "[1;6C [27;6;67~ [67;6u [99;6u"},
};

// F1 to F19.
constexpr std::string_view _FKEY_SEQUENCES[] = {
    "OP [11~ [57344u", "OQ [12~ [57345u", "OR [13~ [57346u", "OS [14~ [57347u", "[15~ [57348u",
    "[17~ [57349u",    "[18~ [57350u",    "[19~ [57351u",    "[20~ [57352u",    "[21~ [57353u",
    "[23~ [57354u",    "[24~ [57355u",    "[25~ [57356u",    "[26~ [57357u",    "[28~ [57358u",
    "[29~ [57359u",    "[31~ [57360u",    "[32~ [57361u",    "[33~ [57362u",
};
static_assert(std::size(_FKEY_SEQUENCES) == _KEY_F.size());

constexpr std::pair<std::string_view, int> TERMINFO_KEYS[] = {
    {"kLFT", _KEY_SHIFT_LEFT},       {"kRIT", _KEY_SHIFT_RIGHT},      {"kUP", _KEY_SHIFT_UP},
    {"kDN", _KEY_SHIFT_DOWN},        {"kLFT5", _KEY_CTRL_LEFT},       {"kRIT5", _KEY_CTRL_RIGHT},
    {"kLFT6", _KEY_CTRL_SHIFT_LEFT}, {"kRIT6", _KEY_CTRL_SHIFT_RIGHT}};

void add_rows(EscapeMap& map, std::string_view sequences, int token) {
  while (!sequences.empty()) {
    const std::size_t end = std::min(sequences.find(' '), sequences.size());
    map.emplace(sequences.substr(0, end), token);
    sequences.remove_prefix(std::min(end + 1, sequences.size()));
  }
}

// Takes `head` off the front of `bytes` if it is there.
bool take(std::string_view& bytes, std::string_view head) {
  if (!bytes.starts_with(head)) return false;
  bytes.remove_prefix(head.size());
  return true;
}

// Takes a decimal number off the front; nothing without one or where it is out of range.
std::optional<int> take_number(std::string_view& bytes) {
  std::uint16_t number = 0;
  const auto read = std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
  if (read.ec != std::errc{}) return std::nullopt;
  bytes.remove_prefix(static_cast<std::size_t>(read.ptr - bytes.data()));
  return number;
}

std::string printable(std::string_view bytes) {
  constexpr std::string_view HEX = "0123456789abcdef";
  std::string out;
  for (char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 0x20 && byte < 0x7F) {
      out += c;
    } else {
      out += {'\\', 'x', HEX[byte >> 4], HEX[byte & 15]};
    }
  }
  return out;
}

std::string hexadecimal(int number) {
  char digits[16];
  const auto written = std::to_chars(std::begin(digits), std::end(digits), number, 16);
  return "0x" + std::string(std::begin(digits), written.ptr);
}

// The byte of a backslash and `letter`; the backslash, "^" and "," stand for themselves as all others do.
char named_escape(char letter) {
  constexpr std::string_view LETTERS = "Eenrtbfs";
  constexpr std::string_view BYTES = "\x1B\x1B\n\r\t\b\f ";
  const std::size_t place = LETTERS.find(letter);
  return place == std::string_view::npos ? letter : BYTES[place];
}

bool is_octal(char c) { return c >= '0' && c <= '7'; }

}  // namespace

EscapeMap default_escape_map() {
  EscapeMap map;
  for (const Row& row : _ESC_MAP) add_rows(map, row.sequences, row.token);
  for (std::size_t i = 0; i < _KEY_F.size(); ++i) add_rows(map, _FKEY_SEQUENCES[i], _KEY_F[i]);
  return map;
}

bool is_escape_prefix(const EscapeMap& map, std::string_view bytes) {
  const auto next = map.upper_bound(bytes);
  if (next != map.end() && next->first.starts_with(bytes)) return true;
  // The Linux console sends "[[A" to "[[E" for its first function keys.
  if (bytes == "[[") return true;
  return take(bytes, "[") && std::ranges::all_of(bytes, [](char c) { return c >= 0x20 && c <= 0x3F; });
}

std::optional<int> plain_kitty_key(std::string_view bytes) {
  if (!take(bytes, "[")) return std::nullopt;
  const auto number = take_number(bytes);
  take(bytes, ";1");
  return number && bytes == "u" && *number >= 32 && *number <= 126 ? number : std::nullopt;
}

std::optional<int> ctrl_alt_letter(std::string_view bytes) {
  if (bytes.size() == 1) {
    const char byte = bytes.front();
    return byte >= 1 && byte <= 26 ? std::optional<int>(ctrl_alt_letter_token(static_cast<char>(byte + 64)))
                                   : std::nullopt;
  }
  const bool xterm_form = take(bytes, "[27;7;");
  if (!xterm_form && !take(bytes, "[")) return std::nullopt;
  const auto number = take_number(bytes);
  if (!number || bytes != (xterm_form ? "~" : ";7u")) return std::nullopt;
  const int upper_case = *number >= 'a' && *number <= 'z' ? *number - 32 : *number;
  if (upper_case < 'A' || upper_case > 'Z') return std::nullopt;
  return ctrl_alt_letter_token(static_cast<char>(upper_case));
}

std::string unescape_terminfo(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\\' && c != '^') {
      bytes += c;
      continue;
    }
    if (++i == text.size()) break;
    if (c == '^') {
      bytes += static_cast<char>(text[i] & 0x1F);
    } else if (is_octal(text[i])) {
      unsigned code = 0;
      const std::size_t end = std::min(i + 3, text.size());
      while (i < end && is_octal(text[i])) code = code * 8 + static_cast<unsigned>(text[i++] - '0');
      --i;
      bytes += static_cast<char>(code & 0xFF);
    } else {
      bytes += named_escape(text[i]);
    }
  }
  return bytes;
}

std::map<std::string, std::string> _parse_terminfo_sequences(const std::string& infocmp_output) {
  std::map<std::string, std::string> sequences;
  std::string_view rest = infocmp_output;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = trimmed(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    while (line.ends_with(',')) line.remove_suffix(1);
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.find('%', equals) != std::string_view::npos) continue;
    const std::string bytes = unescape_terminfo(trimmed(line.substr(equals + 1)));
    if (bytes.starts_with(static_cast<char>(KEY_ESC)))
      sequences.insert_or_assign(std::string(trimmed(line.substr(0, equals))), bytes.substr(1));
  }
  return sequences;
}

std::vector<std::string> _patch_esc_map_from_terminfo(EscapeMap& map,
                                                      const std::map<std::string, std::string>& sequences) {
  std::vector<std::string> report;
  for (const auto& [name, token] : TERMINFO_KEYS) {
    const auto found = sequences.find(std::string(name));
    if (found == sequences.end() || found->second.empty()) continue;
    if (map.try_emplace(found->second, token).second)
      report.push_back(std::string(name) + "=" + printable(found->second) + "→" + hexadecimal(token));
  }
  return report;
}

}  // namespace brenlow
