#include "customise/settings_table.h"

namespace brenlow {

namespace {

constexpr SettingRow ROWS[] = {
    {"general", "default_extension",
     "Default file extension used when saving a document with no extension.\n"
     "Applied when ESC S is pressed and the typed name has no dot suffix,\n"
     "and also for the timestamp filename created by ESC N.\n"
     "Options: odt (default)  txt  md  fountain"},
    {"display", "cursor_type",
     "Cursor shape sent to the terminal on startup.\n"
     "Options: block (default)  underline  bar"},
    {"display", "cursor_blink",
     "Whether the cursor blinks (terminal controls the rate).\n"
     "yes (default)  no"},
    {"display", "margin_left",
     "Left margin as a percentage of terminal width (0-100), rounded\n"
     "to whole columns at draw time. Display only — never written\n"
     "into the document. Set via ESC 1.  0 (default) or higher."},
    {"display", "margin_right",
     "Right margin as a percentage of terminal width (0-100), rounded\n"
     "to whole columns at draw time. Display only. Set via ESC 2.\n"
     "0 (default) or higher."},
    {"display", "margin_top",
     "Top margin as a percentage of terminal height (0-100), rounded\n"
     "to whole rows at draw time. Display only. Set via ESC 3.\n"
     "0 (default) or higher."},
    {"display", "margin_bottom",
     "Bottom margin as a percentage of terminal height (0-100), rounded\n"
     "to whole rows at draw time. Display only. Set via ESC 4.\n"
     "0 (default) or higher."},
    {"editing", "typewriter",
     "Typewriter mode: cursor stays at the bottom, text scrolls up.\n"
     "yes  no (default)"},
    {"editing", "fold_hierarchical",
     "Whether unfolding a chapter (ESC # / ESC *) reveals its whole\n"
     "sub-tree at once, or only its direct children, one level at a time.\n"
     "no (default) — unfolding reveals every nested level at once\n"
     "yes — unfolding reveals only the next level; deeper chapters\n"
     "      stay folded until unfolded individually"},
    {"editing", "smart_quotes",
     "Replace ` (backtick) with a curly opening single quote (‘) and\n"
     "' (apostrophe) with a curly closing single quote (’) as you type.\n"
     "Applies everywhere, regardless of file format — including code\n"
     "spans, if you write those in Brenlow too.\n"
     "yes (default)  no"},
    {"editing", "kgrep_highlight",
     "How kGrep highlights matched text in visible lines.\n"
     "color (default) — cyan background  |  inverse — swap foreground/background"},
    {"editing", "kgrep_case",
     "Whether kGrep search is case-sensitive.\n"
     "sensitive  |  insensitive (default) — match regardless of letter case"},
    {"editing", "find_highlight",
     "How Find (Ctrl F / ESC F) highlights matched text in visible lines.\n"
     "color (default) — cyan background  |  inverse — swap foreground/background"},
    {"editing", "find_case",
     "Whether the regular Find (Ctrl F / ESC F) search is case-sensitive.\n"
     "sensitive  |  insensitive (default) — match regardless of letter case"},
    {"files", "hide_dotfiles",
     "Hide files and directories whose names start with a period.\n"
     "yes (default)  no"},
    {"files", "newdoc_timestamp",
     "Whether ESC N (Create new document) assigns a timestamp filename.\n"
     "The extension used is controlled by default_extension (above).\n"
     "yes (default)  no — new document gets no name, like starting Brenlow blank"},
};

}  // namespace

const std::span<const SettingRow> SETTING_ROWS = ROWS;

const std::vector<std::pair<std::string_view, Setting>>& fresh_settings() {
  static const std::vector<std::pair<std::string_view, Setting>> settings = {
      {"default_extension", "odt"},  {"cursor_type", "block"},    {"cursor_blink", true},
      {"typewriter", "no"},          {"fold_hierarchical", "no"}, {"smart_quotes", true},
      {"hide_dotfiles", true},       {"newdoc_timestamp", true},  {"kgrep_highlight", "color"},
      {"kgrep_case", "insensitive"}, {"find_highlight", "color"}, {"find_case", "insensitive"},
      {"margin_left", 0LL},          {"margin_right", 0LL},       {"margin_top", 0LL},
      {"margin_bottom", 0LL}};
  return settings;
}

}  // namespace brenlow
