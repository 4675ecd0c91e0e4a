// The allotment of colour pairs to styles: the one table of the process, as the screen library's pairs are.

#include <map>

#include "core/editor.h"
#include "screen/curses.h"
#include "terminal/escapes.h"

namespace brenlow {

namespace {

struct StyleOrder {
  bool operator()(const StyleSpec& a, const StyleSpec& b) const {
    return std::tuple(a.kind, a.color, a.r, a.g, a.b) < std::tuple(b.kind, b.color, b.r, b.g, b.b);
  }
};

std::map<StyleSpec, int, StyleOrder> _SYN_COLOR_PAIRS;
int _SYN_NEXT_PAIR = 10;  // the numbers below belong to the fixed pairs

bool define_pair(int pair, int foreground) {
  return pair < COLOR_PAIRS && ::init_extended_pair(pair, foreground, -1) != ERR;
}

// The library's scale of a colour component.
int thousandths(int component) { return component * 1000 / 255; }

// With this many colours the terminal has no palette beyond the basic eight: a number is red, green and blue.
constexpr int DIRECT_COLORS = 1 << 24;
constexpr int BASIC_COLORS = 8;

int direct_color(const StyleSpec& style) {
  int color = style.r << 16 | style.g << 8 | style.b;
  return color < BASIC_COLORS ? COLOR_BLACK : color;
}

// Colour slot and pair share one number.
bool define_rgb(int number, const StyleSpec& style, const std::string& tty) {
  if (COLORS >= DIRECT_COLORS) return define_pair(number, direct_color(style));
  if (number < COLORS && ::can_change_color() &&
      ::init_extended_color(number, thousandths(style.r), thousandths(style.g), thousandths(style.b)) != ERR &&
      define_pair(number, number)) {
    ::doupdate();  // nothing to draw: sends what the library has buffered, which defines the colour
    return true;
  }
  if (number < COLORS && _send_osc4_color(number, style.r, style.g, style.b, tty) && define_pair(number, number))
    return true;
  return define_pair(number, _nearest_named_color(style.r, style.g, style.b));
}

}  // namespace

int Editor::_syn_pair_for(const StyleSpec& style) {
  if (style.kind == StyleSpec::Kind::inverse) return 0;
  auto known = _SYN_COLOR_PAIRS.find(style);
  return known != _SYN_COLOR_PAIRS.end() ? known->second : _new_syn_pair(style);
}

int Editor::_new_syn_pair(const StyleSpec& style) {
  int number = _SYN_NEXT_PAIR++;
  bool defined =
      style.kind == StyleSpec::Kind::color ? define_pair(number, style.color) : define_rgb(number, style, _machine.tty);
  // A style that the library has no pair for is not tried again on every frame.
  return _SYN_COLOR_PAIRS[style] = defined ? number : 0;
}

}  // namespace brenlow
