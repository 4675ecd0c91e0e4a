#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brenlow {

// A character in one byte, by the code page windows-1252 (WHATWG Encoding Standard): the letters of Western
// Europe and the quotation marks and dashes that writers use. ASCII is itself; no other character is below 0x80.
struct NarrowCharacter {
  unsigned char byte;

  operator char32_t() const {  // NOLINT(google-explicit-constructor): it is that character
    return byte < 0x80 || byte >= 0xA0 ? byte : SIGNS[byte - 0x80];
  }
  // The byte of a character, if it has one.
  static std::optional<unsigned char> of(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character < 0x100)) return static_cast<unsigned char>(character);
    return of_sign(character);
  }
  friend bool operator==(NarrowCharacter, NarrowCharacter) = default;

 private:
  static const std::array<char16_t, 32> SIGNS;  // those from 0x80 on
  static std::optional<unsigned char> of_sign(char32_t character);
};

// The number that stands for a character at its width: for ASCII the character, for others at least 0x80. For
// loops that tell ASCII from the rest and should run on several characters at once.
inline unsigned char raw(NarrowCharacter character) { return character.byte; }
inline char16_t raw(char16_t character) { return character; }
inline char32_t raw(char32_t character) { return character; }

// Unicode text without a copy. Its code points take one, two or four bytes each, whatever the widest of them
// needs, so that a long document takes a byte a letter in most languages written in Latin letters. A view of
// code points in four bytes converts by itself.
class TextView {
 public:
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  TextView() = default;
  // NOLINTBEGIN(google-explicit-constructor): a text is its characters
  TextView(std::u32string_view characters) : TextView(characters.data(), characters.size()) {}
  TextView(const std::u32string& characters) : TextView(characters.data(), characters.size()) {}
  TextView(const char32_t* characters) : TextView(std::u32string_view(characters)) {}
  // NOLINTEND(google-explicit-constructor)
  TextView(const char32_t* characters, std::size_t size) : TextView(characters, size, 4) {}
  // `width` is 1, 2 or 4 bytes a character.
  TextView(const void* characters, std::size_t size, int width) : _data(characters), _size(size), _width(width) {}

  std::size_t size() const { return _size; }
  int length() const { return static_cast<int>(_size); }
  bool empty() const { return _size == 0; }
  int width() const { return _width; }
  const void* data() const { return _data; }

  char32_t operator[](std::size_t i) const {
    switch (_width) {
      case 1:
        return static_cast<const NarrowCharacter*>(_data)[i];
      case 2:
        return static_cast<const char16_t*>(_data)[i];
      default:
        return static_cast<const char32_t*>(_data)[i];
    }
  }
  char32_t front() const { return (*this)[0]; }
  char32_t back() const { return (*this)[_size - 1]; }

  // Calls `work` with the characters as a span of NarrowCharacter, char16_t (code points below 65,536) or
  // char32_t: for loops over many of them.
  template <class Work>
  decltype(auto) visit(Work&& work) const {
    switch (_width) {
      case 1:
        return work(std::span(static_cast<const NarrowCharacter*>(_data), _size));
      case 2:
        return work(std::span(static_cast<const char16_t*>(_data), _size));
      default:
        return work(std::span(static_cast<const char32_t*>(_data), _size));
    }
  }

  // The part from `position` (at most the size) on, `count` characters or as many as there are.
  TextView substr(std::size_t position, std::size_t count = npos) const {
    const char* from = static_cast<const char*>(_data) + position * static_cast<std::size_t>(_width);
    std::size_t rest = _size - position;
    return {from, count < rest ? count : rest, _width};
  }
  bool starts_with(std::u32string_view head) const {
    return _size >= head.size() && substr(0, head.size()) == TextView(head);
  }
  // The first place from `from` on that holds another character; npos if none does.
  std::size_t find_first_not_of(char32_t character, std::size_t from = 0) const {
    while (from < _size && (*this)[from] == character) ++from;
    return from < _size ? from : npos;
  }

  std::u32string str() const {
    return visit([](auto characters) { return std::u32string(characters.begin(), characters.end()); });
  }

  friend bool operator==(TextView a, TextView b) { return equal(a, b); }

 private:
  static bool equal(TextView a, TextView b);

  const void* _data = nullptr;
  std::size_t _size = 0;
  int _width = 4;
};

}  // namespace brenlow
