// A file of text expansions: none is empty or holds an end of line, and complaints can be printed on a terminal.

#include "customise/expansions.h"

#include <cstdint>
#include <sstream>

#include "fuzz/require.h"

using namespace brenlow;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::ostringstream complaints;
  const Expansions found = parse_expansions({reinterpret_cast<const char*>(data), size}, complaints);
  fuzz::require_plain_print(complaints.str());
  for (const auto& [key, text] : found.texts)
    fuzz::require(!text.empty() && text.find_first_of(U"\r\n") == std::u32string::npos);
  return 0;
}
