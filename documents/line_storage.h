#pragma once

#include <cstddef>
#include <string_view>

#include "core/text.h"

namespace brenlow {

// Writes the characters as narrow ones, a byte each; false, and any bytes, if some have no such form.
bool narrowed(std::u32string_view characters, char* out);

// Makes the lines of a document that is being read: slices of a few large blocks, which take less room and time
// than a block for every line.
class LineStorage {
 public:
  Text line(std::u32string_view characters);

 private:
  SharedArray<char> _block;
  std::size_t _used = 0;
};

}  // namespace brenlow
