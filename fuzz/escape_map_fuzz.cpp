// The input is what a tool tells about a terminal, and what a terminal sends behind an escape byte.

#include "customise/escape_map.h"

#include <cstdint>
#include <string>

#include "customise/key_map.h"
#include "fuzz/require.h"

using namespace brenlow;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  EscapeMap map = default_escape_map();
  const EscapeMap built_in = map;
  const auto report = _patch_esc_map_from_terminfo(map, _parse_terminfo_sequences(text));
  for (const auto& [sequence, token] : built_in) require(map.at(sequence) == token);
  require(map.size() == built_in.size() + report.size());
  for (const std::string& line : report) fuzz::require_plain_print(line);
  // A key is recognised only if the reader goes on until its last byte.
  for (const auto& [sequence, token] : map)
    for (std::size_t length = 1; length < sequence.size(); ++length)
      require(is_escape_prefix(map, std::string_view(sequence).substr(0, length)));

  is_escape_prefix(map, text);
  if (const auto key = plain_kitty_key(text)) require(*key >= 32 && *key <= 126);
  if (const auto key = ctrl_alt_letter(text)) require(!label_of_token(*key).empty());
  return 0;
}
