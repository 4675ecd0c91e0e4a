#pragma once

#include <cstdlib>
#include <string_view>

#include "core/unicode.h"

namespace brenlow::fuzz {

// A property that holds for every input: the fuzzer keeps an input that breaks it.
inline void require(bool holds) {
  if (!holds) std::abort();
}

// Lines that a terminal may be given as they are.
inline void require_plain_print(std::string_view text) {
  const auto characters = decode_utf8_strict(text);
  require(characters.has_value());
  for (char32_t c : *characters) require(c == U'\n' || (c >= 0x20 && c < 0x7F) || c >= 0xA0);
}

}  // namespace brenlow::fuzz
