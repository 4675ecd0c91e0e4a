#include <algorithm>
#include <array>

#include "core/editor.h"
#include "core/unicode.h"

namespace brenlow {

namespace {

struct MarginSide {
  std::string_view side;
  int Editor::*value;
  int Editor::*opposite;
  std::string_view label;
  std::string_view key;
  std::string_view axis;
};

constexpr std::array _MARGIN_SIDES = {
    MarginSide{"left", &Editor::_margin_left_pct, &Editor::_margin_right_pct, "Left margin", "margin_left", "width"},
    MarginSide{"right", &Editor::_margin_right_pct, &Editor::_margin_left_pct, "Right margin", "margin_right", "width"},
    MarginSide{"top", &Editor::_margin_top_pct, &Editor::_margin_bottom_pct, "Top margin", "margin_top", "height"},
    MarginSide{"bottom", &Editor::_margin_bottom_pct, &Editor::_margin_top_pct, "Bottom margin", "margin_bottom",
               "height"},
};

// The whole number from 0 to 100 that the answer gives, a "%" behind it allowed; nothing for other texts.
std::optional<int> percent_of(TextView typed) {
  typed = trimmed(typed);
  while (!typed.empty() && typed.back() == U'%') typed = trimmed(typed.substr(0, typed.size() - 1));
  const std::u32string answer = typed.str();
  if (answer.empty()) return std::nullopt;
  int value = 0;
  for (char32_t digit : answer) {
    if (digit < U'0' || digit > U'9') return std::nullopt;
    value = std::min(value * 10 + static_cast<int>(digit - U'0'), 101);
  }
  return value <= 100 ? std::optional(value) : std::nullopt;
}

}  // namespace

void Editor::do_set_margin(std::string_view side) {
  const MarginSide& row = *std::find_if(_MARGIN_SIDES.begin(), _MARGIN_SIDES.end(),
                                        [&](const MarginSide& candidate) { return candidate.side == side; });
  std::string label(row.label);
  std::optional<std::u32string> answer =
      _prompt(label + " (% of " + std::string(row.axis) + "): ", decode_utf8(std::to_string(this->*row.value)));
  if (!answer) {
    _show_message(label + " unchanged.");
    return;
  }
  std::optional<int> wanted = percent_of(*answer);
  if (!wanted) {
    _show_message(label + ": please enter a whole number between 0 and 100.");
    return;
  }
  int ceiling = std::max(100 - this->*row.opposite, 0);
  this->*row.value = std::min(*wanted, ceiling);
  SettingsMap settings = load_config(_machine.files);
  for (const MarginSide& each : _MARGIN_SIDES) settings.set(each.key, static_cast<long long>(this->*each.value));
  try {
    save_config(_machine.files, settings);
  } catch (const std::exception&) {
    // The margin holds for this session.
  }
  _invalidate_map();
  _show_message(label + " set to " + std::to_string(this->*row.value) +
                (*wanted > ceiling ? "% (combined with the opposite margin, that's the max)." : "%."));
}

void Editor::do_toggle_bars() {
  _bar_state = (_bar_state + 1) % 4;
  _invalidate_map();
  _ensure_cursor_visible();
}

void Editor::do_typewriter_toggle() {
  _typewriter = !_typewriter;
  _show_message(_typewriter ? "Typewriter mode on" : "Typewriter mode off");
  persist_setting(_machine.files, "typewriter", _typewriter);
  _ensure_cursor_visible();
}

}  // namespace brenlow
