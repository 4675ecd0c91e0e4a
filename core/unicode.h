#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace brenlow {

// UTF-8 to code points; every maximal run of bytes that cannot begin or go on a character becomes one
// U+FFFD, as the Unicode Standard recommends (chapter 3, "U+FFFD Substitution of Maximal Subparts").
std::u32string decode_utf8(std::string_view bytes);
// The same into `out`, which has room for one code point per byte; returns how many were written.
std::size_t decode_utf8_into(std::string_view bytes, char32_t* out);
// Strict: nothing if a byte is wrong or the text ends within a character.
std::optional<std::u32string> decode_utf8_strict(std::string_view bytes);
// Code points that are none (surrogates, above U+10FFFF) are written as U+FFFD.
std::string encode_utf8(std::u32string_view text);
void append_utf8(std::string& out, char32_t character);

// One code point to one code point, so that offsets hold; a letter without such a partner stays.
char32_t lower(char32_t character);
std::u32string lowered(std::u32string_view text);
std::string lowered_ascii(std::string_view text);

// White space as Unicode defines it, with the information separators U+001C to U+001F.
bool is_space(char32_t character);
std::u32string_view trimmed(std::u32string_view text);
std::u32string_view trimmed_right(std::u32string_view text);
std::string_view trimmed(std::string_view text);

// The text with every line break ("\r\n", "\n", "\r") replaced by one blank.
std::u32string one_line(std::u32string_view text);

// The words of the text, divided by white space.
int count_words(std::u32string_view text);

// The lower-cased extension of the last component of a path with its dot: ".odt"; empty without one,
// also for a name whose only dot is its first character.
std::string path_extension(std::string_view path);
std::string path_base_name(std::string_view path);

}  // namespace brenlow
