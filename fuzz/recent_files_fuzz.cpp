// The list of recent files: any path comes back from the file as the bytes it was.

#include "customise/recent_files.h"

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/require.h"

using namespace brenlow;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const auto paths = parse_recent_files(text);
  require(parse_recent_files(recent_files_json(paths)) == paths);
  const bool is_path = !text.empty() && text.find('\0') == std::string::npos;
  require(parse_recent_files(recent_files_json({text})) == (is_path ? std::vector{text} : std::vector<std::string>{}));
  return 0;
}
