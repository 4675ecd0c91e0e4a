#pragma once

#include <random>
#include <string>
#include <vector>

#include "tests/support/editor_session.h"

namespace brenlow::test {

inline int pick(std::mt19937& random, int low, int high) {
  return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
}

// Lines with headers of three levels among text and blank lines; every line that is not blank is unlike the
// others.
inline std::string random_outline(std::mt19937& random, int lines) {
  static int serial = 0;
  std::string text;
  for (int i = 0; i < lines; ++i) {
    if (i > 0) text += '\n';
    int kind = pick(random, 0, 9);
    if (i > 0 && pick(random, 0, 7) == 0) text += "⏎";
    if (kind < 4) text += std::string(1 + static_cast<std::size_t>(kind) % 3, '#') + " ";
    if (kind < 8) text += "<b>line</b> " + std::to_string(100'000 + serial++);
  }
  return text;
}

// The texts of the folded headers.
inline std::vector<std::u32string> folded_texts(EditorSession& session) {
  std::vector<std::u32string> texts;
  for (int ly : session->_folded_chapters) texts.push_back(session->_line(ly).view().str());
  return texts;
}

// A command letter where ESC, the usual key in front of it, would end a filter or a find.
inline void letter(EditorSession& session, int key) {
  session->_action_mode = true;
  session.press(key);
}

inline void place_cursor(EditorSession& session, int cy, int cx) {
  session->cy = cy;
  session->cx = std::min(cx, session->_line_length(cy));
}

}  // namespace brenlow::test
