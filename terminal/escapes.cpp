#include "terminal/escapes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>

#include "core/colours.h"
#include "terminal/descriptor.h"
#include "terminal/environment.h"

namespace brenlow {

namespace {

constexpr std::string_view STRING_TERMINATOR = "\x1b\\";

struct NamedColor {
  int number;
  int r, g, b;
};

// The usual look of the basic colours in terminals; at equal distance the first one counts.
constexpr std::array<NamedColor, 8> NAMED_COLORS{{
    {COLOR_BLACK, 0, 0, 0},
    {COLOR_RED, 205, 0, 0},
    {COLOR_GREEN, 0, 205, 0},
    {COLOR_YELLOW, 205, 205, 0},
    {COLOR_BLUE, 0, 0, 238},
    {COLOR_MAGENTA, 205, 0, 205},
    {COLOR_CYAN, 0, 205, 205},
    {COLOR_WHITE, 229, 229, 229},
}};

std::string two_hex_digits(int value) {
  constexpr std::string_view DIGITS = "0123456789abcdef";
  const unsigned bits = static_cast<unsigned>(value);
  return {DIGITS[bits >> 4 & 15], DIGITS[bits & 15]};
}

}  // namespace

std::string _osc(int code, std::string_view payload) {
  return ("\x1b]" + std::to_string(code) + ";").append(payload).append(STRING_TERMINATOR);
}

std::string _dcs_passthrough(std::string_view sequence) {
  std::string wrapped = "\x1bPtmux;";
  for (char c : sequence) {
    if (c == '\x1b') wrapped += c;
    wrapped += c;
  }
  return wrapped.append(STRING_TERMINATOR);
}

bool _send_osc4_color(int index, int r, int g, int b, const std::string& tty) {
  const std::string term = environment("TERM").value_or("");
  if (term == "linux" || term.starts_with("screen")) return false;
  std::string sequence =
      _osc(4, std::to_string(index) + ";rgb:" + two_hex_digits(r) + "/" + two_hex_digits(g) + "/" + two_hex_digits(b));
  if (environment("TMUX")) sequence = _dcs_passthrough(sequence);
  return write_to_terminal(sequence, tty);
}

int _nearest_named_color(int r, int g, int b) {
  int nearest = COLOR_WHITE;
  int least = std::numeric_limits<int>::max();
  for (const NamedColor& color : NAMED_COLORS) {
    const int distance = (r - color.r) * (r - color.r) + (g - color.g) * (g - color.g) + (b - color.b) * (b - color.b);
    if (distance >= least) continue;
    least = distance;
    nearest = color.number;
  }
  return nearest;
}

bool write_to_terminal(std::string_view bytes, const std::string& tty) {
  const Descriptor terminal = open_without_waiting(tty, O_WRONLY | O_APPEND);
  struct stat info {};
  if (!terminal || ::fstat(terminal.get(), &info) != 0 || S_ISFIFO(info.st_mode)) return false;
  // A terminal that is busy drawing takes the rest a moment later: half a sequence would garble the screen.
  if (::fcntl(terminal.get(), F_SETFL, O_APPEND) != 0) return false;
  while (!bytes.empty()) {
    const ssize_t count = ::write(terminal.get(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace brenlow
