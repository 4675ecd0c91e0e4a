#include "customise/syntax_defaults.h"

#include <array>
#include <utility>

namespace brenlow {

namespace {

constexpr std::string_view MD_CONF = R"~(# Brenlow syntax highlighting for Markdown (.md)
# Format:  pattern: <Python regex>   style: <color name | #RRGGBB | inverse>
# Rules are checked top-to-bottom per line; the first match for each span wins.
# Restart Brenlow after editing this file.

[heading]
# ATX headings: # H1  ## H2  ### H3 …  (whole line is highlighted)
pattern: ^#{1,6}\s.*$|^#{1,6}$
style: cyan

[bold_italic]
# Triple-asterisk or triple-underscore bold+italic
pattern: \*{3}[^*]+\*{3}|_{3}[^_]+_{3}
style: yellow

[bold]
# Double-asterisk or double-underscore bold
pattern: \*{2}[^*]+\*{2}|_{2}[^_]+_{2}
style: yellow

[italic]
# Single asterisk or underscore italic
pattern: \*[^*]+\*|_[^_]+_
style: yellow

[code_inline]
# Backtick inline code
pattern: `[^`]+`
style: green

[blockquote]
# Lines starting with >  (whole line is highlighted)
pattern: ^>.*$
style: magenta

[list_item]
# Unordered list bullet (-, *, +)  (whole line is highlighted)
pattern: ^[\s]*[-*+]\s.*$
style: blue

[link]
# Markdown links [text](url) and images ![alt](url)
pattern: !?\[[^\]]*\]\([^)]*\)
style: cyan

[fenced_code]
# Fenced code block delimiter ```  (whole line is highlighted, including
# any language tag, e.g. ```python)
pattern: ^```.*$
style: green

[hr]
# Horizontal rule: ---, ***, ___
pattern: ^(---|\*\*\*|___)\s*$
style: #888888

)~";

constexpr std::string_view FOUNTAIN_CONF = R"~(# Brenlow syntax highlighting for Fountain screenplays (.fountain)
# Format:  pattern: <Python regex>   style: <color name | #RRGGBB | inverse>
# Rules are checked top-to-bottom per line; the first match for each span wins.
# Restart Brenlow after editing this file.

[scene_heading]
# INT./EXT. scene headings (also I/E and INT/EXT without period)
# Whole line is highlighted.
pattern: ^(INT\.|EXT\.|INT/EXT\.|I/E\.|INT\b|EXT\b).*$
style: cyan

[character]
# Character cue: ALL CAPS line (possibly with @ prefix)
# Simple heuristic: line is all-caps, no lowercase, non-empty, not a heading
pattern: ^@?[A-Z][A-Z0-9 \t'\-\.]*$
style: yellow

[parenthetical]
# Parenthetical direction
pattern: ^\s*\(.*\)\s*$
style: magenta

[transition]
# Transition: line ending with TO: or all-caps like FADE OUT.
pattern: (TO:\s*$|^(FADE OUT|FADE IN|CUT TO|SMASH CUT|MATCH CUT|JUMP CUT|DISSOLVE TO)[.:]?\s*$)
style: blue

[note]
# Fountain note [[double brackets]]
pattern: \[\[.*?\]\]
style: #888888

[section_heading]
# Structure markers # and ##  (whole line is highlighted)
pattern: ^#{1,2}\s.*$|^#{1,2}$
style: #aaaaff

[title_page]
# Title page key-value pairs (key: value at very top)
# Whole line is highlighted.
pattern: ^[A-Za-z][A-Za-z ]*:\s*\S.*$
style: green

[forced_action]
# Forced action line starting with !  (whole line is highlighted)
pattern: ^!.*$
style: white

[forced_scene]
# Forced scene heading starting with .  (whole line is highlighted)
pattern: ^\.[A-Z].*$
style: cyan

)~";

constexpr std::string_view ODT_CONF = R"~(# Brenlow syntax highlighting for OpenDocument Text (.odt)
# Format:  pattern: <Python regex | @normal@ | @bold@ | @italic@ | @bold_italic@>   style: <color name | #RRGGBB | inverse>
# Rules are checked top-to-bottom; the first match for each span wins.
# Restart Brenlow after editing this file.
#
# Unlike the other formats, @normal@/@bold@/@italic@/@bold_italic@ are not
# regular expressions — they refer to the document's actual bold/italic
# runs (the same formatting toggled with the Bold/Italic commands), not to
# any particular text pattern. @bold@ and @italic@ each also match text
# that is BOTH bold and italic; @bold_italic@ matches ONLY that overlap,
# and is listed above [bold]/[italic] below so it claims bold+italic text
# first, leaving [bold]/[italic] the bold-only/italic-only portions.
# @normal@ always means "the rest of the line, once the others are
# accounted for" — so it is listed last: put earlier, it would claim the
# whole line and leave nothing for the rest. [self_defined] is listed
# first for the same reason: it lets you colour specific words or patterns
# (TODO markers, URLs, …) even inside text that would otherwise be claimed
# by [normal] — reorder freely to change priority.

[self_defined]
# Ordinary regex rule, matched against the text regardless of bold/italic
# state. Replace this example with your own pattern(s) — e.g. highlight
# TODO markers.
pattern: \bTODO\b
style: red

[bold_italic]
# Text with BOTH bold and italic formatting applied.
pattern: @bold_italic@
style: magenta

[bold]
# Text with bold formatting applied (bold-only; bold+italic is already
# claimed above by [bold_italic]).
pattern: @bold@
style: yellow

[italic]
# Text with italic formatting applied (italic-only; bold+italic is already
# claimed above by [bold_italic]).
pattern: @italic@
style: cyan

[normal]
# Text carrying neither bold nor italic formatting.
pattern: @normal@
style: white

)~";

constexpr std::string_view TXT_CONF = R"~(# Brenlow syntax highlighting for plain text (.txt)
# Format:  pattern: <Python regex>   style: <color name | #RRGGBB | inverse>
# Rules are checked top-to-bottom per line; the first match for each span wins.
# Restart Brenlow after editing this file.
#
# Plain .txt files carry no formatting information of their own, so there is
# just one section to customise as you see fit.

[self_defined]
# Replace this example with your own pattern(s) — e.g. highlight
# TODO markers.
pattern: \bTODO\b
style: red

)~";

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> _DEFAULT_SYNTAX_CONFIGS{
    {{"md", MD_CONF}, {"fountain", FOUNTAIN_CONF}, {"odt", ODT_CONF}, {"txt", TXT_CONF}}};

}  // namespace

std::string_view default_syntax_config(std::string_view ext) {
  for (const auto& [known, text] : _DEFAULT_SYNTAX_CONFIGS)
    if (known == ext) return text;
  return {};
}

}  // namespace brenlow
