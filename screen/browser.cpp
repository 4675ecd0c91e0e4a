// The full-screen file chooser. Its state lives in one local object for the time of a run; the lists come from
// screen/browser_list.cpp.

#include "screen/browser_list.h"

#include <algorithm>
#include <filesystem>

#include "core/editor.h"
#include "core/unicode.h"
#include "customise/recent_files.h"
#include "screen/curses.h"
#include "screen/line_input.h"

namespace brenlow {

namespace {

constexpr std::u32string_view FILENAME_LABEL = U" Filename: ";

class Browser {
 public:
  Browser(Editor& editor, std::string title, bool allow_new_name, const std::string& prefill);
  std::optional<std::string> run();

 private:
  enum class View { directory, search, recent };
  enum class Outcome { stay, cancel, choose };

  void draw();
  void draw_list();
  void draw_filename();
  std::u32string footer() const;
  Outcome filename_key(int key);
  Outcome list_key(int key);
  Outcome open_selected();
  bool select_by(int key);
  void go_back();
  void escape_search();
  void list(const std::string& directory);
  void show_directory() { list(_directory); }
  void show_recent();
  void search();
  void type_ahead(int key);
  void select(int index);
  void offer(const std::string& name);
  std::string entered_name() const;
  bool entry_selected() const { return _selected < static_cast<int>(_entries.size()); }
  const BrowserEntry& selected_entry() const { return _entries[static_cast<std::size_t>(_selected)]; }
  int list_rows() const { return std::max(_editor.rows() - 4, 1); }

  Editor& _editor;
  std::string _title;
  bool _allow_new_name;
  std::string _directory;
  std::vector<BrowserEntry> _entries;
  int _selected = 0;
  int _top = 0;
  View _view = View::directory;
  std::u32string _term;   // of the content search
  std::u32string _typed;  // type-ahead, or what a search had to say
  bool _filename_focus = false;
  LineInput _filename;
  std::string _offered;  // the bytes of the name that was last put into the filename line
  std::string _chosen;
};

Browser::Browser(Editor& editor, std::string title, bool allow_new_name, const std::string& prefill)
    : _editor(editor),
      _title(std::move(title)),
      _allow_new_name(allow_new_name),
      _filename(decode_utf8(prefill)),
      _offered(prefill) {
  editor._fb_utf8_buf.clear();  // a character cut off in an earlier run never comes to its end
  std::error_code error;
  std::filesystem::path start = std::filesystem::current_path(error);
  if (editor.filepath) start = (start / *editor.filepath).lexically_normal().parent_path();
  _directory = start.empty() ? "/" : start.string();
  show_directory();
}

void Browser::list(const std::string& directory) {
  _directory = directory;
  _entries = list_directory(_directory, _editor._hide_dotfiles);
  _view = View::directory;
  _selected = 0;
  _top = 0;
  _typed.clear();
}

std::u32string Browser::footer() const {
  if (!_typed.empty()) return U" Search: " + _typed + U"_";
  if (_view == View::search) return U" Search: " + _term + U"   / new search   ESC clear   ↑↓ move   Enter open";
  if (_view == View::recent)
    return U" Recent files (latest first)   ↑↓ move   Enter open   ←/Bksp back to folder   ESC cancel";
  if (_filename_focus) return U" Type filename   Enter confirm   Tab back to list   ESC cancel";
  if (_allow_new_name) return U" ↑↓ move   Enter enter dir/use name   Tab edit filename   ESC cancel";
  return U" ↑↓ move   Enter/→ open   ←/Bksp parent   / search   R recent   ESC cancel";
}

void Browser::draw_list() {
  int width = _editor.cols();
  auto cut = static_cast<std::size_t>(std::max(width - 1, 0));
  if (_selected < _top) _top = _selected;
  if (_selected >= _top + list_rows()) _top = _selected - list_rows() + 1;
  if (_entries.empty()) _editor._canvas.put(5, 6, U"(no .odt/.txt/.md/.fountain files or subdirectories here)");
  for (int row = 0; row < list_rows() && _top + row < static_cast<int>(_entries.size()); ++row) {
    bool selected = _top + row == _selected;
    std::u32string text = (selected ? U">" : U" ") + browser_row(_entries[static_cast<std::size_t>(_top + row)], width);
    _editor._canvas.put(row + 1, 0, std::u32string_view(text).substr(0, cut),
                        {A_NORMAL, selected ? screen::PAIR_SELECTED : 0});
  }
}

void Browser::draw_filename() {
  int row = _editor.rows() - 2;
  std::u32string text(FILENAME_LABEL);
  text += _filename.text();
  text = screen::padded(text, _editor.cols());
  _editor._canvas.put(row, 0, text, {A_NORMAL, _filename_focus ? screen::PAIR_SELECTED : screen::PAIR_PROMPT});
  int column = static_cast<int>(FILENAME_LABEL.size()) + _filename.position();
  if (!_filename_focus || column >= _editor.cols() - 1) return;
  char32_t under = text[static_cast<std::size_t>(column)];
  _editor._canvas.put(row, column, {&under, 1}, {A_REVERSE, screen::PAIR_SELECTED});
  _editor._canvas.place_cursor(row, column);
}

void Browser::draw() {
  int width = _editor.cols();
  _editor._canvas.erase();
  _editor._canvas.put_row(0, decode_utf8(" " + _title + ": " + _directory), width, {0, screen::PAIR_BAR});
  draw_list();
  _editor._canvas.put_row(_editor.rows() - 1, footer(), width, {0, screen::PAIR_PROMPT});
  if (_allow_new_name) draw_filename();
  screen::show_cursor(_filename_focus);
  _editor._painter.show(_editor.stdscr, _editor._canvas);
}

std::optional<std::string> Browser::run() {
  for (;;) {
    draw();
    int key = _editor._getch_key();
    if (key == KEY_RESIZE) {
      _editor._serve_resize();
      continue;
    }
    Outcome outcome = _filename_focus ? filename_key(key) : list_key(key);
    if (outcome == Outcome::cancel) return std::nullopt;
    if (outcome == Outcome::choose) return _chosen;
  }
}

Browser::Outcome Browser::filename_key(int key) {
  if (key == 10 || key == 13) {
    std::string name = entered_name();
    if (name.empty()) return Outcome::stay;
    screen::show_cursor(false);
    _chosen = joined_path(_directory, name);
    return Outcome::choose;
  }
  if (key == KEY_ESC) {
    screen::show_cursor(false);
    return Outcome::cancel;
  }
  if (key == 9)
    _filename_focus = false;
  else if (key == KEY_DC)
    _filename.delete_under_cursor();
  else
    _filename.take_key(key, _editor._fb_utf8_buf);
  return Outcome::stay;
}

bool Browser::select_by(int key) {
  int step = key == KEY_UP      ? -1
             : key == KEY_DOWN  ? 1
             : key == KEY_PPAGE ? -list_rows()
             : key == KEY_NPAGE ? list_rows()
                                : 0;
  if (step == 0) return false;
  select(std::clamp(_selected + step, 0, std::max(static_cast<int>(_entries.size()) - 1, 0)));
  return true;
}

void Browser::select(int index) {
  _selected = index;
  if (_allow_new_name && entry_selected() && !selected_entry().is_directory) offer(selected_entry().name);
}

void Browser::offer(const std::string& name) {
  _offered = name;
  _filename.set(decode_utf8(name));
}

// A name whose bytes are no UTF-8 is shown with replacement characters; left as it is, it means that very file.
std::string Browser::entered_name() const {
  bool untouched = _filename.text() == decode_utf8(_offered);
  if (untouched && !decode_utf8_strict(_offered)) return _offered;
  return encode_utf8(trimmed(_filename.text()));
}

Browser::Outcome Browser::list_key(int key) {
  bool plain_directory = _view == View::directory && _typed.empty();
  if (select_by(key)) return Outcome::stay;
  if (key == KEY_ESC) {
    if (_view == View::search)
      escape_search();
    else if (!_typed.empty())
      _typed.clear();
    else if (_view == View::recent)
      go_back();
    else
      return Outcome::cancel;
  } else if (key == 9) {
    _filename_focus = _allow_new_name;
  } else if (key == 10 || key == 13 || key == KEY_ENTER || key == KEY_RIGHT) {
    return open_selected();
  } else if (key == KEY_LEFT || (is_backspace(key) && _typed.empty())) {
    go_back();
  } else if (is_backspace(key)) {
    _typed.pop_back();
  } else if (key == '/' && (plain_directory || _view == View::search)) {
    search();
  } else if (key == 'R' && plain_directory) {
    show_recent();
  } else if (key >= 32 && key <= 126) {
    type_ahead(key);
  }
  return Outcome::stay;
}

void Browser::escape_search() {
  _term.clear();
  show_directory();
}

Browser::Outcome Browser::open_selected() {
  if (!entry_selected()) return Outcome::stay;
  const BrowserEntry entry = selected_entry();
  if (entry.name == ".." && entry.is_directory) {
    go_back();
  } else if (entry.is_directory) {
    list(joined_path(_directory, entry.name));
  } else if (_allow_new_name) {
    // A save asks for a name and not for an overwrite at once.
    if (_view == View::recent) _directory = entry.detail;
    offer(entry.name);
    _filename_focus = true;
  } else {
    _chosen = joined_path(_view == View::recent ? entry.detail : _directory, entry.name);
    return Outcome::choose;
  }
  return Outcome::stay;
}

// From another view to the folder, else to the parent folder with the one just left selected.
void Browser::go_back() {
  if (_view != View::directory) return show_directory();
  std::string parent = parent_directory(_directory);
  if (parent == _directory) return;
  std::string left = path_base_name(_directory);
  list(parent);
  auto found = std::find_if(_entries.begin(), _entries.end(), [&](const BrowserEntry& e) { return e.name == left; });
  if (found != _entries.end()) _selected = static_cast<int>(found - _entries.begin());
}

void Browser::search() {
  _editor._backdrop = [this] { draw(); };
  std::optional<std::u32string> term = _editor._prompt("Search content: ");
  _editor._backdrop = nullptr;
  if (!term || term->empty()) return;
  std::vector<BrowserEntry> hits = search_contents(_directory, *term, _editor._hide_dotfiles);
  if (hits.empty()) {
    _typed = U"No matches for '" + *term + U"'";
    return;
  }
  _entries = std::move(hits);
  _view = View::search;
  _term = *term;
  _typed.clear();
  _selected = 0;
  _top = 0;
}

void Browser::show_recent() {
  std::vector<BrowserEntry> recent = recent_entries(load_recent_files(_editor._machine.files));
  if (recent.empty()) {
    _typed = U"No recently opened files yet";
    return;
  }
  _entries = std::move(recent);
  _view = View::recent;
  _selected = 0;
  _top = 0;
}

void Browser::type_ahead(int key) {
  _typed.push_back(lower(static_cast<char32_t>(key)));
  for (std::size_t i = 0; i < _entries.size(); ++i) {
    if (!lowered(decode_utf8(_entries[i].name)).starts_with(_typed)) continue;
    select(static_cast<int>(i));
    return;
  }
}

}  // namespace

std::optional<std::string> Editor::_file_browser(const std::string& title_prefix, bool allow_new_name,
                                                 const std::string& fname_prefill) {
  return Browser(*this, title_prefix, allow_new_name, fname_prefill).run();
}

}  // namespace brenlow
