#include <algorithm>

#include "core/editor.h"
#include "core/unicode.h"
#include "screen/curses.h"
#include "screen/line_input.h"

namespace brenlow {

namespace {

// The reversed cell that is the visible cursor of a prompt; the terminal's cursor goes there too.
void draw_prompt_cursor(screen::Canvas& canvas, int row, int column, std::u32string_view row_text, int offset) {
  auto at = static_cast<std::size_t>(std::max(offset, 0));
  char32_t under = at < row_text.size() ? row_text[at] : U' ';
  canvas.put(row, column, {&under, 1}, {A_REVERSE, screen::PAIR_PROMPT});
  canvas.place_cursor(row, column);
}

int centred(int whole, int part) { return std::max((whole - part) / 2, 0); }

}  // namespace

void Editor::_redraw_behind() {
  _serve_resize();
  if (_backdrop) return _backdrop();
  _ensure_cursor_visible();
  draw();
}

void Editor::_draw_prompt_bar(std::u32string_view prompt, std::u32string_view buf, int pos) {
  std::u32string text(U" ");
  text += prompt;
  text += buf;
  text = screen::padded(text, cols());
  _canvas.put(rows() - 1, 0, text, {A_NORMAL, screen::PAIR_PROMPT});
  int column = std::min(cols() - 1, static_cast<int>(prompt.size()) + 1 + pos);
  draw_prompt_cursor(_canvas, rows() - 1, column, text, column);
  _painter.show(stdscr, _canvas);
}

std::optional<std::u32string> Editor::_prompt(const std::string& prompt, std::u32string_view prefill,
                                              bool esc_returns_empty) {
  screen::show_cursor(true);
  _prompt_utf8_buf.clear();  // a character cut off in an earlier prompt never comes to its end
  LineInput input(prefill);
  bool expanding = false;
  const std::u32string plain = decode_utf8(prompt);
  const std::u32string asking =
      plain + U"[expansion — press letter, or " + (_expansion_key == KEY_ESC ? U"ESC" : U"key") + U" again to cancel] ";
  for (;;) {
    _draw_prompt_bar(expanding ? asking : plain, input.text(), input.position());
    int key = _getch_key();
    if (key == KEY_RESIZE) {
      _redraw_behind();
    } else if (expanding) {
      expanding = false;
      if (key == _expansion_key) continue;
      if (const std::u32string* text = _expansion_for(key))
        input.insert(one_line(*text));
      else
        _show_message("No expansion assigned to that key.");
    } else if (!_expansions.empty() && key == _expansion_key) {
      expanding = true;
    } else if (key == 10 || key == 13) {
      return input.text();
    } else if (key == KEY_ESC) {
      if (esc_returns_empty) return std::u32string();
      return std::nullopt;
    } else if (key == 22) {
      input.keep_prefill();
      input.insert(_clipboard_as_one_line());
    } else {
      if (key >= 128 && key <= 255) input.keep_prefill();  // unlike plain letters, these are added to it
      input.take_key(key, _prompt_utf8_buf);
    }
  }
}

void Editor::_draw_mid_box(int y, int x, int width, std::u32string_view prompt, std::u32string_view buf, int pos) {
  int inner = std::max(width - 2, 0);
  std::u32string content(prompt.substr(0, static_cast<std::size_t>(inner)));
  int label = static_cast<int>(content.size());
  content += buf;
  std::u32string border(static_cast<std::size_t>(std::max(width, 0)), U'─');
  std::u32string middle = U" " + screen::padded(content, inner) + U" ";
  for (int row = 0; row < 3; ++row)
    _canvas.put(y + row, x, row == 1 ? middle : border, {A_NORMAL, screen::PAIR_PROMPT});
  int column = std::min(cols() - 1, x + 1 + label + pos);
  draw_prompt_cursor(_canvas, y + 1, column, middle, column - x);
  _painter.show(stdscr, _canvas);
}

std::optional<std::u32string> Editor::_mid_prompt(const std::string& prompt, std::optional<std::size_t> max_chars,
                                                  std::optional<std::string_view> allowed_chars) {
  std::u32string label = decode_utf8(prompt);
  std::u32string buf;
  _mid_pending_ch = NO_KEY;
  for (;;) {
    int width = std::min(cols() - 4, static_cast<int>(label.size()) + 6);
    _draw_mid_box(centred(rows(), 3), centred(cols(), width), width, label, buf, static_cast<int>(buf.size()));
    int key = std::exchange(_mid_pending_ch, NO_KEY);
    if (key == NO_KEY) key = _getch_key();
    if (key == KEY_RESIZE) {
      _redraw_behind();
    } else if (key == 10 || key == 13) {
      return buf;
    } else if (key == KEY_ESC) {
      return std::nullopt;
    } else if (is_backspace(key)) {
      if (!buf.empty()) buf.pop_back();
    } else if (key >= 32 && key <= 126) {
      auto lower_case = static_cast<char>(lower(static_cast<char32_t>(key)));
      if (allowed_chars && lowered_ascii(*allowed_chars).find(lower_case) == std::string::npos) continue;
      if (!max_chars || buf.size() < *max_chars) buf.push_back(static_cast<char32_t>(key));
      if (max_chars && buf.size() >= *max_chars) return buf;
    }
  }
}

char Editor::_ask(const std::string& question, std::string_view letters) {
  std::optional<std::u32string> answer = _mid_prompt(question, 1, letters);
  return answer && !answer->empty() ? static_cast<char>(lower(answer->front())) : '\0';
}

void Editor::_mid_notice(const std::string& text) {
  std::u32string content = decode_utf8(text);
  int key = NO_KEY;
  do {
    if (key == KEY_RESIZE) _redraw_behind();
    int width = std::min(cols() - 4, static_cast<int>(content.size()) + 4);
    int y = centred(rows(), 3);
    int x = centred(cols(), width);
    std::u32string border(static_cast<std::size_t>(std::max(width, 0)), U'─');
    _canvas.put(y, x, border, {A_NORMAL, screen::PAIR_PROMPT});
    _canvas.put(y + 1, x, U" " + screen::padded(content, width - 2) + U" ", {A_NORMAL, screen::PAIR_PROMPT});
    _canvas.put(y + 2, x, border, {A_NORMAL, screen::PAIR_PROMPT});
    _painter.show(stdscr, _canvas);
    key = _getch_key();
  } while (key == KEY_RESIZE);
}

}  // namespace brenlow
