#include "documents/line_storage.h"

#include <algorithm>

namespace brenlow {

namespace {

constexpr std::size_t BLOCK = std::size_t{1} << 20;

}  // namespace

// Block by block, because even a line that is not all ASCII mostly is.
bool narrowed(std::u32string_view characters, char* out) {
  constexpr std::size_t WIDTH = 32;
  for (std::size_t at = 0; at < characters.size(); at += WIDTH) {
    std::u32string_view block = characters.substr(at, WIDTH);
    char32_t all = 0;
    for (char32_t character : block) all |= character;
    if (all < 0x80) {
      out = std::transform(block.begin(), block.end(), out, [](char32_t c) { return static_cast<char>(c); });
      continue;
    }
    for (char32_t character : block) {
      auto byte = NarrowCharacter::of(character);
      if (!byte) return false;
      *out++ = static_cast<char>(*byte);
    }
  }
  return true;
}

Text LineStorage::line(std::u32string_view characters) {
  if (characters.empty()) return {};
  if (_block.size() - _used < characters.size()) {
    _block = SharedArray<char>::build(std::max(BLOCK, characters.size()), [](char*) {});
    _used = 0;
  }
  if (!narrowed(characters, _block.writable() + _used)) return characters;
  Text made = Text::slice(_block, _used, characters.size());
  _used += characters.size();
  return made;
}

}  // namespace brenlow
