#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "customise/key_map.h"

namespace brenlow {

// The name of a special key: "ESC", "Ctrl+Space", "F5", else "key(0x1f)".
std::string _key_name(int key);

// The paragraphs of the overlays, one string each, UTF-8; an empty one is a blank line. They never fail.

// The table of commands and keys, with the keys of this configuration.
std::vector<std::string> help_lines(const KeyMap& keys, int help_key, int action_key);
std::string help_title(int help_key, int action_key);
std::vector<std::string> about_lines();
// Already broken at about 60 columns.
std::vector<std::string> tutorial_lines();

// Wraps one paragraph at single spaces, which keep their place: a run of blanks comes out as it went in, and a
// row behind a break begins with the space of the break. A word longer than the width stays whole. Never empty.
std::vector<std::u32string> wrap_paragraph(std::u32string_view text, int width);

}  // namespace brenlow
