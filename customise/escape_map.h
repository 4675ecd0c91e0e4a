#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brenlow {

// What follows the escape byte in a terminal's key sequence, without that byte, to the key token.
using EscapeMap = std::map<std::string, int, std::less<>>;

EscapeMap default_escape_map();

// Whether more bytes can still make `bytes` a sequence: they begin a row of the map, or they are a control
// sequence or single shift of ECMA-48 without its final byte.
bool is_escape_prefix(const EscapeMap& map, std::string_view bytes);

// "[N u" of the kitty keyboard protocol, with no modifiers or with ";1", for a printable ASCII N: N.
std::optional<int> plain_kitty_key(std::string_view bytes);

// The token of Ctrl+Alt and a letter in the forms that terminals send: the control byte, "[N;7u" or
// "[27;7;N~" with N the code of the letter. Ctrl+Alt+I, J and M look like Alt with Tab, line feed and Enter,
// so the token means something only where it is bound.
std::optional<int> ctrl_alt_letter(std::string_view bytes);

// The bytes of a string of a terminfo source (terminfo(5), "Types of Capabilities").
std::string unescape_terminfo(std::string_view text);

// The key sequences in the output of "infocmp -1 -x": capability name to what follows the escape byte.
// Parameterised strings and strings that do not begin with the escape byte are left out.
std::map<std::string, std::string> _parse_terminfo_sequences(const std::string& infocmp_output);

// Adds rows for the modified cursor keys of the terminal's own description; a row that is there stays.
// Returns one line per added row: name, sequence and token.
std::vector<std::string> _patch_esc_map_from_terminfo(EscapeMap& map,
                                                      const std::map<std::string, std::string>& sequences);

}  // namespace brenlow
