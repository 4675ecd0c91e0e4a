#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/text_view.h"

namespace brenlow {

// UTF-8 to code points; every maximal run of bytes that cannot begin or go on a character becomes one
// U+FFFD, as the Unicode Standard recommends (chapter 3, "U+FFFD Substitution of Maximal Subparts").
std::u32string decode_utf8(std::string_view bytes);
// The same into `out`, which has room for one code point per byte; returns how many were written.
std::size_t decode_utf8_into(std::string_view bytes, char32_t* out);
// Strict: nothing if a byte is wrong or the text ends within a character.
std::optional<std::u32string> decode_utf8_strict(std::string_view bytes);
// Code points that are none (surrogates, above U+10FFFF) are written as U+FFFD.
std::string encode_utf8(TextView text);
void append_utf8(std::string& out, char32_t character);
void append_utf8_text(std::string& out, TextView text);

// Appends text of which most characters are `plain`, that is ASCII taken as it is; each other one is handed to
// `special`. `plain` is asked of whole blocks, so it should not branch.
template <class Plain, class Special>
void append_in_runs(std::string& out, TextView text, Plain&& plain, Special&& special) {
  text.visit([&](auto characters) {
    constexpr std::size_t BLOCK = 32;  // with fixed bounds, so that the compiler can use wide registers
    for (std::size_t at = 0; at < characters.size(); ++at) {
      std::size_t end = at;
      for (; end + BLOCK <= characters.size(); end += BLOCK) {
        const auto* block = characters.data() + end;
        unsigned char all = 1;
        for (std::size_t i = 0; i < BLOCK; ++i) all &= static_cast<unsigned char>(plain(raw(block[i])));
        if (!all) break;
      }
      while (end < characters.size() && plain(raw(characters[end]))) ++end;
      if constexpr (sizeof(characters[0]) == 1) {
        out.append(reinterpret_cast<const char*>(characters.data()) + at, end - at);
      } else {
        std::size_t size = out.size();
        out.resize(size + (end - at));
        std::transform(characters.data() + at, characters.data() + end, out.data() + size,
                       [](auto character) { return static_cast<char>(character); });
      }
      if (end < characters.size()) special(characters[end]);
      at = end;
    }
  });
}

// One code point to one code point, so that offsets hold; a letter without such a partner stays.
char32_t lower(char32_t character);
std::u32string lowered(TextView text);
std::string lowered_ascii(std::string_view text);

// Characters without a sign of their own, which terminals leave out or take as orders: soft hyphen, zero-width blanks
// and joiners, direction and annotation signs, line separators, fillers, variation selectors, tags.
bool is_format_character(char32_t character);
// Bytes of unknown origin (a path, a variable) as one line that a terminal may be given: what is no UTF-8, a control
// character or a format character becomes U+FFFD.
std::string plain_print(std::string_view bytes);

// White space as Unicode defines it, with the information separators U+001C to U+001F.
bool is_space(char32_t character);
TextView trimmed(TextView text);
TextView trimmed_right(TextView text);
std::string_view trimmed(std::string_view text);

// The text with every line break ("\r\n", "\n", "\r") replaced by one blank.
std::u32string one_line(std::u32string_view text);

// The words of the text, divided by white space.
int count_words(TextView text);

// The lower-cased extension of the last component of a path with its dot: ".odt"; empty without one,
// also for a name whose only dot is its first character.
std::string path_extension(std::string_view path);
std::string path_base_name(std::string_view path);

}  // namespace brenlow
