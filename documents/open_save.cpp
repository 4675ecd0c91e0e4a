#include <filesystem>

#include "core/editor.h"
#include "core/failure.h"
#include "core/local_time.h"
#include "core/unicode.h"
#include "customise/recent_files.h"
#include "documents/odt_reader.h"
#include "documents/odt_writer.h"
#include "documents/plain_text.h"
#include "screen/curses.h"

namespace brenlow {

namespace {

namespace fs = std::filesystem;

bool exists(const std::string& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

std::string absolute_form(const std::string& path) {
  std::error_code ignored;
  return (fs::current_path(ignored) / path).lexically_normal().string();
}

std::string upper_case(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return text;
}

DocumentTriple load_document(const std::string& path, KeptContent* kept = nullptr) {
  return is_plain_text_extension(path_extension(path)) ? txt_to_lines(path) : odt_to_rich(path, kept);
}

bool is_empty_document(const DocumentTriple& triple) { return triple.lines.size() == 1 && triple.lines[0].empty(); }

// Where a save under `path` goes, and the message that tells it, without the base name.
struct SaveRoute {
  std::string target;
  std::string extension;  // what is written: ".odt" or one of the plain-text ones
  std::string message;
};

SaveRoute save_route(const std::string& path, const std::string& default_extension) {
  std::string ext = path_extension(path);
  std::string written = saved_extension(path, default_extension);
  std::string kind = upper_case(written.substr(1));
  if (ext == written) return {path, ext, "Saved (" + kind + "): "};
  if (ext.empty()) return {path + written, written, "Saved (" + kind + "): "};
  return {path + written, written, "Unknown extension '" + ext + "' — saved as " + kind + ": "};
}

}  // namespace

bool Editor::_has_formatting() const {
  return !pagebreak_lines.empty() ||
         std::any_of(fmt_lines.begin(), fmt_lines.end(), [](const SpanList& spans) { return !spans.empty(); });
}

bool Editor::_confirm_overwrite(const std::string& path) {
  bool same_file = absolute_form(path) == absolute_form(filepath.value_or(""));
  if (!exists(path) || same_file) return true;
  if (_ask("'" + path_base_name(path) + "' already exists. Overwrite? [y/n]: ", "yn") == 'y') return true;
  _show_message("Save cancelled.");
  return false;
}

void Editor::_save_to(const std::string& path) {
  try {
    if (path.ends_with('/')) throw Failure("the path ends in a folder and names no file");
    SaveRoute route = save_route(path, _default_extension);
    bool plain = is_plain_text_extension(route.extension);
    if (plain && _has_formatting() &&
        _ask("Formatting (bold/italic/page breaks) will be lost. Save anyway? [y/n]: ", "yn") != 'y') {
      _show_message("Save cancelled.");
      return;
    }
    if (!_confirm_overwrite(route.target)) return;
    if (plain)
      lines_to_txt(lines, route.target);
    else
      lines_to_odt(lines, route.target, exists(route.target) ? std::optional(route.target) : std::nullopt, fmt_lines,
                   pagebreak_lines, &_kept_content);
    filepath = route.target;
    modified = false;
    _show_message(route.message + path_base_name(route.target));
    _load_syntax(route.extension);
    add_recent_file(_machine.files, route.target);
  } catch (const std::exception& failure) {
    _show_message("Save error: " + reason_of(failure));
  }
}

void Editor::do_save() {
  if (filepath) return _save_to(*filepath);
  std::optional<std::u32string> answer =
      _prompt("Save as (.odt/.txt/.md/.fountain, default: ." + _default_extension + "): ");
  if (answer && !answer->empty())
    _save_to(encode_utf8(*answer));
  else
    _show_message("Save cancelled.");
}

void Editor::do_save_as() {
  std::optional<std::string> path = _file_browser("Save As", true, filepath ? path_base_name(*filepath) : "");
  screen::show_cursor(true);
  if (path)
    _save_to(*path);
  else
    _show_message("Save As cancelled.");
}

void Editor::_reset_for_document(DocumentTriple triple, std::optional<std::string> path) {
  _install_document(std::move(triple));
  filepath = std::move(path);
  cx = cy = scroll_y = 0;
  modified = false;
  _sel_clear();
  _preferred_col.reset();
  _undo_stack.clear();
  _redo_stack.clear();
  _reset_folds();
  _invalidate_map();
  _load_syntax(filepath ? path_extension(*filepath) : std::string());
  _sync_cur_fmt();
}

void Editor::do_open() {
  if (modified) {
    char answer = _ask("Unsaved changes. Save before opening? [y/n/c]", "ync");
    if (answer == 'y') {
      do_save();
      if (modified) return;
    } else if (answer != 'n') {
      _show_message("Open cancelled.");
      return;
    }
  }
  std::optional<std::string> path = _file_browser();
  screen::show_cursor(true);
  if (!path) {
    _show_message("Open cancelled.");
    return;
  }
  if (!exists(*path)) {
    _show_message("File not found: " + *path);
    return;
  }
  try {
    _reset_for_document(load_document(*path, &_kept_content), *path);
    add_recent_file(_machine.files, *path);
    _show_message("Opened: " + path_base_name(*path));
  } catch (const std::exception& failure) {
    _show_message("Open error: " + reason_of(failure));
  }
}

void Editor::do_create_newdoc() {
  if (modified) {
    char answer = _ask("Unsaved changes — save before creating new document? (y/n/c) ", "ync");
    if (answer == 'y') {
      do_save();
      if (modified) return;
    } else if (answer != 'n') {
      _show_message("Create document cancelled.");
      return;
    }
  }
  std::optional<std::string> path;
  std::string told = "New document";
  if (_newdoc_timestamp) {
    std::string name = local_time("%Y%m%d-%H%M%S") + "." + _default_extension;
    fs::path folder = filepath ? fs::path(*filepath).parent_path() : fs::path();
    std::error_code ignored;
    if (folder.empty()) folder = fs::current_path(ignored);
    path = (folder / name).string();
    told += ": " + name;
  }
  _reset_for_document({}, std::move(path));
  _cur_fmt = 0;
  _show_message(told + "  (not yet saved — press ESC S to save)");
}

void Editor::do_insert_document() {
  std::optional<std::string> path = _file_browser("Insert document");
  screen::show_cursor(true);
  if (!path) {
    _show_message("Insert cancelled.");
    return;
  }
  if (!exists(*path)) {
    _show_message("File not found: " + *path);
    return;
  }
  try {
    std::string extension = path_extension(*path);
    if (extension != ".odt" && !is_plain_text_extension(extension)) {
      _show_message("Unsupported format '" + extension + "' — use .odt, .txt, .md, or .fountain");
      return;
    }
    DocumentTriple loaded = load_document(*path);
    if (is_empty_document(loaded)) {
      _show_message("Document is empty, nothing inserted.");
      return;
    }
    _insert_triple(loaded);
    std::size_t count = loaded.lines.size();
    _show_message("Inserted " + std::to_string(count) + " line" + (count == 1 ? "" : "s") + " from " +
                  path_base_name(*path));
    _kgrep_refresh();
  } catch (const std::exception& failure) {
    _show_message("Insert error: " + reason_of(failure));
  }
}

// Puts a loaded document between the two halves of the cursor's line; the cursor goes behind it.
void Editor::_insert_triple(const DocumentTriple& loaded) {
  _push_undo_bulk();
  _invalidate_map();
  TextView line = _line(cy);
  Text head(line.substr(0, static_cast<std::size_t>(cx)));
  Text tail(line.substr(static_cast<std::size_t>(cx)));
  SplitSpans split = _fmt_split_line(cy, cx);

  std::vector<Text> new_lines = loaded.lines;
  std::vector<SpanList> new_fmt = loaded.fmt_lines;
  new_lines.front() = joined(head, new_lines.front());
  new_fmt.front() = spans_appended(split.left, new_fmt.front(), head.length());
  int inserted_end = new_lines.back().length();
  new_lines.back() = joined(new_lines.back(), tail);
  new_fmt.back() = spans_appended(new_fmt.back(), split.right, inserted_end);

  int added = static_cast<int>(new_lines.size()) - 1;
  lines.splice(static_cast<std::size_t>(cy), 1, std::move(new_lines));
  fmt_lines.splice(static_cast<std::size_t>(cy), 1, std::move(new_fmt));
  pagebreak_lines.erase(cy);
  pagebreak_lines.shift(cy + 1, added);
  IndexSet breaks = loaded.pagebreak_lines;
  breaks.shift(0, cy);
  pagebreak_lines.merge(breaks);
  _guard_pagebreak_line_zero();
  _shift_folded_chapters(head.empty() ? cy : cy + 1, added);  // a folded header that moves down whole stays folded
  cy += added;
  cx = inserted_end;
  modified = true;
  _finalize_undo_bulk();
}

}  // namespace brenlow
