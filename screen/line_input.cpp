#include "screen/line_input.h"

#include "core/keys.h"
#include "core/unicode.h"

namespace brenlow {

namespace {

constexpr std::size_t LONGEST_UTF8 = 4;

}  // namespace

LineInput::LineInput(std::u32string_view prefill)
    : _text(prefill), _position(prefill.size()), _fresh(!prefill.empty()) {}

void LineInput::insert(std::u32string_view characters) {
  _text.insert(_position, characters);
  _position += characters.size();
}

void LineInput::set(std::u32string_view text) {
  _text = text;
  _position = text.size();
  _fresh = false;
}

// Typing over an untouched prefill replaces it.
void LineInput::_drop_fresh() {
  if (_fresh) set({});
}

void LineInput::delete_under_cursor() {
  _fresh = false;
  if (_position < _text.size()) _text.erase(_position, 1);
}

bool LineInput::_moved(int key) {
  switch (key) {
    case KEY_LEFT:
      if (_position > 0) --_position;
      break;
    case KEY_RIGHT:
      if (_position < _text.size()) ++_position;
      break;
    case KEY_HOME:
      _position = 0;
      break;
    case KEY_END:
      _position = _text.size();
      break;
    default:
      return false;
  }
  _fresh = false;
  return true;
}

void LineInput::_typed_byte(int key, std::string& partial) {
  bool goes_on = (key & 0xC0) == 0x80;
  if (!goes_on) partial.clear();
  partial.push_back(static_cast<char>(key));
  if (auto text = decode_utf8_strict(partial)) {
    insert(*text);
    partial.clear();
  } else if (partial.size() >= LONGEST_UTF8) {
    partial.clear();
  }
}

bool LineInput::take_key(int key, std::string& partial) {
  if (is_backspace(key)) {
    if (_fresh)
      set({});
    else if (_position > 0)
      _text.erase(--_position, 1);
  } else if (key >= 32 && key <= 126) {
    _drop_fresh();
    char32_t character = static_cast<char32_t>(key);
    insert({&character, 1});
  } else if (key >= 128 && key <= 255) {
    _drop_fresh();
    _typed_byte(key, partial);
  } else {
    return _moved(key);
  }
  return true;
}

}  // namespace brenlow
