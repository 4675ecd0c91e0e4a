#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

#include "screen/curses.h"
#include "tests/support/editor_session.h"
#include "tests/support/working_folder.h"

namespace brenlow::test {

// Keys as a terminal sends them.
namespace keys {
inline const std::string UP = "\x1b[A", DOWN = "\x1b[B", RIGHT = "\x1b[C", LEFT = "\x1b[D", HOME = "\x1b[H",
                         END = "\x1b[F", PAGE_UP = "\x1b[5~", PAGE_DOWN = "\x1b[6~", DELETE = "\x1b[3~",
                         F5 = "\x1b[15~", TAB = "\t", ENTER = "\r", BACKSPACE = "\x7f";
// A bare ESC that needs no pause behind it. Only for a session that the functions below have seen.
inline const std::string ESC = "\x1b[0~";
}  // namespace keys

inline std::string times(int count, std::string_view key) {
  std::string all;
  while (count-- > 0) all += key;
  return all;
}

// Gives a command with the keys of its dialogs laid ready, and returns what the status bar then tells. The last
// frame of the dialog stays on the screen.
inline std::string command(EditorSession& session, int letter, std::string_view dialog_keys = {}) {
  session->_ESC_MAP["[0~"] = KEY_ESC;
  session.type_ahead(dialog_keys);
  session.command(letter);
  EXPECT_FALSE(session->_input_waiting()) << "keys that no dialog asked for, after " << letter;
  return session->message;
}

// The next dialog opens with the size as it is; then, before its first key, the terminal has another one.
inline void resize_once_open(EditorSession& session, int rows, int cols) {
  int old_rows = session->rows(), old_cols = session->cols();
  session.resize(rows, cols);
  ::resizeterm(old_rows, old_cols);
  Editor::_sigwinch_pending = 1;
}

}  // namespace brenlow::test
