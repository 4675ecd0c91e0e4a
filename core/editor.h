#pragma once

#include <termios.h>

#include <chrono>
#include <csignal>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/document.h"
#include "core/keys.h"
#include "core/machine.h"
#include "core/undo_record.h"
#include "core/version.h"
#include "customise/escape_map.h"
#include "customise/expansions.h"
#include "customise/key_map.h"
#include "customise/settings.h"
#include "customise/syntax_rules.h"
#include "documents/kept_content.h"
#include "screen/canvas.h"
#include "screen/painter.h"
#include "screen/screen_rows.h"
#include "terminal/console_font.h"
#include "terminal/font_control.h"

struct _win_st;  // the screen library's window

namespace brenlow {

// Raised by do_exit, caught around run. Not an std::exception, so that a command that catches every
// failure does not swallow it. EndRequest (core/signals.h) is the way out that the user has not chosen.
struct StopRequest {};

// The session: one document, its view, every setting read at start, all commands and dialogs. One per
// process, on one thread; it owns everything below. Operations of each section are defined in the file
// named beside the section's title; arithmetic on plain data lives in the tools of the same folder.
//
// Contents
//   document and settings ......... core/editor.cpp
//   loop .......................... core/loop.cpp
//   commands ...................... core/dispatch.cpp
//   edits ......................... core/edits.cpp
//   history ....................... core/undo.cpp
//   movement ...................... core/movement.cpp
//   selection ..................... core/selection.cpp
//   clipboard ..................... core/clipboard.cpp
//   checks ........................ core/session_check.cpp
//   keys .......................... customise/key_reader.cpp
//   syntax ........................ customise/syntax_state.cpp, customise/syntax_colours.cpp
//   geometry ...................... screen/geometry.cpp
//   screen map .................... screen/screen_map.cpp
//   drawing ....................... screen/drawing.cpp
//   status bar and scrolling ...... screen/status_bar.cpp
//   prompts and notices ........... screen/prompts.cpp
//   file browser .................. screen/browser.cpp
//   overlays ...................... screen/overlay.cpp, screen/help.cpp, screen/char_picker.cpp
//   open, save, insert ............ documents/open_save.cpp
//   chapters and folding .......... structure/folding.cpp, structure/chapter_swap.cpp
//   line filter ................... structure/line_filter.cpp
//   find and replace .............. structure/find.cpp, structure/replace.cpp
//   zoom .......................... terminal/zoom.cpp
//   view toggles and leaving ...... terminal/view_toggles.cpp, terminal/leave.cpp
//
// Invariants that every section relies on, checked after each key in debug builds:
//   - `lines` is never empty; `fmt_lines` is as long; no line holds a line feed;
//   - every span lies within its line, start before end, bits 1 to 3;
//   - `pagebreak_lines` holds indices of lines, and never 0 once a command is over;
//   - `cy` is a line and `cx` lies from 0 to its length;
//   - while clean, the screen map and its three companions equal those built afresh;
//   - while clean, the colours kept for a line are those of its text and formats.
class Editor {
 public:
  explicit Editor(_win_st* screen, std::optional<std::string> path = std::nullopt, Machine machine = {});
  ~Editor();
  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  // ---- document and settings ---------------------------------------------- core/editor.cpp
  Machine _machine;
  _win_st* stdscr;                      // the full-screen window
  std::optional<std::string> filepath;  // absent: unnamed
  LineList lines{Text()};
  FormatList fmt_lines{SpanList()};
  IndexSet pagebreak_lines;         // lines that begin a new page
  int cx = 0, cy = 0;               // cursor: character in the line, line
  int scroll_y = 0;                 // first visible row of the screen map
  bool modified = false;            // differs from what was last saved or opened
  int _cur_fmt = 0;                 // format of the next typed character
  std::string message;              // UTF-8; shown on the status bar until the next edit
  std::optional<long> _word_count;  // words of the document; absent: count at the next status bar

  bool _on_console = false;  // on a Linux virtual console
  int _cursor_decscusr = 1;  // cursor shape, 1 to 6
  int _margin_left_pct = 0, _margin_right_pct = 0, _margin_top_pct = 0, _margin_bottom_pct = 0;
  bool _typewriter = false;
  bool _fold_hierarchical = false;
  bool _smart_quotes = true;
  bool _hide_dotfiles = true;
  bool _newdoc_timestamp = true;
  std::string _default_extension = "odt";  // without a dot
  bool _kgrep_highlight_inverse = false, _kgrep_case_insensitive = true;
  bool _find_highlight_inverse = false, _find_case_insensitive = true;

  void _start_fonts();
  void _load_first_document();
  void _read_settings();
  // Makes `triple` the document: everything counted or derived from the old one is dropped. Keeps the view
  // and the history.
  void _install_document(DocumentTriple triple);
  int _line_length(int ly) const { return lines[static_cast<std::size_t>(ly)].length(); }
  const Text& _line(int ly) const { return lines[static_cast<std::size_t>(ly)]; }
  int _line_count() const { return static_cast<int>(lines.size()); }

  // ---- loop ----------------------------------------------------------------- core/loop.cpp
  std::optional<std::pair<int, ::termios>> _old_termios;  // descriptor and attributes found at start
  using SignalHandler = void (*)(int);
  std::optional<SignalHandler> _old_sigtstp, _old_sigwinch;
  static volatile std::sig_atomic_t _sigwinch_pending;  // set by the signal handler
  bool _action_mode = false;                            // the next key is a command letter
  bool _expansion_mode = false;                         // the next key selects an expansion
  std::string _utf8_buf;                                // bytes of a character still incomplete
  int _pending_main_ch = NO_KEY;                        // read ahead by another loop, served next

  void run();  // returns only through StopRequest or EndRequest
  void _prepare_terminal();
  void _send_cursor_shape();
  void _serve_resize();  // takes over the terminal's size
  // One pass of the loop without the reading: decides a key that is decoded already (27 is a bare ESC).
  void _handle_key(int key);
  void _bare_escape();
  void _clear_view_filters();
  bool _prefix_keys(int key);
  bool _expansion_pressed(int key);
  bool _command_letter(int key);
  bool _refused_on_fold(int key);
  bool _deleting_key(int key);
  bool _motion_key(int key);
  bool _bound_control(int key);
  bool _shortcut(int key);
  void _typed_byte(int key);
  // A command that left the cursor on a line of a folded chapter's text takes it to the header shown.
  void _keep_cursor_seen();
  bool _hidden_by_fold(int ly);

  // ---- commands ----------------------------------------------------------- core/dispatch.cpp
  std::map<int, std::string_view> _ACTION_MAP;  // letters of command mode
  void _build_action_map();
  void _dispatch_action(std::string_view action);
  bool _run_shortcut(std::string_view action);  // false: not one that a shortcut reaches
  void _toggle_format(int bit, std::string_view name);
  void _page_break_command();
  void _mark_command();
  bool _is_plain_text_document() const;
  void _to_doc_begin();
  void _to_doc_end();

  // ---- edits ----------------------------------------------------------------- core/edits.cpp
  void _fmt_insert_char(int ly, int col, int fmt);
  void _fmt_delete_char(int ly, int col);
  SplitSpans _fmt_split_line(int ly, int col) const;
  void _fmt_join_lines(int ly, int offset);  // the caller removes entry ly + 1
  bool _guard_pagebreak_line_zero();         // true: a break was on line 0 and has moved or gone
  void insert_char(char32_t ch);
  void insert_newline();
  void insert_pagebreak();
  void backspace();
  void delete_char();
  void delete_line();
  // The door for edits of the lines `lo` up to `hi_old`: records, lets `change` do it (it returns how many
  // lines stand there now), marks the document, sends the notices, finishes the record, refreshes the filter.
  void _edit_lines(int lo, int hi_old, const std::function<int()>& change);
  // The door for edits anywhere; `change` sends the map notices itself, or invalidates the map.
  void _edit_document(const std::function<void()>& change);
  void _lines_replaced(int lo, int hi_old, int new_count);  // the pair of notices to map and syntax
  void _set_line(int ly, Text text) { lines[static_cast<std::size_t>(ly)] = std::move(text); }
  SpanList& _fmt(int ly) { return fmt_lines[static_cast<std::size_t>(ly)]; }
  const SpanList& _fmt(int ly) const { return fmt_lines[static_cast<std::size_t>(ly)]; }
  void _split_line(int ly, int col);
  void _join_with_next(int ly);
  void _remove_line(int ly);

  // ---- history ---------------------------------------------------------------- core/undo.cpp
  static constexpr std::size_t UNDO_DEPTH = 200;
  std::deque<UndoRecord> _undo_stack, _redo_stack;
  int _lines_before_edit = -1;  // how many there were; -1 unless an edit is under way
  void _push_undo(int lo, int hi_old);
  void _finalize_undo(int hi_new);
  void _push_undo_bulk();
  void _finalize_undo_bulk();
  void _abandon_open_edit();
  void do_undo();
  void do_redo();
  struct Applied {
    int lo, old_count, new_count;
  };
  Applied _apply_snap(const UndoRecord& snap, bool forward);
  void _undo_update_map(const UndoRecord& snap, int lo, int old_count, int new_count);
  void _step_history(std::deque<UndoRecord>& from, std::deque<UndoRecord>& to, bool forward);

  // ---- movement --------------------------------------------------------- core/movement.cpp
  std::optional<int> _preferred_col;  // column within the wrapped row, kept over vertical motion
  void move(int key);
  void _move_left();
  void _move_right();
  // Does the motion; from a line that the line filter or a folded chapter hides the cursor goes on in the
  // direction (-1 up, 1 down) to the near end of the next line shown. With none left it stays where it was.
  void _within_shown_lines(int direction, const std::function<void()>& motion);
  void _move_rows(int rows, bool within_row);
  void _word_left();
  void _word_right();
  int _fmt_at(int ly, int col) const;
  void _sync_cur_fmt();

  // ---- selection -------------------------------------------------------- core/selection.cpp
  struct Range {
    int sy, sx, ey, ex;
  };
  std::optional<std::pair<int, int>> _sel_anchor;  // line, column; may lie outside after undo: see _sel_range
  void _sel_clear() { _sel_anchor.reset(); }
  void _sel_start();
  std::optional<Range> _sel_range() const;  // in document order, clipped to the document
  std::pair<int, int> _range_columns(const Range& range, int ly) const;
  void do_select_all();
  void _apply_fmt_to_selection(int bit);
  void _delete_selection();

  // ---- clipboard -------------------------------------------------------- core/clipboard.cpp
  // The rich copy; shared by the class, so it outlives the document.
  static std::vector<Text> _internal_clipboard;
  static std::vector<SpanList> _internal_clipboard_fmt;
  static IndexSet _internal_clipboard_pbl;  // offsets from the first copied line
  void do_copy();
  void do_cut();
  void do_paste();
  void do_insert_expansion(std::u32string_view text);
  struct Copied {
    std::size_t characters;
    bool taken;  // by an external tool
  };
  std::optional<Copied> _copy_selection();
  std::string _internal_clipboard_text() const;   // UTF-8
  std::u32string _clipboard_as_one_line() const;  // for prompts
  void _insert_parts(const std::vector<std::u32string_view>& parts, bool rich, bool guard);
  void _insert_one_part(std::u32string_view part, bool rich);
  void _insert_many_parts(const std::vector<std::u32string_view>& parts, bool rich);

  // ---- checks ------------------------------------------------------- core/session_check.cpp
  // Throws std::logic_error naming the invariant that does not hold.
  void _check_session();
  bool _has_true_colours(int ly) const;

  // ---- keys ------------------------------------------------------ customise/key_reader.cpp
  KeyMap _km;                                    // action to key token
  std::unordered_map<int, std::string> _km_rev;  // key token to action
  Expansions _expansions_file;
  std::map<int, std::u32string>& _expansions = _expansions_file.texts;
  int& _expansion_key = _expansions_file.key;  // 27: the action key's prefix serves
  int _key_help = _KEY_CTRL_SPACE;
  int _key_action = KEY_ESC;
  EscapeMap _ESC_MAP;         // byte string behind ESC to token
  std::string _input;         // bytes read and not yet served
  std::size_t _input_at = 0;  // first byte of `_input` to serve
  void _load_keys();
  // The next key: a byte, or KEY_RESIZE when the terminal has changed its size. Blocks.
  int _getch();
  int _getch_key();  // the same with escape sequences decoded; key 0 is _KEY_CTRL_SPACE
  int _getch_nowait(std::chrono::milliseconds limit);  // NO_KEY when nothing comes in time
  bool _input_waiting();
  bool _fill_input(std::optional<std::chrono::milliseconds> limit);
  bool _wait_for_input(std::optional<std::chrono::milliseconds> limit);
  void _look_at_resize_watch();
  int _read_escape_seq();  // call right after a read gave 27
  // Reads on until `bytes` are a key of the map, which it returns, or can become none, or the time is over.
  std::optional<int> _read_sequence(std::string& bytes);
  std::optional<int> _escape_token(std::string_view bytes) const;
  bool _terminfo_asked = false;         // done at the first sequence that the map does not have
  bool _patch_esc_map_from_terminfo();  // true: the map has new rows
  const std::u32string* _expansion_for(int key) const;

  // ---- syntax -------------------- customise/syntax_state.cpp, customise/syntax_colours.cpp
  // Spans are computed when a line is first drawn, so opening a long document costs no matching.
  struct SyntaxLine {
    SharedArray<SyntaxSpan> spans;
    bool computed() const { return !spans.null(); }
  };
  SyntaxRules _syn_rules;
  GapList<SyntaxLine> _syn_lines{SyntaxLine()};
  bool _syn_dirty = false;  // all lines must be computed anew
  void _load_syntax(std::string_view extension);
  void _compute_syn_lines();
  const SharedArray<SyntaxSpan>& _syn_spans(int ly);
  void _recompute_syn_range(int lo, int hi_old, int new_count);
  int _syn_pair_for(const StyleSpec& style);
  int _new_syn_pair(const StyleSpec& style);

  // ---- geometry --------------------------------------------------------- screen/geometry.cpp
  static constexpr int MARGIN = 1;
  int rows() const;
  int cols() const;
  int _lmargin() const;
  int _rmargin() const;
  int _tmargin() const;
  int _bmargin() const;
  int edit_rows() const;
  int _wrap_width() const;
  int _text_top() const;  // screen row of the first text row
  int _bar_state = 0;     // 0 both bars, 1 status bar, 2 none, 3 title bar
  bool _title_bar_shown() const { return _bar_state == 0 || _bar_state == 3; }
  bool _status_bar_shown() const { return _bar_state == 0 || _bar_state == 1; }

  // ---- screen map ----------------------------------------------------- screen/screen_map.cpp
  // One entry per displayed text row; edits patch it, everything else marks it dirty.
  ScreenMap _screen_map;                             // sorted by (ly, start); page breaks are not entries
  GapList<int> _sm_lines;                            // rows of each line; its chunks begin at its line start. 0: hidden
  PlaceList _sm_line_starts;                         // index of each line's first row; of a hidden line the next row's
  PlaceList _sep_prefix{0};                          // page-break rows before entry i; one 0 if there are none
  bool _map_dirty = true;                            // set by _invalidate_map, cleared by a build
  int _map_cache_cols = -1, _map_cache_nlines = -1;  // what the map was built for
  const ScreenMap& _build_screen_map();              // costs nothing while clean
  void _update_map_lines(int lo, int hi_old, int new_count);  // after `lines` and `pagebreak_lines` changed
  void _invalidate_map();
  void _rebuild_sep_prefix();
  void _splice_sep_prefix(int first, int old_rows, int new_rows);
  bool _has_separator(const MapEntry& entry) const;
  int _logical_to_screen_row(int ly, int column, const ScreenMap& screen_map) const;
  int _count_separators(const ScreenMap& screen_map, int first, int end) const;
  TextView _row_text(const MapEntry& entry, std::u32string& composed) const;
  bool _is_list_continuation(const MapEntry& entry) const;

  // ---- drawing ------------------------------------------------------------ screen/drawing.cpp
  screen::Canvas _canvas;  // everything that is drawn; as large as the screen
  screen::Painter _painter{_machine.output};
  std::vector<DrawnRow> _drawn_rows;  // by screen row; a row is kept while it would be made of the same
  std::string _drawn_title;
  std::uint64_t _row_contents = 0, _title_content = 0;  // numbers given to rows, and the title's
  void draw();
  void _draw_titlebar();
  void _draw_text();
  std::vector<DrawnRow> _planned_rows();
  DrawnRow _planned_text_row(const MapEntry& entry);
  bool _row_stands(const DrawnRow& row, int at) const;
  void _keep_standing_rows(std::vector<DrawnRow>& planned, int first, int end) const;
  void _move_drawn_rows(std::vector<DrawnRow>& planned);
  void _draw_row(int screen_row, DrawnRow& row, RowLayers& layers);
  void _draw_rule_row(int screen_row, std::u32string_view label);
  void _draw_text_row(int screen_row, const DrawnRow& row, RowLayers& layers);
  void _collect_line_layers(int ly, RowLayers& layers);
  screen::Style _cell_style(const RowLayers& layers, int position, int& run_end);

  // ---- status bar and scrolling ---------------------------------------- screen/status_bar.cpp
  std::string _battery_text;
  std::chrono::steady_clock::time_point _battery_read{};  // when; read again after some seconds
  void _draw_statusbar();
  std::string _status_text();
  long _count_document_words();
  std::string _battery_widget();
  void _place_cursor();
  void _ensure_cursor_visible();
  int _first_row_showing(int target) const;
  void _show_message(std::string text) { message = std::move(text); }

  // ---- prompts and notices ------------------------------------------------ screen/prompts.cpp
  std::string _prompt_utf8_buf;  // bytes of a character still incomplete
  int _mid_pending_ch = NO_KEY;
  std::function<void()> _backdrop;  // paints what lies behind a prompt; empty: draw()
  std::optional<std::u32string> _prompt(const std::string& prompt, std::u32string_view prefill = {},
                                        bool esc_returns_empty = false);
  void _draw_prompt_bar(std::u32string_view prompt, std::u32string_view buf, int pos);
  std::optional<std::u32string> _mid_prompt(const std::string& prompt, std::optional<std::size_t> max_chars = {},
                                            std::optional<std::string_view> allowed_chars = {});
  void _draw_mid_box(int y, int x, int width, std::u32string_view prompt, std::u32string_view buf, int pos);
  void _mid_notice(const std::string& text);
  // A question with one-letter answers: the lower-case letter, or 0 for none.
  char _ask(const std::string& question, std::string_view letters);
  void _redraw_behind();

  // ---- file browser ------------------------------------------------------- screen/browser.cpp
  std::string _fb_utf8_buf;
  std::optional<std::string> _file_browser(const std::string& title_prefix = "Open", bool allow_new_name = false,
                                           const std::string& fname_prefill = {});

  // ---- overlays -------------- screen/overlay.cpp, screen/help.cpp, screen/char_picker.cpp
  int _overlay_top = 0;  // first wrapped line shown
  int _overlay_scroll(const std::string& title, const std::vector<std::string>& lines_in);
  void do_help();
  void do_about();
  void do_tutorial();
  void do_unicode_picker();

  // ---- open, save, insert -------------------------------------------- documents/open_save.cpp
  KeptContent _kept_content;  // of the .odt read or written last
  void do_save();
  void do_save_as();
  void do_open();
  void do_create_newdoc();
  void do_insert_document();
  void _save_to(const std::string& path);
  bool _has_formatting() const;
  bool _confirm_overwrite(const std::string& path);
  void _reset_for_document(DocumentTriple triple, std::optional<std::string> path);
  void _insert_triple(const DocumentTriple& loaded);

  // ---- chapters and folding ---- structure/folding.cpp, structure/chapter_swap.cpp
  IndexSet _folded_chapters;  // folded headers; view only, never saved
  bool _cursor_on_folded_chapter() const;
  std::optional<int> _find_chapter_header(int ly) const;
  std::string _chapter_title(int ly) const;
  void _reset_folds();
  void _shift_folded_chapters(int start, int delta);
  std::vector<int> _headers_in_subtree(int header) const;
  void _cursor_to_visible_header();
  void _unfold_around(int ly);
  void do_fold_chapter();
  void do_fold_all_chapters();
  void do_chapter_swap_down();
  void do_chapter_swap_up();
  void _do_chapter_swap(int direction);
  void _go_to_header(int header);

  // ---- line filter ------------------------------------------------ structure/line_filter.cpp
  IndexSet _kgrep_folds;       // lines that the filter hides
  std::u32string _kgrep_term;  // empty: none
  void do_kgrep();
  void _kgrep_refresh();
  void _clear_kgrep();
  IndexSet _lines_without_kgrep_term() const;
  std::string _kgrep_quoted_term() const;

  // ---- find and replace ------------------ structure/find.cpp, structure/replace.cpp
  std::u32string search_term;
  bool _find_active = false;  // occurrences are marked
  void do_find();
  void _find_navigate_loop();
  void _find_next(int from_line, int from_col);
  void _find_prev(int from_line, int from_col);
  void _found_at(int ly, int col);
  void do_replace();

  // ---- zoom ------------------------------------------------------------- terminal/zoom.cpp
  std::unique_ptr<ConsoleFontController> console_font_ctrl;  // absent off the console
  std::unique_ptr<FontController> font_ctrl;                 // absent on the console
  int font_size = 0;                                         // points; 0 on the console
  int _startup_font_size = 0;
  int _startup_console_font_idx = 0;
  void font_increase();
  void font_decrease();
  void font_reset();
  void _change_font_size(int size, char sign);
  void _persist_font();
  void _restore_startup_font();
  std::string _terminal_kind() const;

  // ---- view toggles and leaving -------- terminal/view_toggles.cpp, terminal/leave.cpp
  void do_set_margin(std::string_view side);
  void do_toggle_bars();
  void do_typewriter_toggle();
  void do_exit();
  void _give_terminal_back();
  std::unique_ptr<char[]> _reserve;  // memory for the way out when there is no other
  // The way out that the user has not chosen: writes unsaved changes to a rescue copy and gives the terminal back.
  // Returns what standard error is to say when the screen has gone: a line, or nothing.
  std::string _leave_unasked();
  std::string _rescue();
};

// The screen of --key-debug: shows the bytes of each key until Ctrl+C or Ctrl+D.
void run_key_debug(_win_st* screen);

// Runs the command "clear" on standard output; for the very end of the process.
void clear_terminal();

}  // namespace brenlow
