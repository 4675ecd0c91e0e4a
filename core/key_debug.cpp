#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "core/editor.h"
#include "screen/curses.h"
#include "screen/painter.h"

namespace brenlow {

namespace {

std::string byte_in(const char* format, int code) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), format, static_cast<unsigned>(code));
  return text.data();
}

std::u32string described(const std::vector<int>& codes) {
  std::string hex;
  std::string decimal;
  std::string text;
  for (int code : codes) {
    if (!hex.empty()) hex += ' ', decimal += ' ';
    hex += byte_in("%02x", code);
    decimal += byte_in("%u", code);
    text += code >= 32 && code <= 126 ? static_cast<char>(code) : '.';
  }
  std::string line = "hex=[" + hex + "]  dec=[" + decimal + "]  str=[" + text + "]";
  return {line.begin(), line.end()};
}

}  // namespace

void run_key_debug(_win_st* screen) {
  ::start_color();
  ::keypad(screen, false);
  ::raw();
  screen::Canvas canvas;
  screen::Painter painter(STDOUT_FILENO);
  canvas.reset(::getmaxy(screen), ::getmaxx(screen));
  canvas.put(0, 0, U"Key debug mode — press keys to see their byte sequences.");
  canvas.put(1, 0, U"Press Ctrl+C or Ctrl+D to quit.");
  canvas.put(2, 0, std::u32string(60, U'-'));
  painter.show(screen, canvas);
  auto begin_page = [&] {
    canvas.reset(::getmaxy(screen), ::getmaxx(screen));
    canvas.put(0, 0, U"Key debug — Ctrl+C/D to quit:");
  };
  for (int row = 3;; ++row) {
    errno = 0;
    int key = ::wgetch(screen);
    if (key == 3 || key == 4) return;
    if (key == ERR && errno != EINTR) return;  // the terminal is gone
    if (key == ERR) {
      --row;
      continue;
    }
    if (key == KEY_RESIZE) {
      ::wrefresh(screen);  // the library clears the screen now rather than at its next read
      begin_page();
      painter.show(screen, canvas);
      row = 0;
      continue;
    }
    std::vector<int> codes{key};
    if (key == KEY_ESC) {
      ::wtimeout(screen, 100);
      for (int next = ::wgetch(screen); next != ERR; next = ::wgetch(screen)) codes.push_back(next);
      ::wtimeout(screen, -1);
    }
    if (row >= ::getmaxy(screen) - 1) {
      begin_page();
      row = 1;
    }
    auto width = static_cast<std::size_t>(std::max(::getmaxx(screen) - 1, 0));
    canvas.put(row, 0, std::u32string_view(described(codes)).substr(0, width));
    painter.show(screen, canvas);
  }
}

}  // namespace brenlow
