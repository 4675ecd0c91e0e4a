// A text file: what is read is written so that it reads the same, but for an empty last line, which the format does not
// tell from the end of the line above it.

#include "documents/plain_text.h"

#include <unistd.h>

#include <cstdint>
#include <string>

#include "core/unicode.h"
#include "documents/file_access.h"
#include "fuzz/require.h"
#include "fuzz/scratch_file.h"

using namespace brenlow;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ScratchFile scratch(".txt");
  const std::string text(data, data + size);
  write_file(scratch.path, text);
  DocumentTriple document = txt_to_lines(scratch.path);
  require(!document.lines.empty() && document.lines.size() == document.fmt_lines.size());
  for (const Text& line : document.lines) require(line.view().str().find(U'\n') == std::u32string::npos);
  lines_to_txt(document.lines, scratch.path);
  if (document.lines.size() > 1 && document.lines.back().length() == 0) document.lines.pop_back();
  require(txt_to_lines(scratch.path).lines == document.lines);
  return 0;
}
