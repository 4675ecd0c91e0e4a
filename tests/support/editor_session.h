#pragma once

#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/editor.h"
#include "tests/support/notation.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/terminal_screen.h"

namespace brenlow::test {

struct SessionOptions {
  std::optional<std::string> path = {};  // the document to open; relative to the home folder
  int rows = 24, cols = 80;
  std::string terminal_type = "xterm-256color";        // a name of the terminal database, or of the home's ".terminfo"
  std::map<std::string, std::string> home_files = {};  // path within the home folder to content, made before the start
};

// A whole Editor on a terminal of its own that nobody looks at but the test. It has a home folder of its own,
// no clipboard and font tools (programs put into the home's folder "bin" are found), no batteries (folder
// "power") and no console fonts (folder "fonts"). One at a time per process. A test in which the session waits
// for keys that never come ends with a picture of the screen.
class EditorSession {
 public:
  explicit EditorSession(const SessionOptions& options = {});
  ~EditorSession();
  EditorSession(const EditorSession&) = delete;
  EditorSession& operator=(const EditorSession&) = delete;

  Editor* operator->() { return _editor.get(); }
  Editor& editor() { return *_editor; }
  const TemporaryFolder& home() const { return _home; }

  // Makes this the document, as if just opened: unmodified, with no history and nothing folded.
  void document(std::string_view notation);
  std::string notation() const;
  DocumentTriple triple() const;

  // Decides keys as the loop does once it has read them, and checks the session after each. A dialog that a key
  // opens reads what type_ahead has laid ready.
  void press(std::initializer_list<int> keys);
  void press(int key) { press({key}); }
  void command(int letter) { press({KEY_ESC, letter}); }
  void type(std::u32string_view text);
  // Lays bytes ready in the terminal's input; at most some 4000 at once.
  void type_ahead(std::string_view bytes);
  // Lets the session read and decide the bytes, as it would read them from a terminal.
  void feed(std::string_view bytes);
  void resize(int rows, int cols);

  // Draws, and gives the screen as the terminal then shows it.
  const TerminalScreen& draw();
  std::vector<std::string> rows() { return draw().all_rows(); }
  // The screen without drawing anew: what a dialog that has just ended left there.
  const TerminalScreen& screen();
  // Every byte that the session has written to the terminal until now.
  const std::string& output();

 private:
  class Terminal;

  void _decide_next_key();

  TemporaryFolder _home;
  std::unique_ptr<Terminal> _terminal;
  std::unique_ptr<Editor> _editor;
};

}  // namespace brenlow::test
