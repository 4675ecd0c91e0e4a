#include "core/text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <stdexcept>

namespace brenlow {

namespace {

// The bytes that the widest of the characters needs.
int width_needed(TextView text) {
  if (text.width() == 1) return 1;
  return text.visit([](auto characters) {
    char32_t all = 0;
    for (char32_t character : characters) all |= character;
    if (all >= 0x10000) return 4;
    auto narrow = [](char32_t character) { return NarrowCharacter::of(character).has_value(); };
    return all < 0x80 || std::all_of(characters.begin(), characters.end(), narrow) ? 1 : 2;
  });
}

template <class Target>
void copy_as(char* out, TextView from) {
  from.visit([&](auto characters) {
    std::transform(characters.begin(), characters.end(), reinterpret_cast<Target*>(out),
                   [](char32_t character) { return static_cast<Target>(character); });
  });
}

void copy_narrow(char* out, TextView from) {
  from.visit([&](auto characters) {
    std::transform(characters.begin(), characters.end(), out,
                   [](char32_t character) { return static_cast<char>(*NarrowCharacter::of(character)); });
  });
}

// The characters of windows-1252 from 0x80 on; five bytes stand for the control characters of their number.
constexpr std::array<char16_t, 32> SIGNS_FROM_80 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Writes the characters at `width` bytes each, which is enough for them; returns the end.
char* copy_at_width(char* out, TextView from, int width) {
  std::size_t bytes = from.size() * static_cast<std::size_t>(width);
  if (from.width() == width) {
    if (bytes != 0) std::memcpy(out, from.data(), bytes);
  } else if (width == 1) {
    copy_narrow(out, from);
  } else if (width == 2) {
    copy_as<char16_t>(out, from);
  } else {
    copy_as<char32_t>(out, from);
  }
  return out + bytes;
}

}  // namespace

const std::array<char16_t, 32> NarrowCharacter::SIGNS = SIGNS_FROM_80;

std::optional<unsigned char> NarrowCharacter::of_sign(char32_t character) {
  const auto* sign = std::find(SIGNS_FROM_80.begin(), SIGNS_FROM_80.end(), character);
  if (sign == SIGNS_FROM_80.end()) return std::nullopt;
  return static_cast<unsigned char>(0x80 + (sign - SIGNS_FROM_80.begin()));
}

bool TextView::equal(TextView a, TextView b) {
  if (a._size != b._size) return false;
  if (a._width == b._width)
    return a._size == 0 || std::memcmp(a._data, b._data, a._size * static_cast<std::size_t>(a._width)) == 0;
  return a.visit([&](auto left) {
    return b.visit([&](auto right) { return std::equal(left.begin(), left.end(), right.begin()); });
  });
}

Text::Text(const SharedArray<char>& storage, std::size_t start, std::size_t size, int width)
    : _start(size == 0 ? 0 : static_cast<std::uint32_t>(start)),
      _size(static_cast<std::uint32_t>(size) & 0x3FFFFFFFU),
      _width_log(static_cast<std::uint32_t>(std::countr_zero(static_cast<unsigned>(width))) & 3U) {
  if (size > MAX_SIZE) throw std::length_error("a line is too long");
  if (size != 0) _storage = storage;
}

Text Text::slice(const SharedArray<char>& bytes, std::size_t start, std::size_t size) {
  return {bytes, start, size, 1};
}

Text Text::joined(std::span<const TextView> parts) {
  std::size_t size = 0;
  int width = 1;
  for (TextView part : parts) {
    size += part.size();
    width = std::max(width, width_needed(part));
  }
  if (size > MAX_SIZE) throw std::length_error("a line is too long");
  auto storage = SharedArray<char>::build(size * static_cast<std::size_t>(width), [&](char* out) {
    for (TextView part : parts) out = copy_at_width(out, part, width);
  });
  return {storage, 0, size, width};
}

Text Text::spliced(std::size_t position, std::size_t removed, TextView inserted) const {
  return brenlow::joined(view().substr(0, position), inserted, view().substr(position + removed));
}

}  // namespace brenlow
