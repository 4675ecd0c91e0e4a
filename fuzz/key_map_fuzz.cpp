// A keys file: what is read is written so that it reads the same, and complaints can be printed on a terminal.

#include "customise/key_map.h"

#include <cstdint>
#include <sstream>
#include <string>

#include "fuzz/require.h"

using namespace brenlow;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::ostringstream complaints;
  KeyMap map = parse_keys({reinterpret_cast<const char*>(data), size}, complaints);
  fuzz::require_plain_print(complaints.str());
  for (auto& [action, token] : map)
    if (action.starts_with('_')) action.erase(0, 1);
  std::ostringstream written_complaints;
  KeyMap again = parse_keys(keys_file_text(map), written_complaints);
  require(written_complaints.str().find(" line ") == std::string::npos);
  for (const auto& [action, token] : map) {
    const bool special = action == "help_key" || action == "action_key";
    require(key_of_action(again, special ? "_" + action : action, -1) == token);
  }
  return 0;
}
